#pragma once

#include <windows.h>

namespace ZEMO::UI {

/// Whether the cursor is within `distancePx` (inclusive) of one of the four lines that the window's edges lie on. The
/// lines are endless: a cursor far above the window, but in line with its left edge, counts.
bool nearWindowEdge(HWND window, int distancePx);

}  // namespace ZEMO::UI
