#include "layers/main_window.h"

namespace ZEMO::UI {
namespace {

BOOL CALLBACK takeMainWindow(HWND hwnd, LPARAM result) {
    DWORD owner = 0;
    GetWindowThreadProcessId(hwnd, &owner);
    if (owner != GetCurrentProcessId() || GetWindow(hwnd, GW_OWNER) || !IsWindowVisible(hwnd)) return TRUE;
    *reinterpret_cast<HWND*>(result) = hwnd;
    return FALSE;
}

}  // namespace

HWND findMainWindow() {
    HWND found = nullptr;
    EnumWindows(&takeMainWindow, reinterpret_cast<LPARAM>(&found));
    return found;
}

}  // namespace ZEMO::UI
