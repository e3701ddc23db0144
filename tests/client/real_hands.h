#pragma once

#include <string>

#include "client/input_page.h"

namespace ZEMO::Test {

/// Types what the keyboard's layout has keys for, by the display's keyboard.
void typeReal(const std::string& text);
/// Taps a key while another is held.
void tapRealKeyWith(WORD held, WORD key, DWORD flags = 0);

/// A person's hands on a page that lies open: the display's mouse and keyboard, in the page's logical pixels. Each
/// movement ends when the page has heard of it. Used on the game's thread.
class RealHands {
public:
    explicit RealHands(InputPage& handledPage) : page(handledPage) {}

    void moveTo(POINT at);
    void press();
    void release();
    void click(POINT at);
    /// The left button held from one place to the other, by way of some between.
    void drag(POINT from, POINT to);
    /// Notches towards the user are negative.
    void wheel(POINT at, int notches);
    void type(const std::string& text);
    void tap(WORD key, DWORD flags = 0);
    void tapWith(WORD held, WORD key, DWORD flags = 0);

private:
    void send(DWORD flags, DWORD data = 0);
    InputPage& page;
    POINT place{}, lastPress{-1, -1};
};

}  // namespace ZEMO::Test
