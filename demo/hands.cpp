#include "hands.h"

#include <cstdio>

namespace demo {

namespace {

constexpr double kForegroundPatience = 3;  // seconds

/// A place on the desktop as SendInput wants it: 0 to 65535 over all screens, the middle of the pixel.
LONG absolute(LONG position, int origin, int extent) {
    return static_cast<LONG>(((position - origin) * 65536LL + 32768) / extent);
}

}  // namespace

bool Hands::takeTo(HWND newWindow) {
    window = newWindow;
    SetForegroundWindow(window);
    isReal = game.playUntil([this] { return GetForegroundWindow() == window; }, kForegroundPatience);
    if (!isReal) std::printf("(by messages, the window is not in front) ");
    return isReal;
}

void Hands::mouse(int x, int y, DWORD flags, DWORD data) {
    POINT point{x, y};
    ClientToScreen(window, &point);
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = absolute(point.x, GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_CXVIRTUALSCREEN));
    input.mi.dy = absolute(point.y, GetSystemMetrics(SM_YVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN));
    input.mi.mouseData = data;
    input.mi.dwFlags = flags | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK;
    SendInput(1, &input, sizeof input);
}

void Hands::moveTo(int x, int y) {
    if (isReal)
        mouse(x, y, 0);
    else
        PostMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
}

void Hands::click(int x, int y) {
    moveTo(x, y);
    if (isReal) {
        mouse(x, y, MOUSEEVENTF_LEFTDOWN);
        mouse(x, y, MOUSEEVENTF_LEFTUP);
        return;
    }
    PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    PostMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
}

void Hands::wheel(int x, int y, int notches) {
    moveTo(x, y);
    if (isReal) {
        mouse(x, y, MOUSEEVENTF_WHEEL, static_cast<DWORD>(notches) * WHEEL_DELTA);
        return;
    }
    POINT point{x, y};
    ClientToScreen(window, &point);  // this message alone counts from the screen's corner
    PostMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA), MAKELPARAM(point.x, point.y));
}

void Hands::key(WORD virtualKey) {
    const WORD scanCode = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    if (!isReal) {
        PostMessageW(window, WM_KEYDOWN, virtualKey, (scanCode << 16) | 1);
        PostMessageW(window, WM_KEYUP, virtualKey, static_cast<LPARAM>((scanCode << 16) | 0xC0000001u));
        return;
    }
    const bool isExtended = virtualKey >= VK_PRIOR && virtualKey <= VK_DOWN;  // the arrows and their neighbours
    INPUT inputs[2]{};
    for (INPUT& input : inputs) {
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = virtualKey;
        input.ki.wScan = scanCode;
        input.ki.dwFlags = isExtended ? KEYEVENTF_EXTENDEDKEY : 0;
    }
    inputs[1].ki.dwFlags |= KEYEVENTF_KEYUP;
    SendInput(2, inputs, sizeof *inputs);
}

void Hands::type(const std::string& letters) {
    for (const char letter : letters) key(static_cast<WORD>(VkKeyScanW(static_cast<unsigned char>(letter)) & 0xFF));
}

}  // namespace demo
