#pragma once

#include <windows.h>

#include <string>

namespace ZEMO::Test {

inline std::wstring classOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

/// Asks the window itself, on whatever thread it is.
inline std::wstring textOf(HWND window) {
    wchar_t text[1024] = {};
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text), SMTO_NORMAL, 20'000, &length);
    return text;
}

}  // namespace ZEMO::Test
