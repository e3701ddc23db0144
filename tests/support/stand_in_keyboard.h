#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "support/helper_process.h"

namespace ZEMO::Test {

inline HWND findKeyboardWindow() { return FindWindowW(L"OSKMainClass", nullptr); }

/// Looks again and again until `claim` holds; false after 20 seconds. For what other processes do, which tell nobody.
inline bool becomes(const std::function<bool()>& claim) {
    for (const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);;) {
        if (claim()) return true;
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

/// A stand-in program in the place of the system's on-screen keyboard, for as long as the object lives. One at a time
/// on a machine, and only where the system brings no keyboard of its own: see installed().
class StandInKeyboard {
public:
    StandInKeyboard() : path(systemDirectory() + L"\\osk.exe") {
        isInstalled = CopyFileW(helperPath(L"stand_in_keyboard.exe").c_str(), path.c_str(), TRUE);
    }
    ~StandInKeyboard() {
        end();
        if (isInstalled) becomes([this] { return DeleteFileW(path.c_str()) != FALSE; });
    }
    StandInKeyboard(const StandInKeyboard&) = delete;
    StandInKeyboard& operator=(const StandInKeyboard&) = delete;

    bool installed() const { return isInstalled; }

    /// The window of the one that runs, waited for; null when none comes.
    static HWND window() {
        HWND found = nullptr;
        becomes([&] { return (found = findKeyboardWindow()) != nullptr && IsWindowVisible(found); });
        return found;
    }
    static RECT placeOf(HWND window) {
        RECT place{};
        GetWindowRect(window, &place);
        return place;
    }
    /// Ends every one that runs.
    static void end() {
        becomes([] {
            const HWND left = findKeyboardWindow();
            if (left) PostMessageW(left, WM_CLOSE, 0, 0);
            return !left;
        });
    }

private:
    static std::wstring systemDirectory() {
        wchar_t directory[MAX_PATH] = {};
        GetSystemDirectoryW(directory, MAX_PATH);
        return directory;
    }

    std::wstring path;
    bool isInstalled;
};

}  // namespace ZEMO::Test
