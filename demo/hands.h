#pragma once

#include "game.h"

#include <windows.h>

#include <string>

namespace demo {

/// The self test's hands: mouse and keyboard as a player's, by the system's own input, so that it takes the whole way.
/// Where the window can't be brought to the front they fall back to messages, and say so. Nothing here waits for an
/// effect: whoever calls knows what to wait for.
class Hands {
public:
    explicit Hands(Game& shown) : game(shown) {}

    /// Where everything below goes. False when real input can't reach it.
    bool takeTo(HWND newWindow);

    /// Client pixels.
    void moveTo(int x, int y);
    void click(int x, int y);
    void wheel(int x, int y, int notches);
    /// A key's press and release.
    void key(WORD virtualKey);
    /// Lower-case letters and digits that the keyboard has without Shift.
    void type(const std::string& letters);

private:
    void mouse(int x, int y, DWORD flags, DWORD data = 0);

    Game& game;
    HWND window = nullptr;
    bool isReal = false;
};

}  // namespace demo
