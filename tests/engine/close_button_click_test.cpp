#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/http_server.h"

// The close button by a real mouse on the display, at the scale of the session that the test runs in.
namespace ZEMO::Test {
namespace {

/// A press and release of the real left button at a client point of the window. False when they did not arrive there,
/// as when the window has lost the foreground to another. Both have been dispatched when this returns.
bool realClick(GameHost& game, int x, int y) {
    POINT point{x, y};
    ClientToScreen(game.window, &point);
    // Above the windows of other tests on the same desktop, which open at any moment and would take the press.
    SetWindowPos(game.window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    SetForegroundWindow(game.window);
    if (!game.waitFor("the foreground", [&] { return GetForegroundWindow() == game.window; })) return false;
    SetCursorPos(point.x, point.y);
    if (!game.waitFor("the cursor", [&] {
            POINT now{};
            return GetCursorPos(&now) && now.x == point.x && now.y == point.y;
        })) {
        return false;
    }
    game.pass(50ms);  // the display server hears of the cursor's move by another way than of the press
    game.fetchedMessages.clear();
    INPUT inputs[2]{};
    inputs[0].type = inputs[1].type = INPUT_MOUSE;
    inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(2, inputs, sizeof(INPUT));
    const auto arrived = [&](UINT first, UINT second) {
        for (const GameMessage& message : game.fetchedMessages) {
            if ((message.id == first || message.id == second) && message.lParam == MAKELPARAM(x, y)) return true;
        }
        return false;
    };
    return game.waitFor("the press", [&] { return arrived(WM_LBUTTONDOWN, WM_LBUTTONDBLCLK); }) &&
           game.waitFor("the release", [&] { return arrived(WM_LBUTTONUP, WM_LBUTTONUP); });
}

void checkCloseButton(float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const int width = static_cast<int>(400 * scale);
    const int height = static_cast<int>(300 * scale);
    HttpServer server;
    server.serve("/", {.body = solidPage("#223344"), .delayMs = 1500});
    GameHost game({.clientWidth = width, .clientHeight = height});
    ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(game.window)) / 96.0f, scale) << "the session's scale";
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->setCloseButtonEnabled(true);
    view->show();
    const int x = width - static_cast<int>(38 * scale);
    const int y = static_cast<int>(38 * scale);
    ASSERT_TRUE(game.waitFor("the request", [&] { return server.requestCount("/") == 1; }));
    ASSERT_TRUE(realClick(game, x, y));
    EXPECT_FALSE(events.has("closeRequested")) << "there is no button before the first completed load";
    ASSERT_FALSE(events.has("completed")) << "the page was meant to take longer";
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    ASSERT_TRUE(game.waitFor("the icon in the frame", [&] {
        return game.frames.pixel(x, y) != 0xFF223344u && game.frames.pixel(9, 9) == 0xFF223344u;
    }));
    ASSERT_TRUE(realClick(game, width - static_cast<int>(62 * scale), y));
    EXPECT_FALSE(events.has("closeRequested")) << "beside the button";
    ASSERT_TRUE(realClick(game, x, y));
    EXPECT_TRUE(game.waitFor("the close request", [&] { return events.has("closeRequested"); }));
    EXPECT_EQ(events.count("closeRequested"), 1u);
}

}  // namespace

TEST(CloseButtonClick, BeforeAndAfterTheFirstLoad_AtScaleOne) { checkCloseButton(1.0f); }
TEST(CloseButtonClick, BeforeAndAfterTheFirstLoad_Scale150) { checkCloseButton(1.5f); }
TEST(CloseButtonClick, BeforeAndAfterTheFirstLoad_Scale200) { checkCloseButton(2.0f); }

TEST(CloseButtonClick, NoLiveDelegate_NoButton) {
    HttpServer server;
    server.serveHtml("/", solidPage("#223344"));
    GameHost game({.clientWidth = 400, .clientHeight = 300});
    auto view = ZEMO::UI::createWebViewDefault();
    {
        auto shortLived = std::make_shared<NavigationRecorder>();
        view->setWebViewDelegate(shortLived);
    }
    view->setCloseButtonEnabled(true);
    view->loadContent(addressItem(server.url("/")));
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF223344u; }));
    game.pass(1s);
    EXPECT_EQ(game.frames.pixel(362, 38), 0xFF223344u);
}

TEST(CloseButtonClick, PageAsksForTheNativeClose_ActionRuns) {
    HttpServer server;
    server.serveHtml(
        "/", "<!doctype html><script>onload=()=>setTimeout(()=>{location='zemosdk://nativeclose'},800)</script>");
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->setCloseButtonEnabled(true);
    view->show();
    EXPECT_TRUE(game.waitFor("the close request", [&] { return events.has("closeRequested"); }));
    for (const std::string& event : events.events()) EXPECT_EQ(event.find("nativeclose"), std::string::npos) << event;
}

}  // namespace ZEMO::Test
