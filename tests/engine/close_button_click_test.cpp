#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/http_server.h"

// The close button by a real mouse on the display, at the scale of the session that the test runs in.
namespace ZEMO::Test {
namespace {

/// A press and release of the real left button at a client point of the window.
void realClick(GameHost& game, int x, int y) {
    POINT point{x, y};
    ClientToScreen(game.window, &point);
    SetForegroundWindow(game.window);
    game.pass(50ms);
    SetCursorPos(point.x, point.y);
    game.pass(50ms);
    INPUT inputs[2]{};
    inputs[0].type = inputs[1].type = INPUT_MOUSE;
    inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(2, inputs, sizeof(INPUT));
    game.pass(150ms);
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
    realClick(game, x, y);
    EXPECT_FALSE(events.has("closeRequested")) << "there is no button before the first completed load";
    ASSERT_FALSE(events.has("completed")) << "the page was meant to take longer";
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    ASSERT_TRUE(game.waitFor("the icon in the frame", [&] {
        return game.frames.pixel(x, y) != 0xFF223344u && game.frames.pixel(9, 9) == 0xFF223344u;
    }));
    realClick(game, width - static_cast<int>(62 * scale), y);
    EXPECT_FALSE(events.has("closeRequested")) << "beside the button";
    realClick(game, x, y);
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
