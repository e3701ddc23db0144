#include "client/input_case.h"

#include <gtest/gtest.h>

#include <format>

namespace ZEMO::Test {
namespace {

constexpr LPARAM kReleased = 0xC0000000;
constexpr LPARAM kExtended = 1 << 24;

std::string mouseLine(const char* kind, int x, int y, int button, int buttons, int detail,
                      const std::string& modifiers = "") {
    return std::format("{} {},{} button {} buttons {} detail {}{}", kind, x, y, button, buttons, detail,
                       modifiers.empty() ? "" : " " + modifiers);
}

std::string pointerLine(const char* kind, int x, int y, int button, int buttons, const std::string& modifiers = "") {
    return std::format("{} mouse {},{} button {} buttons {}{}", kind, x, y, button, buttons,
                       modifiers.empty() ? "" : " " + modifiers);
}

}  // namespace

void dispatchGameMessages() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void runCases(InputPage& page, const std::vector<InputCase>& cases) {
    for (const InputCase& row : cases) {
        SCOPED_TRACE(row.name);
        if (row.before) row.before();
        page.reachedGame();
        if (row.inject) {
            row.inject();
            dispatchGameMessages();
        }
        const Lines lines = page.log(
            [&](HWND window) {
                for (const SentMessage& m : row.messages) SendMessageW(window, m.id, m.wParam, m.lParam);
            },
            row.down, row.toggled);
        EXPECT_EQ(lines, row.page);
        EXPECT_EQ(page.reachedGame(), row.game);
        if (row.after) row.after();
    }
}

LPARAM keyPress(WORD scan, bool extended) { return 1 | (LPARAM{scan} << 16) | (extended ? kExtended : 0); }

LPARAM keyRelease(WORD scan, bool extended) { return keyPress(scan, extended) | kReleased; }

Lines movedLines(int x, int y, int buttons, const std::string& modifiers) {
    return {pointerLine("pointermove", x, y, -1, buttons, modifiers),
            mouseLine("mousemove", x, y, 0, buttons, 0, modifiers)};
}

Lines pressedLines(int x, int y, int button) {
    return {pointerLine("pointerdown", x, y, button, 0), mouseLine("mousedown", x, y, button, 0, 1)};
}

Lines releasedLines(int x, int y, int button) {
    Lines lines{pointerLine("pointerup", x, y, button, 0), mouseLine("mouseup", x, y, button, 0, 1)};
    if (button == 0) return lines + Lines{mouseLine("click", x, y, 0, 0, 1)};
    return lines + Lines{mouseLine("auxclick", x, y, button, 0, 1), mouseLine("contextmenu", x, y, button, 0, 0)};
}

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

}  // namespace ZEMO::Test
