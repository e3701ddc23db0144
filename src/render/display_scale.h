#pragma once

#include <windows.h>

#include "render/pixel_scale.h"

namespace ZEMO::UI {

/// Whether the process declared itself per-monitor DPI aware. Asked once for each process, then remembered.
bool isPerMonitorDpiAware();

/// Device pixels for each logical pixel of `window`: its monitor's in a per-monitor aware process, the system's in any
/// other and for a null window. Any thread. A view asks once, at its creation, and keeps the answer.
float getWindowScale(HWND window);

}  // namespace ZEMO::UI
