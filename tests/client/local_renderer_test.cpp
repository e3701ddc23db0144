#include <gtest/gtest.h>

#include <atomic>

#include "client/engine_task.h"
#include "client/local_view.h"
#include "render/display_scale.h"
#include "render/pixel_scale.h"
#include "render/rendering_mode.h"
#include "support/http_server.h"
#include "support/process_usage.h"

// A view that the library draws itself, with real pages: each picture that goes to the window is read back and compared
// with the engine's own frame. An opaque pixel and a clear one are equal; one that is blended with the background is
// within one step, one under the close icon within two.
namespace ZEMO::Test {
namespace {

using ZEMO::UI::WindowStyle;

constexpr char kPage[] =
    "<!doctype html><style>html,body{margin:0;background:transparent}div{position:absolute}"
    "#a{left:0;top:0;width:60px;height:40px;background:#204060}"
    "#b{left:60px;top:0;width:60px;height:40px;background:rgba(200,40,0,.5)}"
    "#c{right:0;bottom:0;width:30px;height:20px;background:linear-gradient(90deg,#f00,rgba(0,0,255,.2))}"
    "#d{right:0;top:0;width:90px;height:90px;background:#d0d8e0}"
    "select{position:absolute;left:10px;top:50px;width:120px;height:24px}</style>"
    "<div id=a></div><div id=b></div><div id=c></div><div id=d></div>"
    "<select><option>one<option>two<option>three<option>four</select>";

struct Case {
    WindowStyle style;
    bool closeButton;
};

/// The page at rest, with its list open, closed again, in another size.
void checkPictures(float scale, Case given) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    HttpServer server;
    server.serveHtml("/", kPage);
    const auto px = [&](int logical) { return ZEMO::UI::logicalToDevice(logical, scale); };
    GameHost game({.clientWidth = px(320), .clientHeight = px(200), .presentCallback = false});
    ASSERT_FLOAT_EQ(ZEMO::UI::getWindowScale(game.window), scale) << "the session's scale";
    LocalView view(game, server.url("/"), {given.style, given.closeButton});
    const auto shows = [&](int x, int y, uint32_t pixel) {
        return [=, &view] { return view.frames->pixel(x, y) == pixel; };
    };
    ASSERT_TRUE(view.waitForPicture("the page", shows(px(5), px(5), 0xFF204060)));

    for (int attempt = 0; attempt < 20 && !view.frames->popupPainted(); ++attempt) {
        view.click(30, 60);  // a page takes no input before its first picture is out
        game.waitFor("the list", [&] { return view.frames->popupPainted(); }, 1000ms);
    }
    ASSERT_TRUE(view.waitForPicture("the open list", [&] { return view.frames->popupPainted(); }));
    view.click(30, 60);
    ASSERT_TRUE(view.waitForPicture("the closed list", [&] { return !view.frames->popupPainted(); }));

    for (const auto& [width, height] : {std::pair{251, 333}, {480, 150}}) {
        game.resizeClient(width, height);
        view.adapter->onWindowResized();
        ASSERT_TRUE(view.waitForPicture("the new size", shows(px(5), px(5), 0xFF204060)));
    }
}

int64_t classCursor(HWND window) { return static_cast<int64_t>(GetClassLongPtrW(window, GCLP_HCURSOR)); }

constexpr char kAnimated[] =
    "<!doctype html><style>html,body{margin:0;background:#102030}#m{position:absolute;top:20px;width:40px;"
    "height:40px;background:#e0a020}</style><div id=m></div><script>let n=0;(function f(){m.style.left=(n++%200)+'px';"
    "requestAnimationFrame(f)})()</script>";

}  // namespace

TEST(LocalRenderer, GamesWindow_EveryPictureIsTheEnginesFrame) { checkPictures(1, {WindowStyle::Layer, false}); }
TEST(LocalRenderer, GamesWindowWithIcon_EveryPictureIsTheEnginesFrame) { checkPictures(1, {WindowStyle::Layer, true}); }
TEST(LocalRenderer, OwnStyle_EveryPictureIsTheEnginesFrame) { checkPictures(1, {WindowStyle::Window, false}); }
TEST(LocalRenderer, OwnStyleWithIcon_EveryPictureIsTheEnginesFrame) { checkPictures(1, {WindowStyle::Window, true}); }
TEST(LocalRenderer, GamesWindow_EveryPictureIsTheEnginesFrame_Scale150) {
    checkPictures(1.5f, {WindowStyle::Layer, false});
}
TEST(LocalRenderer, OwnStyleWithIcon_EveryPictureIsTheEnginesFrame_Scale150) {
    checkPictures(1.5f, {WindowStyle::Window, true});
}

// Without a hook and a callback the game counts as one that draws with OpenGL.
TEST(LocalRenderer, NeitherHookNorCallback_RenderingModeIsOpenGl) {
    GameHost game({.presentCallback = false});
    LocalView view(game, "data:text/html,x");
    EXPECT_EQ(ZEMO::UI::getRenderingMode(), ZEMO::UI::RenderingMode::OpenGL);
}

// While a list is open the page is not refreshed by the cycle, and each picture of the page brings the list's again.
TEST(LocalRenderer, ListOpen_NoRefreshByTheCycleAndEachPaintOfTheViewBringsOneOfTheList) {
    HttpServer server;
    server.serveHtml("/", kPage);
    GameHost game({.presentCallback = false});
    LocalView view(game, server.url("/"));
    ASSERT_TRUE(view.waitForPicture("the page", [&] { return view.frames->pixel(5, 5) == 0xFF204060; }));
    const size_t before = view.frames->viewPaints();
    ASSERT_TRUE(game.waitFor("refreshes of the quiet page", [&] { return view.frames->viewPaints() > before + 3; }));
    for (int attempt = 0; attempt < 20 && !view.frames->popupPainted(); ++attempt) {
        view.click(30, 60);
        game.waitFor("the list", [&] { return view.frames->popupPainted(); }, 1000ms);
    }
    ASSERT_TRUE(view.waitForPicture("the open list", [&] { return view.frames->popupPainted(); }));
    game.pass(500ms);  // what was under way
    const size_t views = view.frames->viewPaints(), popups = view.frames->popupPaints();
    game.pass(1000ms);
    EXPECT_LE(view.frames->viewPaints(), views + 1) << "ten refreshes would be ten paints";

    view.browserHost()->Invalidate(PET_VIEW);
    ASSERT_TRUE(game.waitFor("the page again", [&] { return view.frames->viewPaints() > views; }));
    EXPECT_TRUE(game.waitFor(
        "the list again", [&] { return view.frames->popupPaints() > popups && view.frames->order().ends_with("P"); }));
    ASSERT_TRUE(view.waitForPicture("list and page", [&] { return view.frames->popupPainted(); }));
}

TEST(LocalRenderer, WindowWithoutArea_NothingDrawnThenThePageComesBack) {
    GameHost game({.presentCallback = false});
    LocalView view(game, "data:text/html,<body style='margin:0;background:rgb(34,68,102)'>");
    const auto painted = [&] { return view.frames->pixel(1, 1) == 0xFF224466; };
    ASSERT_TRUE(view.waitForPicture("the page", painted));
    ShowWindow(game.window, SW_MINIMIZE);
    view.adapter->onWindowResized();
    RECT client{};
    ASSERT_TRUE(game.waitFor("the empty window", [&] { return GetClientRect(game.window, &client) && !client.right; }));
    ASSERT_TRUE(game.waitFor("the smallest frame", [&] { return view.frames->expected().width == 1; }));
    const size_t shown = view.pictures.count(game.window);
    const size_t paints = view.frames->viewPaints();
    ASSERT_TRUE(game.waitFor("more of these", [&] { return view.frames->viewPaints() > paints + 3; }));
    EXPECT_EQ(view.pictures.count(game.window), shown) << "a frame below two pixels was drawn";
    ShowWindow(game.window, SW_RESTORE);
    game.resizeClient(320, 200);
    view.adapter->onWindowResized();
    EXPECT_TRUE(view.waitForPicture("the page again", painted));
}

// A driver that takes the context away for a while; the machine here has no such one.
TEST(LocalRenderer, ContextLostForAWhile_PageComesBackWithIt) {
    static std::atomic<bool> lost{false};
    static std::atomic<int> refused{0};
    GameHost game({.presentCallback = false});
    LocalView view(game, "data:text/html,<body style='margin:0;background:rgb(34,68,102)'>");
    ASSERT_TRUE(view.waitForPicture("the page", [&] { return view.frames->pixel(1, 1) == 0xFF224466; }));
    BOOL(WINAPI * take)(HDC, HGLRC) = [](HDC device, HGLRC context) -> BOOL {
        if (lost && context) return ++refused, FALSE;
        return systemFunction<BOOL WINAPI(HDC, HGLRC)>(L"opengl32.dll", "wglMakeCurrent")(device, context);
    };
    const ImportReplaced replaced("wglMakeCurrent", take);
    lost = true;
    const size_t shown = view.pictures.count(game.window);
    ASSERT_TRUE(game.waitFor("refused paints", [&] { return refused > 3; }));
    EXPECT_LE(view.pictures.count(game.window), shown + 1);
    ASSERT_TRUE(runOnEngine(game, [&] {
        view.adapter->getBrowser()->GetMainFrame()->ExecuteJavaScript("document.body.style.background='#0a0b0c'", "",
                                                                      0);
    }));
    ASSERT_TRUE(game.waitFor("the change", [&] { return view.frames->pixel(1, 1) == 0xFF0A0B0C; }));
    lost = false;
    EXPECT_TRUE(view.waitForPicture("the page again", [&] { return view.frames->pixel(1, 1) == 0xFF0A0B0C; }));
}

// A paint that is under way when the view is hidden or dropped puts its picture on the window after that.
TEST(LocalRenderer, HiddenWhileAPictureIsBeingShown_WindowIsPaintedAnewAfterThePicture) {
    static std::atomic<int> asked{0};  // by the engine thread, which both hides and paints here
    static std::atomic<DWORD> engineThread{0};
    GameHost game({.presentCallback = false});
    LocalView view(game, "data:text/html,<body style='margin:0;background:rgb(34,68,102)'>");
    ASSERT_TRUE(view.waitForPicture("the page", [&] { return view.frames->pixel(1, 1) == 0xFF224466; }));
    BOOL(WINAPI * invalidate)(HWND, const RECT*, BOOL) = [](HWND window, const RECT* part, BOOL erase) {
        if (GetCurrentThreadId() == engineThread) ++asked;
        return systemFunction<BOOL WINAPI(HWND, const RECT*, BOOL)>(L"user32.dll", "InvalidateRect")(window, part,
                                                                                                     erase);
    };
    const ImportReplaced replaced("InvalidateRect", invalidate);
    const std::vector<uint32_t> pixels(size_t{320} * 200, 0xFF112233);
    const auto paint = [&] {
        asked = 0;
        view.adapter->OnPaint(view.adapter->getBrowser(), PET_VIEW, {CefRect(0, 0, 320, 200)}, pixels.data(), 320, 200);
        return asked.load();
    };
    int whileShown = -1, afterHide = -1, afterPaint = -1;
    ASSERT_TRUE(runOnEngine(game, [&] {
        engineThread = GetCurrentThreadId();
        whileShown = paint();
        view.pictures.setOnShow([&](HWND) {
            view.adapter->setVisible(false, true);
            afterHide = asked;
        });
        afterPaint = paint();
        view.pictures.setOnShow(nullptr);
    }));
    EXPECT_EQ(whileShown, 0);
    EXPECT_EQ(afterHide, 1);
    EXPECT_EQ(afterPaint, 2);
}

// The library restores the game's cursor when the last view goes, and a view in front has its own.
TEST(LocalRenderer, CursorOfAViewThatIsCoveredOrGone_ClassCursorStays) {
    GameHost game({.presentCallback = false});
    LocalView view(game, "data:text/html,x");
    ASSERT_TRUE(game.waitFor("the browser", [&] { return view.adapter->getBrowser() != nullptr; }));
    const CefRefPtr<CefBrowser> browser = view.adapter->getBrowser();
    const auto change = [&](LPCWSTR name) {
        const HCURSOR cursor = LoadCursorW(nullptr, name);
        bool answer = false;
        EXPECT_TRUE(runOnEngine(game, [&] { answer = view.adapter->OnCursorChange(browser, cursor, CT_HAND, {}); }));
        EXPECT_TRUE(answer);
        return static_cast<int64_t>(reinterpret_cast<intptr_t>(cursor));
    };
    const int64_t hand = change(IDC_HAND);
    EXPECT_EQ(classCursor(game.window), hand);
    view.adapter->setVisible(false, true);
    change(IDC_WAIT);
    EXPECT_EQ(classCursor(game.window), hand) << "covered";
    view.adapter->setVisible(true, true);
    const int64_t last = change(IDC_IBEAM);
    EXPECT_EQ(classCursor(game.window), last) << "in front again";
    view.adapter->close();
    change(IDC_WAIT);
    EXPECT_EQ(classCursor(game.window), last) << "gone";
}

// Handles of the process, and names of textures in the view's context, before and after.
TEST(LocalRenderer, FiveHundredResizesOfAnAnimatedPage_NoTextureAndNoHandleMore) {
    HttpServer server;
    server.serveHtml("/", kAnimated);
    GameHost game({.presentCallback = false});
    LocalView view(game, server.url("/"));
    const auto animated = [&] { return view.frames->pixel(1, 1) == 0xFF102030; };
    ASSERT_TRUE(view.waitForPicture("the page", animated));
    struct Held {
        int textures = 0;
        ProcessUsage process;
    };
    const auto count = [&] {
        Held held;
        std::atomic<bool> counted{false};
        view.pictures.setOnShow([&](HWND) {
            if (counted) return;
            for (GLuint name = 1; name < 4096; ++name) held.textures += glIsTexture(name);
            counted = true;
        });
        EXPECT_TRUE(game.waitFor("a picture", [&] { return counted.load(); }));
        runOnEngine(game, [&] { view.pictures.setOnShow(nullptr); });
        held.process = processUsage();
        return held;
    };
    const auto resize = [&](int i) {
        SetWindowPos(game.window, nullptr, 0, 0, 200 + i * 37 % 400, 160 + i * 53 % 300,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        view.adapter->onWindowResized();
        if (i % 50 == 25) ShowWindow(game.window, SW_MINIMIZE);
        if (i % 50 == 30) ShowWindow(game.window, SW_RESTORE);
        game.pass(10ms);
    };
    for (int i = 0; i < 50; ++i) resize(i);  // what is made once
    ASSERT_TRUE(view.waitForPicture("the page", animated));
    const Held before = count();
    const size_t shown = view.pictures.count(game.window);
    for (int i = 0; i < 500; ++i) resize(i);
    game.resizeClient(320, 200);
    view.adapter->onWindowResized();
    ASSERT_TRUE(view.waitForPicture("the page after all", animated));
    const Held after = count();
    EXPECT_GT(view.pictures.count(game.window), shown + 50) << "the page went on";
    EXPECT_EQ(before.textures, 2);
    EXPECT_EQ(after.textures, before.textures);
    EXPECT_LE(after.process.gdi, before.process.gdi + 5);
    EXPECT_EQ(after.process.windows, before.process.windows);
    EXPECT_LE(after.process.handles, before.process.handles + 20);
}

}  // namespace ZEMO::Test
