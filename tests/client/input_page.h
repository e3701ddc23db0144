#pragma once

#include <string>
#include <vector>

#include "engine/game_host.h"
#include "support/http_server.h"
#include "support/real_key.h"

namespace ZEMO::Test {

using Lines = std::vector<std::string>;

struct SentMessage {
    UINT id = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

/// A shown view with a page that keeps a log of its input events and hands it to the test when it is asked. The view's
/// window has the foreground, and the test knows what of the input came through to the game.
///
/// One line for an event; what the page says of itself comes in these forms, with the modifiers that hold at the end
/// (S, C, A, M for Shift, Ctrl, Alt, Meta; G AltGraph, K caps lock, N num lock):
///   keydown 65 a left|right|pad SCA
///   mousedown 10,20 button 0 buttons 1 detail 1 S
///   pointerdown mouse 10,20 button 0 buttons 1 S
///   wheel 10,20 0,-120 S
///   touchstart 10,20 radius 3,3 force 1
///   input a=text
class InputPage {
public:
    enum Style : int { kLayer = 0, kOwnWindow = 1 };

    /// `scale` is the one that the session has; `body` stands in the page, which has `size` logical pixels.
    InputPage(Style style, float scale, const std::string& body = "", bool presentCallback = true,
              SIZE size = {320, 240});
    ~InputPage();

    /// Shown, painted, in front, with the keyboard.
    bool open();
    bool bringToFront();

    /// Runs `act` on the thread of the view's window with these keys down and toggled, and gives what the page logged
    /// of it. A last key that the page does not log ends each of them: input comes to a page in order.
    Lines log(const std::function<void(HWND)>& act, const std::vector<int>& down = {},
              const std::vector<int>& toggled = {});
    /// The same for a message that goes through the window's queue, and for what its loop makes of it: waits for that
    /// many lines.
    Lines logPosted(const SentMessage& message, size_t expected);
    /// The same for input that comes by the display: `act` runs on the calling thread.
    Lines logReal(const std::function<void()>& act);
    /// Collects what the page logs in its own time.
    Lines logUntil(const char* what, const std::function<bool(const Lines&)>& done);
    /// The input messages that the game's own procedure got since the last call.
    std::vector<UINT> reachedGame();
    /// The value of a script's expression, as text.
    std::string ask(const std::string& expression);
    bool onWindowThread(const std::function<void()>& work);
    /// Device pixels of the window for the page's logical ones.
    LPARAM at(int x, int y) const;
    POINT onScreen(int x, int y) const;

    HttpServer server;
    GameHost game;
    NavigationRecorder events;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
    HWND window = nullptr;

private:
    Lines waitForAnswer(size_t answers);
    std::vector<std::string> answers() const;
    Style style;
    float scale;
    SIZE size;
    size_t asked = 0;
};

/// The keyboard state of this thread, which GetKeyState reads; the one before is back at the end.
class KeysHeld {
public:
    KeysHeld(const std::vector<int>& down, const std::vector<int>& toggled);
    ~KeysHeld() { SetKeyboardState(before); }
    KeysHeld(const KeysHeld&) = delete;
    KeysHeld& operator=(const KeysHeld&) = delete;

private:
    BYTE before[256] = {};
};

/// A key of the display's keyboard, pressed and released.
void tapRealKey(WORD virtualKey, DWORD flags = 0);

}  // namespace ZEMO::Test
