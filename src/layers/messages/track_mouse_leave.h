#pragma once

#include <atomic>

namespace ZEMO::UI {

/// True while the next mouse move over the game's window counts as the cursor's entry. One for the process.
inline std::atomic<bool> trackMouseLeave = true;

}  // namespace ZEMO::UI
