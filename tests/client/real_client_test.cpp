#include <gtest/gtest.h>

#include <format>

#include "cef/engine_library.h"
#include "client/client_view.h"
#include "client/engine_task.h"
#include "client/page_browser.h"
#include "engine/cef_module.h"
#include "render/display_scale.h"
#include "render/rendering_mode.h"
#include "support/http_server.h"

// The browser client with a real browser, driven where no export reaches: input by the test, cursors, popups, the end.
namespace ZEMO::Test {
namespace {

/// Position and size of the pixels of one colour; {} when there are none.
FrameRect areaOf(const FrameRecorder& frames, uint32_t color) {
    int width = 0;
    int height = 0;
    const std::vector<uint32_t> picture = frames.picture(&width, &height);
    int left = width, top = height, right = 0, bottom = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (picture[static_cast<size_t>(y) * width + x] != color) continue;
            left = std::min(left, x), top = std::min(top, y);
            right = std::max(right, x + 1), bottom = std::max(bottom, y + 1);
        }
    }
    return right > left ? FrameRect{left, top, right - left, bottom - top} : FrameRect{};
}

HCURSOR classCursor(HWND window) { return reinterpret_cast<HCURSOR>(GetClassLongPtrW(window, GCLP_HCURSOR)); }

/// A select list at (20, 10), 120 x 24 logical pixels, opened and closed with the mouse; `scale` is the session's.
void checkSelectList(float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const auto px = [&](float logical) { return static_cast<int>(logical * scale); };
    HttpServer server;
    server.serveHtml("/",
                     "<!doctype html><style>html,body{margin:0;background:#fff}select{position:absolute;left:20px;"
                     "top:10px;width:120px;height:24px}option{background:#00ff00;color:#00ff00}</style><select>"
                     "<option>a<option>b<option>c<option>d</select>");
    GameHost game({.clientWidth = px(320), .clientHeight = px(200)});
    ASSERT_FLOAT_EQ(ZEMO::UI::getWindowScale(game.window), scale) << "the session's scale";
    ClientView view(game, server.url("/"));
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(px(300), px(190)) == 0xFFFFFFFFu; }));
    ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
    ASSERT_EQ(areaOf(game.frames, 0xFF00FF00u), FrameRect{});
    view.click(60, 20);
    ASSERT_TRUE(game.waitFor("the open list", [&] { return areaOf(game.frames, 0xFF00FF00u).height > px(20); }));
    const FrameRect list = areaOf(game.frames, 0xFF00FF00u);
    // As wide as its field but for a border.
    EXPECT_GE(list.x, px(20));
    EXPECT_LE(list.x, px(23));
    EXPECT_LE(list.x + list.width, px(140) + 1);
    EXPECT_GE(list.x + list.width, px(137));
    EXPECT_GE(list.y, px(34)) << "below its field";
    EXPECT_LE(list.y, px(64)) << "the first entry is highlighted and has another colour";
    EXPECT_TRUE(game.frames.replayMatches());
    view.click(280, 180);
    EXPECT_TRUE(game.waitFor("the closed list", [&] { return areaOf(game.frames, 0xFF00FF00u) == FrameRect{}; }));
    EXPECT_TRUE(game.frames.replayMatches()) << "the area under the list must be reported";
}

}  // namespace

TEST(RealClient, SelectList_ComposedWhereItOpensAndRestoredWhenItCloses) { checkSelectList(1.0f); }
// The engine places the list in logical pixels and paints it in device pixels.
TEST(RealClient, SelectList_ComposedWhereItOpensAndRestoredWhenItCloses_Scale150) { checkSelectList(1.5f); }

TEST(RealClient, CursorOverALink_PostedToTheGamesWindowOnALayer) {
    HttpServer server;
    server.serveHtml(
        "/",
        "<!doctype html><style>body{margin:0;background:#fff}a{display:block;width:200px;height:80px}</style><a "
        "href='/x'>"
        "link</a>");
    GameHost game;
    ClientView view(game, server.url("/"));
    ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(300, 190) == 0xFFFFFFFFu; }));
    const HCURSOR before = classCursor(game.window);
    game.gameMessages.clear();
    view.moveMouse(100, 150);
    view.moveMouse(50, 40);
    // No layer is on the manager's list, so the message goes through to the game. The marker tells it from the
    // system's own.
    const GameMessage hand{WM_SETCURSOR, 1124, reinterpret_cast<LPARAM>(LoadCursorW(nullptr, IDC_HAND))};
    EXPECT_TRUE(game.waitFor("the link's cursor",
                             [&] { return std::count(game.gameMessages.begin(), game.gameMessages.end(), hand) > 0; }));
    EXPECT_EQ(classCursor(game.window), before) << "a layer leaves the game's class cursor alone";
}

TEST(RealClient, CursorOverALink_BecomesTheClassCursorOfAnOwnWindow) {
    HttpServer server;
    server.serveHtml("/painted", "");
    // No frame of an own window can be seen here, so the page says when its first picture is out.
    server.serveHtml(
        "/",
        "<!doctype html><style>body{margin:0}a{display:block;width:200px;height:80px}</style><a href='/x'>"
        "link</a><script>requestAnimationFrame(()=>requestAnimationFrame(()=>fetch('/painted')))</script>");
    GameHost game;
    const HCURSOR before = classCursor(game.window);
    {
        ClientView view(game, server.url("/"), {.style = ZEMO::UI::WindowStyle::Window});
        ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
        ASSERT_TRUE(game.waitFor("the picture", [&] { return server.requestCount("/painted") > 0; }));
        view.moveMouse(100, 150);
        view.moveMouse(50, 40);
        EXPECT_TRUE(game.waitFor("the link's cursor",
                                 [&] { return classCursor(game.window) == LoadCursorW(nullptr, IDC_HAND); }));
    }
    SetClassLongPtrW(game.window, GCLP_HCURSOR, reinterpret_cast<LONG_PTR>(before));
}

TEST(RealClient, MaximiseInADirect3D11Game_TenSmallerSizesThenTheTrueOne) {
    GameHost game;
    ClientView view(game, "data:text/html,x");
    ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
    std::vector<CefRect> asked;
    // In one task on the engine thread, where the engine asks too: it takes no step of its own in between.
    ASSERT_TRUE(runOnEngine(game, [&] {
        ZEMO::UI::setRenderingMode(ZEMO::UI::RenderingMode::D3D11);
        view.adapter->startWiggleResize();
        for (int i = 0; i < 13; ++i) view.adapter->GetViewRect(nullptr, asked.emplace_back());
    }));
    std::vector<CefRect> expected;
    for (int less = 10; less >= 0; --less) expected.emplace_back(0, 0, 320 - less, 200 - less);
    expected.resize(13, CefRect(0, 0, 320, 200));
    EXPECT_EQ(asked, expected);
}

TEST(RealClient, MaximiseInAnOpenGlGame_TrueSizeAtOnce) {
    GameHost game;
    ClientView view(game, "data:text/html,x");
    ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
    CefRect asked;
    ASSERT_TRUE(runOnEngine(game, [&] {
        ZEMO::UI::setRenderingMode(ZEMO::UI::RenderingMode::OpenGL);
        view.adapter->startWiggleResize();
        view.adapter->GetViewRect(nullptr, asked);
    }));
    EXPECT_EQ(asked, CefRect(0, 0, 320, 200));
}

TEST(RealClient, SecondBrowserCreated_FirstStays) {
    GameHost game;
    ClientView view(game, "data:text/html,x");
    ASSERT_TRUE(game.waitFor("the browser", [&] { return view.adapter->getBrowser() != nullptr; }));
    const int first = view.adapter->getBrowser()->GetIdentifier();
    // A second real browser with the same client; it is left to the end of the process.
    createBrowser(game.window, view.adapter, "data:text/html,second");
    ASSERT_TRUE(game.waitFor("both loads", [&] { return view.events->count("completed") >= 2; }));
    EXPECT_EQ(view.adapter->getBrowser()->GetIdentifier(), first);
}

TEST(RealClient, ViewsUsedAndEngineStopped_NoReferenceIsLeft) {
    HttpServer server;
    server.serveHtml("/", solidPage("#556"));
    {
        GameHost game;
        for (int i = 0; i < 3; ++i) {
            ClientView view(game, server.url("/"));
            ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
            ASSERT_TRUE(game.waitFor("frames", [&] { return game.frames.frameCount() > 2; }));
            game.frames.forgetFrames();
        }
        // A close takes its way through the engine; the stop would cut it short.
        EXPECT_TRUE(game.waitFor("the browsers' end", [] { return cefLiveEngineObjects() == 0; }))
            << cefLiveEngineObjects();
    }
    ZEMO::UI::CefModule::stop();
    // But for the factory of the custom scheme, one a process: the engine drops it late or never.
    EXPECT_LE(cefLiveClientObjects(), 1);
    EXPECT_EQ(cefLiveEngineObjects(), 0);
}

}  // namespace ZEMO::Test
