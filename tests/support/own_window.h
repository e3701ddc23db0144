#pragma once

#include <windows.h>

namespace ZEMO::Test {

/// The first top-level window of a view of this process, or null. Other tests have such windows on the same desktop.
inline HWND findViewWindow() {
    HWND found = nullptr;
    while ((found = FindWindowExW(nullptr, found, L"ZEMOExtraWindowClass", nullptr))) {
        DWORD process = 0;
        GetWindowThreadProcessId(found, &process);
        if (process == GetCurrentProcessId()) break;
    }
    return found;
}

}  // namespace ZEMO::Test
