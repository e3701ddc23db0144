#pragma once

#include <windows.h>

namespace ZEMO::UI {

/// The game's main window: the process's first visible top-level window without an owner; null when there is none. Any
/// thread.
HWND findMainWindow();

}  // namespace ZEMO::UI
