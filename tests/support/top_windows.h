#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace ZEMO::Test {

/// The top-level windows of a class, in the order of their stacking, hidden ones too.
/// FindWindowExW with the window found last would tell the same, but Wine's server looks for that window's neighbour,
/// and when the window is just being destroyed it goes round in a list without an end: every program of the session
/// hangs.
inline std::vector<HWND> topWindows(std::wstring_view className) {
    struct Search {
        std::wstring_view className;
        std::vector<HWND> found;
    } search{className, {}};
    EnumWindows(
        [](HWND window, LPARAM searched) -> BOOL {
            auto& search = *reinterpret_cast<Search*>(searched);
            wchar_t name[256] = {};
            const int length = GetClassNameW(window, name, ARRAYSIZE(name));
            if (search.className == std::wstring_view(name, static_cast<size_t>(length)))
                search.found.push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

/// Those of this process. Other tests have windows of the same classes on the same desktop.
inline std::vector<HWND> ownTopWindows(std::wstring_view className) {
    std::vector<HWND> windows = topWindows(className);
    std::erase_if(windows, [](HWND window) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        return process != GetCurrentProcessId();
    });
    return windows;
}

}  // namespace ZEMO::Test
