#include <gtest/gtest.h>

#include <algorithm>

#include "client/input_case.h"
#include "support/import_replaced.h"
#include "support/top_windows.h"

// What decides between page and game, and what a page makes of input in the end: scrolling, clicks, menus.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;
using Ids = std::vector<UINT>;

constexpr char kScrolledBody[] =
    "<div id=box style='width:200px;height:100px;overflow:scroll'><div style='width:2000px;height:2000px'></div></div>";

/// A window of the game beside its main one, in front.
class OtherWindowInFront {
public:
    explicit OtherWindowInFront(GameHost& game)
        : window(CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"other", WS_POPUP | WS_VISIBLE, 900, 600, 50, 50, nullptr,
                                 nullptr, nullptr, nullptr)) {
        SetForegroundWindow(window);
        inFront = game.waitFor("the other window in front", [&] { return GetForegroundWindow() == window; });
    }
    ~OtherWindowInFront() { DestroyWindow(window); }
    OtherWindowInFront(const OtherWindowInFront&) = delete;
    OtherWindowInFront& operator=(const OtherWindowInFront&) = delete;
    bool inFront = false;

private:
    HWND window;
};

Lines turnWheel(InputPage& page, UINT message, int delta, const std::vector<int>& down = {}) {
    const POINT at = page.onScreen(50, 50);
    return page.log([&](HWND window) { SendMessageW(window, message, MAKEWPARAM(0, delta), MAKELPARAM(at.x, at.y)); },
                    down);
}

void checkWheelBehindAnotherWindow(Style style) {
    InputPage page(style, 1.0f);
    ASSERT_TRUE(page.open());
    EXPECT_EQ(turnWheel(page, WM_MOUSEWHEEL, 120), Lines{"wheel 50,50 0,-100"});
    {
        const OtherWindowInFront other(page.game);
        ASSERT_TRUE(other.inFront);
        page.reachedGame();
        EXPECT_EQ(turnWheel(page, WM_MOUSEWHEEL, 120), Lines{});
        EXPECT_EQ(turnWheel(page, WM_MOUSEHWHEEL, 120), Lines{});
        EXPECT_EQ(page.reachedGame(), Ids{}) << "dropped, and not given to the game";
    }
    // The end of the other window may hand the foreground on once more.
    EXPECT_TRUE(page.game.waitFor("the wheel in front", [&] {
        return page.bringToFront() && turnWheel(page, WM_MOUSEWHEEL, 120) == Lines{"wheel 50,50 0,-100"};
    }));
}

POINTER_INFO pointer;
BOOL WINAPI pointerInfo(UINT32, POINTER_INFO* info) {
    *info = pointer;
    return TRUE;
}

Lines touch(InputPage& page, UINT message, int x, int y) {
    pointer = {};
    pointer.pointerType = PT_TOUCH;
    pointer.ptPixelLocation = page.onScreen(x, y);
    return page.log([&](HWND window) { SendMessageW(window, message, MAKEWPARAM(7, 0), 0); });
}

bool has(const Lines& lines, const std::string& line) { return std::ranges::count(lines, line) > 0; }

/// A menu of this process, which the system shows in a window of its own class.
bool menuIsShown() {
    return std::ranges::any_of(Test::ownTopWindows(L"#32768"),
                               [](HWND menu) { return IsWindowVisible(menu) != FALSE; });
}

}  // namespace

TEST(InputRules, WheelBehindAnotherWindowForeground_IsDropped) { checkWheelBehindAnotherWindow(Style::kLayer); }
TEST(InputRules, WheelOfAnOwnWindowBehindAnotherForeground_IsDropped) {
    checkWheelBehindAnotherWindow(Style::kOwnWindow);
}

TEST(InputRules, InjectedWheelBehindAnotherWindowForeground_StillTurns) {
    InputPage page(Style::kLayer, 1.0f);
    ASSERT_TRUE(page.open());
    const OtherWindowInFront other(page.game);
    ASSERT_TRUE(other.inFront);
    ZEMO::UI::sendUIRemoteInputEvent("Wheel", "Up", "", 50, 50);
    EXPECT_EQ(page.logUntil("the wheel", [](const Lines& lines) { return !lines.empty(); }),
              Lines{"wheel 50,50 0,-100"});
}

TEST(InputRules, WheelWithShiftForeground_ScrollsSidewaysAsTheSidewaysMessageDoes) {
    InputPage page(Style::kLayer, 1.0f, kScrolledBody);
    ASSERT_TRUE(page.open());
    const auto scrolledTo = [&](const char* place) {
        std::string now;
        return page.game.waitFor(place, [&] {
            now = page.ask("box.scrollLeft+','+box.scrollTop");
            return now == place;
        });
    };
    turnWheel(page, WM_MOUSEWHEEL, -120);
    EXPECT_TRUE(scrolledTo("0,100"));
    turnWheel(page, WM_MOUSEWHEEL, -120, {VK_SHIFT});
    EXPECT_TRUE(scrolledTo("100,100"));
    turnWheel(page, WM_MOUSEHWHEEL, -120);
    EXPECT_TRUE(scrolledTo("200,100"));
    turnWheel(page, WM_MOUSEHWHEEL, -120, {VK_SHIFT});
    EXPECT_TRUE(scrolledTo("300,100"));
    turnWheel(page, WM_MOUSEWHEEL, 120, {VK_SHIFT});
    EXPECT_TRUE(scrolledTo("200,100"));
}

TEST(InputRules, CursorEntersForeground_FirstMoveIsTheGamesAndTheNextThePages) {
    InputPage page(Style::kLayer, 1.0f);
    ASSERT_TRUE(page.open());
    page.log([](HWND window) { SendMessageW(window, WM_MOUSELEAVE, 0, 0); });
    page.reachedGame();
    const auto move = [&](int x) {
        return page.log([&](HWND window) { SendMessageW(window, WM_MOUSEMOVE, 0, page.at(x, 20)); });
    };
    EXPECT_EQ(move(10), Lines{});
    EXPECT_EQ(page.reachedGame(), Ids{WM_MOUSEMOVE});
    EXPECT_EQ(move(11), movedLines(11, 20));
    EXPECT_EQ(page.reachedGame(), Ids{});
}

TEST(InputRules, NoPresentCallbackForeground_LeftPressIsThePagesAndTheGames) {
    InputPage page(Style::kLayer, 1.0f, "", false);
    const ImportReplaced replaced("GetPointerInfo", &pointerInfo);
    ASSERT_TRUE(page.open());
    const auto sent = [&](UINT message) {
        return page.log([&](HWND window) { SendMessageW(window, message, 0, page.at(10, 20)); });
    };
    EXPECT_EQ(sent(WM_LBUTTONDOWN), pressedLines(10, 20));
    EXPECT_EQ(page.reachedGame(), Ids{WM_LBUTTONDOWN});
    EXPECT_EQ(sent(WM_LBUTTONUP), releasedLines(10, 20));
    EXPECT_EQ(page.reachedGame(), Ids{});
    EXPECT_FALSE(touch(page, WM_POINTERDOWN, 10, 20).empty());
    EXPECT_EQ(page.reachedGame(), Ids{WM_POINTERDOWN});
    EXPECT_FALSE(touch(page, WM_POINTERUP, 10, 20).empty());
    EXPECT_EQ(page.reachedGame(), Ids{});
    ZEMO::UI::sendUIRemoteInputEvent("Click", "Down", "", 10, 20);
    EXPECT_EQ(page.logUntil("the press", [](const Lines& lines) { return lines.size() >= 2; }), pressedLines(10, 20));
    EXPECT_EQ(page.reachedGame(), Ids{WM_USER + 204});
}

TEST(InputRules, SteamOverlayForeground_TouchIsTheGamesOnALayer) {
    InputPage page(Style::kLayer, 1.0f);
    const ImportReplaced replaced("GetPointerInfo", &pointerInfo);
    ASSERT_TRUE(page.open());
    ZEMO::UI::setUISteamOverlayActiveStatus(true);
    for (const UINT message : {WM_POINTERDOWN, WM_POINTERUPDATE, WM_POINTERUP}) {
        EXPECT_EQ(touch(page, message, 10, 20), Lines{});
        EXPECT_EQ(page.reachedGame(), Ids{message});
    }
    ZEMO::UI::setUISteamOverlayActiveStatus(false);
    EXPECT_EQ(touch(page, WM_POINTERDOWN, 10, 20).size(), 2u);
    EXPECT_EQ(touch(page, WM_POINTERUP, 10, 20).size(), 2u);
    EXPECT_EQ(page.reachedGame(), Ids{});
}

TEST(InputRules, SteamOverlayOverAnOwnWindowForeground_TouchIsStillThePages) {
    InputPage page(Style::kOwnWindow, 1.0f);
    const ImportReplaced replaced("GetPointerInfo", &pointerInfo);
    ASSERT_TRUE(page.open());
    ZEMO::UI::setUISteamOverlayActiveStatus(true);
    EXPECT_EQ(touch(page, WM_POINTERDOWN, 10, 20).size(), 2u);
    EXPECT_EQ(touch(page, WM_POINTERUP, 10, 20).size(), 2u);
    ZEMO::UI::setUISteamOverlayActiveStatus(false);
}

TEST(InputRules, TapForeground_ClicksInThePage) {
    for (const Style style : {Style::kLayer, Style::kOwnWindow}) {
        InputPage page(
            style, 1.0f,
            "<button id=b style='position:absolute;left:40px;top:40px' onclick='add(\"tapped\")'>tap</button>");
        const ImportReplaced replaced("GetPointerInfo", &pointerInfo);
        ASSERT_TRUE(page.open());
        EXPECT_EQ(page.ask("gestures = true"), "true");
        pointer = {};
        pointer.pointerType = PT_TOUCH;
        pointer.ptPixelLocation = page.onScreen(50, 50);
        // At once: a finger that rests for half a second is no tap.
        const Lines touched = page.log([](HWND window) {
            for (const UINT message : {WM_POINTERDOWN, WM_POINTERUP})
                SendMessageW(window, message, MAKEWPARAM(7, 0), 0);
        });
        const Lines lines = touched + page.logUntil("the click of a tap", [&](const Lines& later) {
            return has(touched, "tapped") || has(later, "tapped");
        });
        EXPECT_TRUE(has(lines, "mousedown 50,50 button 0 buttons 1 detail 1"));
        EXPECT_TRUE(has(lines, "tapped"));
    }
}

TEST(InputRules, RightPressByPointerForeground_DroppedOnALayerAndTheRightButtonInAnOwnWindow) {
    for (const Style style : {Style::kLayer, Style::kOwnWindow}) {
        InputPage page(style, 1.0f);
        const ImportReplaced replaced("GetPointerInfo", &pointerInfo);
        ASSERT_TRUE(page.open());
        Lines lines;
        for (const auto& [message, change] : {std::pair{WM_POINTERDOWN, POINTER_CHANGE_SECONDBUTTON_DOWN},
                                              std::pair{WM_POINTERUP, POINTER_CHANGE_SECONDBUTTON_UP}}) {
            pointer = {};
            pointer.pointerType = PT_MOUSE;
            pointer.ButtonChangeType = change;
            pointer.ptPixelLocation = page.onScreen(30, 40);
            lines = lines + page.log([&](HWND window) { SendMessageW(window, message, MAKEWPARAM(1, 0), 0); });
        }
        EXPECT_EQ(lines, style == Style::kLayer ? Lines{} : pressedLines(30, 40, 2) + releasedLines(30, 40, 2));
        EXPECT_EQ(page.reachedGame(), Ids{});
    }
}

TEST(InputRules, RightClickInAnOwnWindowForeground_PageIsAskedForItsMenuAndNoneIsShown) {
    InputPage page(Style::kOwnWindow, 1.0f);
    ASSERT_TRUE(page.open());
    const Lines lines = page.log([&](HWND window) {
        SendMessageW(window, WM_RBUTTONDOWN, MK_RBUTTON, page.at(30, 40));
        SendMessageW(window, WM_RBUTTONUP, 0, page.at(30, 40));
    });
    EXPECT_TRUE(has(lines, "contextmenu 30,40 button 2 buttons 0 detail 0"));
    page.game.pass(std::chrono::milliseconds(500));
    EXPECT_FALSE(menuIsShown());
    EXPECT_EQ(page.log([](HWND window) { SendMessageW(window, WM_KEYDOWN, 'A', keyPress(0x1E)); }),
              Lines{"keydown 65 a"})
        << "nothing has taken the keyboard";
}

TEST(InputRules, PressThatLeavesTheWindowForeground_IsReleasedOutside) {
    for (const Style style : {Style::kLayer, Style::kOwnWindow}) {
        InputPage page(style, 1.0f);
        ASSERT_TRUE(page.open());
        const Lines lines = page.log([&](HWND window) {
            SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, page.at(10, 20));
            SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(-7, -9));
        });
        EXPECT_TRUE(has(lines, "mouseup -7,-9 button 0 buttons 0 detail 1"));
        EXPECT_EQ(GetCapture(), nullptr);
    }
}

TEST(InputRules, ScaleOfOneAndAHalf_DevicePlace100IsPlace66_Scale150) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    InputPage page(Style::kLayer, 1.5f);
    ASSERT_TRUE(page.open());
    for (const auto& [device, logical] :
         {std::pair{100, 66}, std::pair{99, 66}, std::pair{98, 65}, std::pair{101, 67}}) {
        EXPECT_EQ(page.log([&](HWND window) { SendMessageW(window, WM_LBUTTONDOWN, 0, MAKELPARAM(device, device)); }),
                  pressedLines(logical, logical));
        page.log([&](HWND window) { SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(device, device)); });
    }
}

}  // namespace ZEMO::Test
