#pragma once

#include <windows.h>

#include "core/geometry.h"

namespace ZEMO::UI {

/// Makes the close button of the Steam Deck variant: a child of `parent` at `place` (device pixels of its client area)
/// that shows a bitmap from beside the library and closes `parent` when it is pressed. On the parent's thread; the
/// button ends with its parent. Null when it can't be made.
HWND createExtraWindowButton(HWND parent, const Rect& place);

}  // namespace ZEMO::UI
