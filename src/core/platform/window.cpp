#include <windows.h>

#include "zemo/platform.h"

// The process's main window, looked for anew at each question: a game makes and destroys windows as it likes.
namespace ZEMO::Platform::Misc {
namespace {

BOOL CALLBACK stopAtMainWindow(HWND window, LPARAM found) {
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (processId != GetCurrentProcessId() || GetWindow(window, GW_OWNER) || !IsWindowVisible(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

RECT mainClientArea() {
    HWND window = nullptr;
    EnumWindows(stopAtMainWindow, reinterpret_cast<LPARAM>(&window));
    RECT area{};
    if (!window || !GetClientRect(window, &area)) return {};
    return area;
}

}  // namespace

unsigned int getWindowWidth() {
    const RECT area = mainClientArea();
    return static_cast<unsigned int>(area.right - area.left);
}

unsigned int getWindowHeight() {
    const RECT area = mainClientArea();
    return static_cast<unsigned int>(area.bottom - area.top);
}

bool getIsLandscapeWindow() {
    const RECT area = mainClientArea();
    return area.right - area.left > area.bottom - area.top;
}

}  // namespace ZEMO::Platform::Misc
