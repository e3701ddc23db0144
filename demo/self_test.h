#pragma once

#include "game.h"

namespace demo {

/// Drives the game through a page's life and compares pixels with what the page must show. Prints a line for each step,
/// stops at the first failure and says what was missing. True when all went well.
bool runSelfTest(Game& game, const Options& options);

}  // namespace demo
