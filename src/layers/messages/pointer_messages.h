#pragma once

#include <windows.h>

namespace ZEMO::UI {

using PointerInfoFunction = BOOL(WINAPI*)(UINT32 pointerId, POINTER_INFO* info);

/// Where pointer messages get their data: the system's GetPointerInfo. A variable, because a posted pointer message
/// carries no data and touch cannot be injected everywhere.
extern PointerInfoFunction pointerInfoSource;

/// The MK_ flags of a mouse pointer's state, with Ctrl and Shift as they are now.
WPARAM pointerMouseKeys(POINTER_FLAGS flags);

}  // namespace ZEMO::UI
