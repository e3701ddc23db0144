#include <gtest/gtest.h>

#include "client/engine_task.h"
#include "engine/game_host.h"
#include "layers/layer_manager.h"
#include "render/rendering_mode.h"
#include "support/http_server.h"
#include "support/import_replaced.h"

// What the game's window and the game's calls do to a view, seen where it ends: in the page and in its frames.
namespace ZEMO::Test {
namespace {

/// Paints all the time, so that the library never asks for a frame by itself, and asks the server for /tick in every
/// tenth picture.
constexpr char kRestlessPage[] =
    "<!doctype html><style>body{margin:0;background:#fff}div{width:10px;height:10px;background:#000}</style>"
    "<div id=b></div><script>let n=0;(function f(){b.style.marginLeft=n%50+'px';if(++n%10==0)fetch('/tick');"
    "requestAnimationFrame(f)})()</script>";

/// The counter behind the steady clock, where it was when it was first read.
struct StoppedClock {
    static BOOL WINAPI read(LARGE_INTEGER* count) {
        static const LONGLONG moment = [] {
            LARGE_INTEGER now{};
            systemFunction<decltype(QueryPerformanceCounter)>(L"kernel32.dll", "QueryPerformanceCounter")(&now);
            return now.QuadPart;
        }();
        return count->QuadPart = moment, TRUE;
    }
};

class ViewEvents : public testing::Test {
protected:
    ViewEvents() {
        server.serveHtml("/tick", "");
        server.serveHtml("/restless", kRestlessPage);
    }
    void show(const std::string& path) {
        view = game.makeView(server.url(path), events);
        view->show();
    }
    /// Ten more pictures of the restless page.
    bool pageGoesOn() {
        const size_t before = server.requestCount("/tick");
        return game.waitFor("the page's next pictures", [&] { return server.requestCount("/tick") > before + 1; });
    }
    HttpServer server;
    GameHost game;
    NavigationRecorder events;
    std::shared_ptr<UI::IZEMOWebView> view;
};

}  // namespace

// Once in a cycle the library looks at the size by itself. The cycles stop with this clock; the waits here, which would
// not end by it, end by another.
TEST_F(ViewEvents, WindowResized_PageTakesTheNewSizeWithoutACycle) {
    show("/restless");
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.lastFrame().width == 320; }));
    const ImportReplaced stopped("QueryPerformanceCounter", &StoppedClock::read);
    const ULONGLONG end = GetTickCount64() + 20000;
    const size_t before = game.frames.frameCount();
    const auto late = [&] { return GetTickCount64() > end; };
    game.waitFor("frames", [&] { return late() || game.frames.frameCount() > before + 2; });
    SetWindowPos(game.window, nullptr, 0, 0, 500, 400, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    RECT client{};
    GetClientRect(game.window, &client);
    ASSERT_NE(client.right, 320);
    game.waitFor("the new size", [&] { return late() || game.frames.lastFrame().width == client.right; });
    EXPECT_EQ(game.frames.lastFrame().width, client.right);
    EXPECT_EQ(game.frames.lastFrame().height, client.bottom);
}

TEST_F(ViewEvents, RestoreMessageInADirect3D11Game_FramesShrinkForAMomentAndComeBack) {
    server.serveHtml("/", solidPage("#345"));
    show("/");
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF334455u; }));
    const UI::RenderingMode before = UI::getRenderingMode();
    UI::setRenderingMode(UI::RenderingMode::D3D11);
    game.frames.forgetFrames();
    SendMessageW(game.window, WM_SYSCOMMAND, SC_RESTORE, 0);
    const auto smaller = [&] {
        for (const Frame& frame : game.frames.frames()) {
            if (frame.width >= 310 && frame.width < 320 && frame.height == frame.width - 120) return true;
        }
        return false;
    };
    EXPECT_TRUE(game.waitFor("a smaller frame", smaller));
    EXPECT_TRUE(game.waitFor("the true size again", [&] { return game.frames.lastFrame().width == 320; }));
    UI::setRenderingMode(before);
}

TEST_F(ViewEvents, GamesWindowToldOfItsEnd_NoFrameComesAnyMore) {
    show("/restless");
    ASSERT_TRUE(game.waitFor("frames", [&] { return game.frames.frameCount() > 5; }));
    SendMessageW(game.window, WM_DESTROY, 0, 0);
    EXPECT_TRUE(events.has("closeRequested"));
    ASSERT_TRUE(runOnEngine(game, [] {}));  // behind a frame that was just being taken
    const size_t taken = game.frames.frameCount();
    ASSERT_TRUE(pageGoesOn());
    EXPECT_EQ(game.frames.frameCount(), taken);
}

TEST_F(ViewEvents, GamesKeyboardClosed_FieldLosesTheFocus) {
    server.serveHtml("/",
                     "<!doctype html><body style='margin:0'><input id=i><script>i.focus();(function f(){"
                     "document.body.style.background=document.activeElement===i?'#0f0':'#00f';"
                     "requestAnimationFrame(f)})()</script>");
    show("/");
    ASSERT_TRUE(game.waitFor("the focused field", [&] { return game.frames.pixel(300, 190) == 0xFF00FF00u; }));
    UI::processSteamDeckKeyboardClose();
    EXPECT_TRUE(game.waitFor("the end of the focus", [&] { return game.frames.pixel(300, 190) == 0xFF0000FFu; }));
}

}  // namespace ZEMO::Test
