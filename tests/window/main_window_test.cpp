#include "layers/main_window.h"

#include <gtest/gtest.h>

#include <windows.h>

#include "support/stand_in_keyboard.h"

namespace ZEMO::Test {
namespace {

/// A top-level window of the system's plainest class, above all others that this test has made.
class TopWindow {
public:
    TopWindow(DWORD style, HWND owner = nullptr)
        : window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | style, 60, 60, 200, 120, owner, nullptr, nullptr,
                                 nullptr)) {
        SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    ~TopWindow() { DestroyWindow(window); }
    TopWindow(const TopWindow&) = delete;
    TopWindow& operator=(const TopWindow&) = delete;
    const HWND window;
};

}  // namespace

TEST(MainWindow, NoneOfThisProcess_Null) { EXPECT_EQ(UI::findMainWindow(), nullptr); }

TEST(MainWindow, HiddenOneAboveIt_VisibleOneIsChosen) {
    const TopWindow game(WS_VISIBLE);
    const TopWindow hidden(0);
    EXPECT_EQ(UI::findMainWindow(), game.window);
    ShowWindow(game.window, SW_HIDE);
    EXPECT_EQ(UI::findMainWindow(), nullptr) << "a game without a visible window has none";
}

TEST(MainWindow, OwnedOneAboveIt_OwnerIsChosen) {
    const TopWindow game(WS_VISIBLE);
    const TopWindow dialog(WS_VISIBLE, game.window);
    ASSERT_EQ(GetWindow(dialog.window, GW_OWNER), game.window);
    EXPECT_EQ(UI::findMainWindow(), game.window);
}

TEST(MainWindow, AnotherProcessesWindowAboveIt_OwnOneIsChosen) {
    const TopWindow game(WS_VISIBLE);
    const HelperProcess other(helperPath(L"stand_in_keyboard.exe"), {});
    const HWND foreign = StandInKeyboard::window();
    ASSERT_TRUE(foreign && IsWindowVisible(foreign));
    SetWindowPos(foreign, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    EXPECT_EQ(UI::findMainWindow(), game.window);
    StandInKeyboard::end();
}

TEST(MainWindow, TwoThatWouldDo_UpperOneIsChosen) {
    const TopWindow lower(WS_VISIBLE);
    const TopWindow upper(WS_VISIBLE);
    EXPECT_EQ(UI::findMainWindow(), upper.window);
}

TEST(MainWindow, ChildOfTheGame_IsNoTopLevelWindow) {
    const TopWindow game(WS_VISIBLE);
    const HWND child =
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 20, 20, game.window, nullptr, nullptr, nullptr);
    ASSERT_TRUE(child);
    EXPECT_EQ(UI::findMainWindow(), game.window);
}

}  // namespace ZEMO::Test
