#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <format>

#include "client/display_hands.h"
#include "client/input_case.h"

// Keys and mouse of the display itself, which its server makes and the system turns into messages, in both styles and
// at two scales; and the third key level of a layout that has one.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;

struct Row {
    std::string act;  ///< of the tool that plays the user
    Lines page;
    std::vector<UINT> game = {};
    bool doubles = false;  ///< a press here makes a double click of the row's before
};

/// The display's key after each row: with it the display has done all of the row.
constexpr char kFence[] = " key F11";
const Lines kFenceLines = {"keydown 122 F11", "keyup 122 F11"};

Lines tapped(int code, const std::string& name, const std::string& modifiers = "") {
    const std::string end = modifiers.empty() ? "" : " " + modifiers;
    return {std::format("keydown {} {}{}", code, name, end), std::format("keyup {} {}{}", code, name, end)};
}

/// With the character between.
Lines typed(int code, int character, const std::string& name) {
    return {std::format("keydown {} {}", code, name), std::format("keypress {} {}", character, name),
            std::format("keyup {} {}", code, name)};
}

/// With a key held, which the page hears as well.
Lines held(int code, const std::string& name, const std::string& modifier, const Lines& lines) {
    return Lines{std::format("keydown {} {} {}", code, name, modifier)} + lines +
           Lines{std::format("keyup {} {}", code, name)};
}

std::vector<Row> keyRows(Style style) {
    const bool layer = style == Style::kLayer;
    const Lines shiftedA = {"keydown 65 A S", "keypress 65 A S", "keyup 65 A S"};
    const Lines altDown = layer ? Lines{} : Lines{"keydown 18 Alt A"};
    const std::vector<UINT> altOfTheGame = layer ? std::vector<UINT>{WM_SYSKEYDOWN} : std::vector<UINT>{};
    std::vector<Row> rows;
    for (char c = 'a'; c <= 'z'; ++c) rows.push_back({std::format("key {}", c), typed(c - 32, c, std::string(1, c))});
    for (char c = '0'; c <= '9'; ++c) rows.push_back({std::format("key {}", c), typed(c, c, std::string(1, c))});
    const std::vector<Row> more = {
        {"key Return", typed(13, 13, "Enter")},
        {"key KP_Enter", typed(13, 13, "Enter")},
        {"key space", typed(32, 32, "Space")},
        {"key Escape", tapped(27, "Escape")},
        {"key BackSpace", tapped(8, "Backspace")},
        {"key F1", tapped(112, "F1")},
        {"key F12", tapped(123, "F12")},
        {"key Left", tapped(37, "ArrowLeft")},
        {"key KP_Left", tapped(37, "ArrowLeft")},
        {"key Home", tapped(36, "Home")},
        {"key Next", tapped(34, "PageDown")},
        {"key Delete", tapped(46, "Delete")},
        {"key Insert", tapped(45, "Insert")},
        {"key KP_Add", typed(107, 43, "+")},
        // By the keyboard's own codes: of a name the tool makes more than one key.
        {"keydown 50 key a keyup 50", held(16, "Shift", "S", shiftedA)},
        {"keydown 62 key a keyup 62", held(16, "Shift", "S", shiftedA)},
        {"keydown 37 key c keyup 37", held(17, "Control", "C", tapped(67, "c", "C"))},
        {"keydown 105 key c keyup 105", held(17, "Control", "C", tapped(67, "c", "C"))},
        {"key 64", altDown + Lines{"keyup 18 Alt"}, altOfTheGame},
        {"key 108", altDown + Lines{"keyup 18 Alt"}, altOfTheGame},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}

std::vector<Row> mouseRows(const InputPage& page, Style style) {
    const bool layer = style == Style::kLayer;
    const auto moved = [&](int x, int y) {
        const POINT at = page.onScreen(x, y);
        return std::format("mousemove {} {}", at.x, at.y);
    };
    const std::vector<UINT> middleOfTheGame =
        layer ? std::vector<UINT>{WM_MBUTTONDOWN, WM_MBUTTONUP} : std::vector<UINT>{};
    std::vector<Row> rows;
    for (const auto& [x, y] : {std::pair{20, 30}, std::pair{101, 77}, std::pair{250, 200}}) {
        const Lines click = pressedLines(x, y) + releasedLines(x, y);
        const Lines rightClick = pressedLines(x, y, 2) + releasedLines(x, y, 2);
        rows.push_back({moved(x, y), movedLines(x, y)});
        rows.push_back({"click 1", click});
        // No double click; a window of its own does not even hear the second press.
        const Lines secondRelease = {releasedLines(x, y)[0],
                                     std::format("mouseup {},{} button 0 buttons 0 detail 0", x, y)};
        rows.push_back({"click --repeat 2 --delay 20 1", click + (layer ? click : secondRelease), {}, true});
        rows.push_back({"click 2", {}, middleOfTheGame});
        rows.push_back({"click 3", layer ? Lines{} : rightClick});
        rows.push_back({"click 4", {std::format("wheel {},{} 0,-100", x, y)}});
        rows.push_back({"click 5", {std::format("wheel {},{} 0,100", x, y)}});
        // A wheel that turns sideways comes with its place in the window here, where every other system has it on the
        // screen; so it is not among these rows.
        rows.push_back(
            {"keydown 50 click 5 keyup 50", held(16, "Shift", "S", {std::format("wheel {},{} 100,0", x, y)})});
        rows.push_back({std::format("mousedown 1 {} mouseup 1", moved(x + 9, y - 9)),
                        pressedLines(x, y) + movedLines(x + 9, y - 9, 1) + releasedLines(x + 9, y - 9),
                        {},
                        true});
    }
    return rows;
}

bool isFence(const std::string& line) { return std::ranges::count(kFenceLines, line) > 0; }

size_t fencesIn(const Lines& lines) { return static_cast<size_t>(std::ranges::count_if(lines, isFence)); }

/// All at once, since keys stay in order: each row ends where its fence does.
void runKeyRows(InputPage& page, const std::vector<Row>& rows) {
    std::string acts;
    std::vector<UINT> game;
    for (const Row& row : rows) {
        acts += " " + row.act + kFence;
        game.insert(game.end(), row.game.begin(), row.game.end());
    }
    page.reachedGame();
    ASSERT_TRUE(runOnDisplay("xdotool" + acts));
    const std::string fences = std::to_string(rows.size());
    // Asked by script: a key of the test's own between a key and its character would have the page hear that one too.
    const std::string fencesSoFar = "lines.filter(l => l == '" + kFenceLines.back() + "').length";
    EXPECT_TRUE(page.game.waitFor("the last key", [&] { return page.ask(fencesSoFar) == fences; }));
    const Lines all = page.log([](HWND) {});
    auto at = all.begin();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.act);
        const auto end = std::find(at, all.end(), kFenceLines.front());
        EXPECT_EQ(Lines(at, end), row.page);
        at = std::find_if_not(end, all.end(), isFence);
    }
    EXPECT_EQ(page.reachedGame(), game);
}

/// What the page hears of one act, and of nothing else until the fence: the engine lets a key pass what it still finds
/// the place of, so that the fence may come before the mouse's last lines.
Lines played(InputPage& page, const std::string& act, size_t expected) {
    EXPECT_TRUE(runOnDisplay("xdotool " + act + kFence));
    Lines all = page.logUntil("what the display did", [&](const Lines& lines) {
        const size_t fences = fencesIn(lines);
        return fences >= kFenceLines.size() && lines.size() - fences >= expected;
    });
    EXPECT_EQ(fencesIn(all), kFenceLines.size()) << "the display did not come to the row's end";
    std::erase_if(all, isFence);
    return all;
}

/// What the game's loop fetched, to see on which side of the library a line was lost. Of a window of the view's own
/// there is nothing.
std::string fetched(const InputPage& page) {
    std::string text = "fetched by the game's loop:";
    for (const GameMessage& message : page.game.fetchedMessages) text += std::format(" {:04x}", message.id);
    return text;
}

void runMouseRows(InputPage& page, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.act);
        if (row.doubles) page.game.pass(std::chrono::milliseconds(GetDoubleClickTime()));
        page.reachedGame();
        page.game.fetchedMessages.clear();
        EXPECT_EQ(played(page, row.act, row.page.size()), row.page) << fetched(page);
        EXPECT_EQ(page.reachedGame(), row.game);
    }
}

/// A click, by which the display's own side gives the window its keys. The cursor comes in, which is a layer's game's
/// for one move.
void takeInHand(InputPage& page) {
    const POINT at = page.onScreen(60, 60);
    played(page, std::format("mousemove {} {} click 1", at.x, at.y), releasedLines(60, 60).size() + 2);
    const POINT next = page.onScreen(63, 60);
    EXPECT_EQ(played(page, std::format("mousemove {} {}", next.x, next.y), 2), movedLines(63, 60));
}

void checkDisplay(Style style, float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    InputPage page(style, scale);
    ASSERT_TRUE(page.open());
    ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(page.window)) / 96.0f, scale) << "the session's scale";
    takeInHand(page);
    const std::vector<Row> keys = keyRows(style), mouse = mouseRows(page, style);
    EXPECT_EQ(keys.size() + mouse.size(), 83u);
    runKeyRows(page, keys);
    runMouseRows(page, mouse);
}

}  // namespace

TEST(DisplayInput, LayerForeground_EachRowReachesThePageAsTold) { checkDisplay(Style::kLayer, 1.0f); }
TEST(DisplayInput, OwnWindowForeground_EachRowReachesThePageAsTold) { checkDisplay(Style::kOwnWindow, 1.0f); }
TEST(DisplayInput, Layer_EachRowReachesThePageAsTold_Scale150) { checkDisplay(Style::kLayer, 1.5f); }
TEST(DisplayInput, OwnWindow_EachRowReachesThePageAsTold_Scale150) { checkDisplay(Style::kOwnWindow, 1.5f); }

}  // namespace ZEMO::Test
