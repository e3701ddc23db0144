#include "client/real_hands.h"

#include <gtest/gtest.h>

namespace ZEMO::Test {
namespace {

constexpr int kStepsOfADrag = 6;

/// A place on the desktop as SendInput wants it: 0 to 65535 over all screens, the middle of the pixel.
LONG absolute(LONG position, int origin, int extent) {
    return static_cast<LONG>(((position - origin) * 65536LL + 32768) / extent);
}

POINT between(POINT from, POINT to, int step) {
    return {from.x + (to.x - from.x) * step / kStepsOfADrag, from.y + (to.y - from.y) * step / kStepsOfADrag};
}

}  // namespace

void typeReal(const std::string& text) {
    for (const char c : text) {
        const SHORT scan = VkKeyScanW(static_cast<WCHAR>(c));
        EXPECT_NE(scan, -1) << "no key for " << c;
        const bool shifted = (HIBYTE(scan) & 1) != 0;
        if (shifted) sendRealKey(VK_LSHIFT, 0);
        tapRealKey(LOBYTE(scan));
        if (shifted) sendRealKey(VK_LSHIFT, KEYEVENTF_KEYUP);
    }
}

void tapRealKeyWith(WORD held, WORD key, DWORD flags) {
    sendRealKey(held, 0);
    tapRealKey(key, flags);
    sendRealKey(held, KEYEVENTF_KEYUP);
}

void RealHands::send(DWORD flags, DWORD data) {
    const POINT at = page.onScreen(place.x, place.y);
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = absolute(at.x, GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_CXVIRTUALSCREEN));
    input.mi.dy = absolute(at.y, GetSystemMetrics(SM_YVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN));
    input.mi.mouseData = data;
    input.mi.dwFlags = flags | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_VIRTUALDESK;
    page.logReal([&] { SendInput(1, &input, sizeof input); });
}

// Twice, since a cursor that comes in from outside is the game's for one move.
void RealHands::moveTo(POINT at) {
    place = {at.x + 1, at.y};
    send(0);
    place = at;
    send(0);
}

// No double click: a window of its own takes the second press of one for nothing.
void RealHands::press() {
    if (place.x == lastPress.x && place.y == lastPress.y)
        page.game.pass(std::chrono::milliseconds(GetDoubleClickTime()));
    lastPress = place;
    send(MOUSEEVENTF_LEFTDOWN);
}

void RealHands::release() { send(MOUSEEVENTF_LEFTUP); }

void RealHands::click(POINT at) {
    moveTo(at);
    press();
    release();
}

void RealHands::drag(POINT from, POINT to) {
    moveTo(from);
    press();
    for (int step = 1; step <= kStepsOfADrag; ++step) {
        place = between(from, to, step);
        send(0);
    }
    release();
}

void RealHands::wheel(POINT at, int notches) {
    moveTo(at);
    send(MOUSEEVENTF_WHEEL, static_cast<DWORD>(notches * WHEEL_DELTA));
}

void RealHands::type(const std::string& text) {
    page.logReal([&] { typeReal(text); });
}

void RealHands::tap(WORD key, DWORD flags) {
    page.logReal([&] { tapRealKey(key, flags); });
}

void RealHands::tapWith(WORD held, WORD key, DWORD flags) {
    page.logReal([&] { tapRealKeyWith(held, key, flags); });
}

}  // namespace ZEMO::Test
