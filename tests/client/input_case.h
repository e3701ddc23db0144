#pragma once

#include "client/input_page.h"

namespace ZEMO::Test {

/// One row of a table of input: messages to the view's window with the keys that are held meanwhile, what the page logs
/// of them, and the messages that come through to the game's own procedure.
struct InputCase {
    std::string name;
    std::vector<SentMessage> messages;
    Lines page;
    std::vector<UINT> game = {};
    std::vector<int> down = {};
    std::vector<int> toggled = {};
    std::function<void()> inject = nullptr;  ///< in place of the messages, for what goes through the game's queue
    std::function<void()> before = nullptr;
    std::function<void()> after = nullptr;
};

/// Sends each, and holds its outcome against the row. All run, also after one that fails.
void runCases(InputPage& page, const std::vector<InputCase>& cases);

/// What waits in this thread's queue, with the characters that come of it.
void dispatchGameMessages();

/// The lParam of a key's press and of its release.
LPARAM keyPress(WORD scan, bool extended = false);
LPARAM keyRelease(WORD scan, bool extended = false);

// What the page says of the mouse.
Lines movedLines(int x, int y, int buttons = 0, const std::string& modifiers = "");
Lines pressedLines(int x, int y, int button = 0);
/// With the click that a release on the same element makes.
Lines releasedLines(int x, int y, int button = 0);
Lines operator+(Lines left, const Lines& right);

}  // namespace ZEMO::Test
