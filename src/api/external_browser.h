#pragma once

#include <string>

namespace ZEMO::UI {

/// Opens `url` outside the game, on a detached thread of its own: first by the game's callback, else by the system.
/// Throws std::system_error when the thread can't be started.
void openOutsideGame(std::string url, bool privateWindow);

}  // namespace ZEMO::UI
