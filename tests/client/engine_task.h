#pragma once

#include <functional>

#include "engine/game_host.h"

namespace ZEMO::Test {

/// Runs `work` on the engine thread and waits for its end with the game's messages dispatched. False when the engine
/// thread did not come to it; the engine's own work never runs in the middle of it.
bool runOnEngine(GameHost& game, std::function<void()> work);

}  // namespace ZEMO::Test
