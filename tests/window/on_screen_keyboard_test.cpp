// The keyboard as another program, end to end: a stand-in in the system's place reads the real registry as it starts.
#include "layers/deck/on_screen_keyboard.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <vector>

#include "core/unique_handle.h"
#include "support/debug_log.h"
#include "support/keyboard_key.h"
#include "support/stand_in_keyboard.h"
#include "support/top_windows.h"

namespace ZEMO::UI {
namespace {

using Test::becomes;
using Test::findKeyboardWindow;
using Test::StandInKeyboard;
using Test::topWindows;
using Values = std::vector<std::optional<DWORD>>;

constexpr ScreenMetrics kScaled{640, 480, 960, 768};

void expectPlace(HWND window, Rect expected) {
    const RECT place = StandInKeyboard::placeOf(window);
    EXPECT_EQ((Rect{place.left, place.top, place.right - place.left, place.bottom - place.top}), expected);
}

class OnScreenKeyboard : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(keyboard.installed()) << "the system has a keyboard of its own, which tests leave alone";
        ASSERT_EQ(findKeyboardWindow(), nullptr);
        key.create();
    }

    HWND started() {
        const HWND window = StandInKeyboard::window();
        EXPECT_NE(window, nullptr);
        return window;
    }

    ZEMO::Test::KeyboardKey key;
    StandInKeyboard keyboard;
    ZEMO::Test::DebugLogCapture log;
};

TEST_F(OnScreenKeyboard, NoneRuns_StartsAtTheBottomWhereTheRegistryTells) {
    placeOnScreenKeyboard(true, kScaled);
    EXPECT_EQ(key.all(), (Values{0, 499, 640, 168, 0, 0}));
    expectPlace(started(), {0, 499, 640, 168});
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST_F(OnScreenKeyboard, NoneRuns_StartsAtTheTop) {
    placeOnScreenKeyboard(false, kScaled);
    EXPECT_EQ(key.all(), (Values{0, 0, 640, 168, 0, 0}));
    expectPlace(started(), {0, 0, 640, 168});
}

TEST_F(OnScreenKeyboard, NoRegistryKey_StartsWhereItLikes) {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft\\Osk");
    placeOnScreenKeyboard(true, kScaled);
    expectPlace(started(), {7, 8, 90, 60});
    EXPECT_FALSE(key.exists());
    EXPECT_EQ(log.texts(), std::vector<std::string>{"Failed to open registry key (Error: 2)\n"});
}

TEST_F(OnScreenKeyboard, OneRuns_MovesAndTheRegistryStays) {
    placeOnScreenKeyboard(true, kScaled);
    const HWND window = started();
    key.set(L"WindowTop", 4711);
    const Values before = key.all();
    placeOnScreenKeyboard(false, kScaled);
    expectPlace(window, {0, 0, 960, 268});
    placeOnScreenKeyboard(true, kScaled);
    expectPlace(window, {0, 500, 960, 268});
    EXPECT_EQ(key.all(), before);
    EXPECT_EQ(findKeyboardWindow(), window);
    EXPECT_EQ(topWindows(L"OSKMainClass"), std::vector{window});  // no second one
}

TEST_F(OnScreenKeyboard, HiddenOne_IsShownAgainByTheNextPlacing) {
    placeOnScreenKeyboard(true, kScaled);
    const HWND window = started();
    hideOnScreenKeyboard();
    EXPECT_FALSE(IsWindowVisible(window));
    EXPECT_EQ(findKeyboardWindow(), window);  // it runs on
    placeOnScreenKeyboard(false, kScaled);
    EXPECT_TRUE(IsWindowVisible(window));
    expectPlace(window, {0, 0, 960, 268});
}

TEST_F(OnScreenKeyboard, Closed_ProgramEnds) {
    placeOnScreenKeyboard(true, kScaled);
    DWORD process = 0;
    GetWindowThreadProcessId(started(), &process);
    const Core::UniqueKernelHandle running(OpenProcess(SYNCHRONIZE, FALSE, process));
    ASSERT_TRUE(running);
    closeOnScreenKeyboard();
    EXPECT_EQ(WaitForSingleObject(running.get(), 20000), WAIT_OBJECT_0);
    EXPECT_EQ(findKeyboardWindow(), nullptr);
}

TEST_F(OnScreenKeyboard, NoneRuns_HidingAndClosingStartNothing) {
    hideOnScreenKeyboard();
    closeOnScreenKeyboard();
    EXPECT_EQ(findKeyboardWindow(), nullptr);
    EXPECT_EQ(key.all(), Values(6));
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST_F(OnScreenKeyboard, OneThatDoesNotAnswer_HoldsNobodyUp) {
    const Core::UniqueKernelHandle wakes(CreateEventW(nullptr, TRUE, FALSE, L"zemo_stand_in_keyboard_wakes"));
    placeOnScreenKeyboard(true, kScaled);
    const HWND window = started();
    PostMessageW(window, WM_APP, 0, 0);
    ASSERT_TRUE(becomes([&] { return IsHungAppWindow(window) != FALSE; }));
    const Core::UniqueKernelHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread caller([&] {
        hideOnScreenKeyboard();
        placeOnScreenKeyboard(false, kScaled);
        closeOnScreenKeyboard();
        SetEvent(done.get());
    });
    EXPECT_EQ(WaitForSingleObject(done.get(), 20000), WAIT_OBJECT_0);
    SetEvent(wakes.get());
    caller.join();
    EXPECT_TRUE(becomes([] { return findKeyboardWindow() == nullptr; }));  // the close was only late
}

}  // namespace
}  // namespace ZEMO::UI
