#include <gtest/gtest.h>

#include "core/posted_text.h"
#include "layers/window_messages.h"
#include "support/helper_process.h"
#include "window/window_test_support.h"
#include "zemo/ui.h"

// Exports that act on the game's windows, with real windows of this and of another process in front.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// A game whose main window the manager knows; nothing is subclassed, so that its own procedure sees every message.
class GameExports : public testing::Test {
protected:
    GameExports() { ZEMOMultiLayerManager::instance().setMainWindow(game.handle()); }
    ~GameExports() override { ZEMOMultiLayerManager::instance().setMainWindow(nullptr); }

    static bool bringToFront(HWND window) {
        const ULONGLONG end = GetTickCount64() + 20'000;
        while (GetForegroundWindow() != window && GetTickCount64() < end) {
            SetForegroundWindow(window);
            Sleep(10);
        }
        return GetForegroundWindow() == window;
    }
    /// The foreground is nobody's for a moment while it goes from one window to another.
    static HWND foreground() {
        const ULONGLONG end = GetTickCount64() + 20'000;
        HWND window = GetForegroundWindow();
        for (; !window && GetTickCount64() < end; window = GetForegroundWindow()) Sleep(10);
        return window;
    }
    /// The texts that came with message 1224, taken as its receiver does.
    std::vector<std::string> scriptTexts(const GameWindow& window) const {
        std::vector<std::string> texts;
        for (const ReceivedMessage& message : window.received()) {
            if (message.message != kMessageExternalScript) continue;
            texts.push_back(Core::takePostedText(message.lParam).value_or("not under way"));
        }
        return texts;
    }

    GameWindow game;
};

TEST_F(GameExports, MainWindowInFront_ScriptTextIsPostedToIt) {
    ASSERT_TRUE(bringToFront(game.handle()));
    sendGameControllerCustomMsgData("{\"button\":\"한\"}");
    ASSERT_TRUE(game.waitForMessage(kMessageExternalScript));
    EXPECT_EQ(scriptTexts(game), std::vector<std::string>{"{\"button\":\"한\"}"});
}

TEST_F(GameExports, OwnedWindowInFront_GetsTheScriptText) {
    GameWindow view({300, 300, 600, 500});
    // GameWindow has no owner of its own; the owner is what GetWindow(GW_OWNER) tells.
    SetWindowLongPtrW(view.handle(), GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(game.handle()));
    ASSERT_EQ(GetWindow(view.handle(), GW_OWNER), game.handle());
    ASSERT_TRUE(bringToFront(view.handle()));
    sendGameControllerCustomMsgData("x");
    ASSERT_TRUE(view.waitForMessage(kMessageExternalScript));
    EXPECT_EQ(scriptTexts(view), std::vector<std::string>{"x"});
    EXPECT_TRUE(scriptTexts(game).empty());
}

TEST_F(GameExports, AnotherWindowOfTheGameInFront_NothingIsPosted) {
    GameWindow other({300, 300, 600, 500});
    ASSERT_TRUE(bringToFront(other.handle()));
    sendGameControllerCustomMsgData("x");
    // Posted messages come in order: with this one, an earlier 1224 would be there.
    for (GameWindow* window : {&game, &other}) {
        PostMessageW(window->handle(), WM_USER + 300, 0, 0);
        ASSERT_TRUE(window->waitForMessage(WM_USER + 300));
        EXPECT_TRUE(scriptTexts(*window).empty());
    }
}

TEST_F(GameExports, AnotherApplicationInFront_NothingIsPosted) {
    HelperProcess other(helperPath(L"platform_probe.exe"), {L"shown", L"ready", L"pump"});
    ASSERT_TRUE(other.line("ready")) << other.output();
    ASSERT_TRUE(bringToFront(FindWindowW(L"ZemoPlatformProbe", nullptr)));
    DWORD process = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &process);
    ASSERT_EQ(process, other.id());
    sendGameControllerCustomMsgData("x");
    PostMessageW(game.handle(), WM_USER + 300, 0, 0);
    ASSERT_TRUE(game.waitForMessage(WM_USER + 300));
    EXPECT_TRUE(scriptTexts(game).empty());
}

TEST_F(GameExports, NoMainWindow_NothingIsPostedToAWindowWithoutAnOwner) {
    ZEMOMultiLayerManager::instance().setMainWindow(nullptr);
    ASSERT_TRUE(bringToFront(game.handle()));
    sendGameControllerCustomMsgData("x");
    PostMessageW(game.handle(), WM_USER + 300, 0, 0);
    ASSERT_TRUE(game.waitForMessage(WM_USER + 300));
    EXPECT_TRUE(scriptTexts(game).empty());
}

TEST_F(GameExports, FocusAskedForFromAThreadWithWindows_MainWindowComesToTheFront) {
    GameWindow other({300, 300, 600, 500});
    // A window manager gives the focus to a window that it has just shown, and may be late with it.
    const ULONGLONG end = GetTickCount64() + 20'000;
    do {
        ASSERT_TRUE(bringToFront(other.handle()));
        other.onThread([] { activeFocusMainWindow(); });
    } while (foreground() != game.handle() && GetTickCount64() < end);
    EXPECT_EQ(foreground(), game.handle());
}

TEST_F(GameExports, FocusAskedForOnTheMainWindowsOwnThread_Nothing) {
    GameWindow other({300, 300, 600, 500});
    ASSERT_TRUE(bringToFront(other.handle()));
    game.onThread([] { activeFocusMainWindow(); });  // a thread can't be attached to itself
    EXPECT_EQ(foreground(), other.handle());
}

TEST_F(GameExports, FocusAskedForWithoutAMainWindow_Nothing) {
    ZEMOMultiLayerManager::instance().setMainWindow(nullptr);
    GameWindow other({300, 300, 600, 500});
    ASSERT_TRUE(bringToFront(other.handle()));
    other.onThread([] { activeFocusMainWindow(); });
    EXPECT_EQ(foreground(), other.handle());
}

}  // namespace
}  // namespace ZEMO::Test
