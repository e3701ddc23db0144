#pragma once

#include "top_windows.h"

namespace ZEMO::Test {

/// The first top-level window of a view of this process, or null.
inline HWND findViewWindow() {
    const std::vector<HWND> windows = ownTopWindows(L"ZEMOExtraWindowClass");
    return windows.empty() ? nullptr : windows.front();
}

}  // namespace ZEMO::Test
