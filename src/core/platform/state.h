#pragma once

#include <mutex>

namespace ZEMO::Core {

/// Held while the advertising identifier is asked for and while the device model is looked up. The latter holds it
/// through calls to another process; nothing of the game is called under it.
extern std::mutex platformMutex;

}  // namespace ZEMO::Core
