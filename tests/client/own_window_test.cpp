#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <mutex>

#include "client/client_view.h"
#include "client/engine_task.h"
#include "support/http_server.h"
#include "support/import_replaced.h"
#include "support/own_window.h"
#include "support/process_usage.h"
#include "support/shown_pictures.h"

namespace ZEMO::Test {

// The present callback is for layers on the game's window. A view with a window of its own draws there.
TEST(OwnWindow, PresentCallbackSet_NeverCalled) {
    HttpServer server;
    server.serveHtml("/painted", "");
    server.serveHtml("/",
                     "<!doctype html><body>x<script>let n=0;(function f(){document.body.style.paddingLeft=n+'px';"
                     "if(++n==20)fetch('/painted');requestAnimationFrame(f)})()</script>");
    GameHost game;
    {
        ClientView view(game, server.url("/"), {.style = ZEMO::UI::WindowStyle::Window});
        ASSERT_TRUE(game.waitFor("pictures of the page", [&] { return server.requestCount("/painted") > 0; }));
        runOnEngine(game, [&] {
            const uint32_t pixels[4]{};
            view.adapter->OnPaint(view.adapter->getBrowser(), PET_VIEW, {}, pixels, 2, 2);
            view.adapter->OnPopupShow(view.adapter->getBrowser(), false);
        });
        EXPECT_EQ(game.frames.frameCount(), 0u) << "a frame came";
        view.adapter->setVisible(false, false);
    }
    EXPECT_EQ(game.frames.frameCount(), 0u) << "the callback heard of the end of a view that it never saw";
}

// With an engine the window closes with its browser; without one nobody else would close it.
TEST(OwnWindow, NoEngineAndViewDropped_WindowCloses) {
    GameHost game({.startLibrary = false});
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setDisplayMode(1);
    view->setSize(400, 300);
    view->show();
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    view->close();
    view.reset();
    EXPECT_TRUE(game.waitFor("the window's end", [&] { return !IsWindow(own); }));
}

// The view drops itself where it hears of its window's end: on the window's own thread.
TEST(OwnWindow, ClosedFromItsOwnThreadWhileAPageAnimates_FiftyTimesWithoutAHang) {
    struct Dropper : ZEMO::UI::ZEMOViewDelegate {
        void viewDidShow(ZEMO::UI::IZEMOView*) override {}
        void viewDidClose(ZEMO::UI::IZEMOView*) override {
            const std::lock_guard lock(access);
            thread = GetCurrentThreadId();
            view.reset();
        }
        std::mutex access;
        std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
        std::atomic<DWORD> thread{0};
    };
    HttpServer server;
    server.serveHtml("/",
                     "<!doctype html><body>x<script>let n=0;(function f(){document.body.style.background='rgb('+"
                     "(n++%256)+',0,0)';requestAnimationFrame(f)})()</script>");
    GameHost game;
    ShownPictures pictures;
    // A driver may need the window's thread to show a picture.
    pictures.setOnShow([](HWND window) { SendMessageW(window, WM_NULL, 0, 0); });
    for (int i = 0; i < 50; ++i) {
        NavigationRecorder events;
        const auto dropper = std::make_shared<Dropper>();
        {
            auto view = game.makeView(server.url("/"), events);
            view->setDisplayMode(1);
            view->setSize(400, 300);
            view->setViewDelegate(dropper);
            view->show();
            const std::lock_guard lock(dropper->access);
            dropper->view = std::move(view);
        }
        const HWND own = findViewWindow();
        ASSERT_TRUE(own) << i;
        const DWORD windowThread = GetWindowThreadProcessId(own, nullptr);
        ASSERT_TRUE(game.waitFor("pictures", [&] { return pictures.count(own) > 2; })) << i;
        PostMessageW(own, WM_CLOSE, 0, 0);
        ASSERT_TRUE(game.waitFor("the window's end", [&] { return !IsWindow(own); }, 10s)) << i;
        EXPECT_EQ(dropper->thread, windowThread) << i;
    }
}

/// What this program asks of OpenGL and the window system and has not given back.
class GlObjects {
public:
    GlObjects() { contexts = textures = devices = 0; }
    static inline std::atomic<int> contexts, textures, devices;

private:
    static HGLRC WINAPI createContext(HDC device) {
        ++contexts;
        return systemFunction<HGLRC WINAPI(HDC)>(L"opengl32.dll", "wglCreateContext")(device);
    }
    static void APIENTRY genTextures(GLsizei count, GLuint* names) {
        textures += count;
        systemFunction<void APIENTRY(GLsizei, GLuint*)>(L"opengl32.dll", "glGenTextures")(count, names);
    }
    static HDC WINAPI getDevice(HWND window) {
        ++devices;
        return systemFunction<HDC WINAPI(HWND)>(L"user32.dll", "GetDC")(window);
    }
    static int WINAPI releaseDevice(HWND window, HDC device) {
        --devices;
        return systemFunction<int WINAPI(HWND, HDC)>(L"user32.dll", "ReleaseDC")(window, device);
    }

    const ImportReplaced context{"wglCreateContext", &createContext}, texture{"glGenTextures", &genTextures},
        device{"GetDC", &getDevice}, release{"ReleaseDC", &releaseDevice};
};

// A view's context, with its textures, and the device of its window are left to the system when the view goes. There is
// one for each view, however often that is resized. Each view may leave a handle or two in the process.
TEST(OwnWindow, TwentyViewsOpenedResizedAndClosed_OneContextForEachAndNoGdiObjectMore) {
    HttpServer server;
    server.serveHtml("/", "<!doctype html><body style='background:#203040'>");
    GameHost game({.presentCallback = false});
    ShownPictures pictures;
    const GlObjects objects;
    const auto showsPage = [&](HWND own) {
        return game.waitFor("the page", [&] {
            RECT client{};
            GetClientRect(own, &client);
            const ShownPicture shown = pictures.last(own);
            return shown.width == client.right && shown.height == client.bottom &&
                   shown.at(shown.width - 1, 0) == 0xFF203040;
        });
    };
    const auto cycle = [&](int number) {
        NavigationRecorder events;
        auto view = game.makeView(server.url("/"), events);
        view->setDisplayMode(1);
        view->setSize(400, 300);
        view->show();
        const HWND own = findViewWindow();
        ASSERT_TRUE(own) << number;
        ASSERT_TRUE(showsPage(own)) << number;
        for (const auto& [width, height] : {std::pair{250, 333}, {480, 150}, {300, 200}}) {
            SetWindowPos(own, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
            ASSERT_TRUE(showsPage(own)) << number;
        }
        view.reset();
        ASSERT_TRUE(game.waitFor("the window's end", [&] { return !IsWindow(own); })) << number;
    };
    constexpr int kFirst = 3, kAll = 23;
    for (int i = 0; i < kFirst; ++i) ASSERT_NO_FATAL_FAILURE(cycle(i));  // what is made once
    const ProcessUsage before = processUsage();
    for (int i = kFirst; i < kAll; ++i) ASSERT_NO_FATAL_FAILURE(cycle(i));
    const ProcessUsage after = processUsage();
    EXPECT_EQ(GlObjects::contexts, kAll);
    EXPECT_EQ(GlObjects::textures, kAll * 2) << "page and background";
    EXPECT_EQ(GlObjects::devices, kAll);
    EXPECT_LE(after.gdi, before.gdi + 10);
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_LE(after.handles, before.handles + 3 * (kAll - kFirst));
    EXPECT_LE(after.threads, before.threads + 10);
}

/// A page of plain parts, opaque, half transparent and clear.
constexpr char kParts[] =
    "<!doctype "
    "html><style>html,body{margin:0;background:transparent}div{position:absolute;width:90px;height:60px}</style>"
    "<div style='background:#204060'></div><div style='left:100px;background:rgba(200,40,0,.5)'></div>"
    "<div style='right:0;bottom:0;background:#208040'></div>"
    "<div style='top:80px;background:linear-gradient(90deg,#f00,rgba(0,0,255,.2))'></div>";

bool samePicture(const ShownPicture& shown, const std::vector<uint32_t>& frame) {
    if (shown.pixels.size() != frame.size()) return false;
    for (size_t i = 0; i < frame.size(); ++i) {
        const uint32_t alpha = frame[i] >> 24;
        const int tolerance = alpha == 0 || alpha == 255 ? 0 : 1;
        if (channelDistance(shown.pixels[i], overBackground(frame[i])) > tolerance) return false;
    }
    return true;
}

// The same page by the other road, in a window of the same size, and what the display has.
void checkSamePicture(float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    HttpServer server;
    server.serveHtml("/", kParts);
    GameHost game;
    ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(game.window)) / 96.0f, scale) << "the session's scale";
    ShownPictures pictures;
    NavigationRecorder events, otherEvents;
    auto view = game.makeView(server.url("/"), events);
    view->setDisplayMode(1);
    view->setSize(400, 300);
    view->show();
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    SetWindowPos(own, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    auto other = game.makeView(server.url("/"), otherEvents);
    other->show();

    const auto samePictures = [&](const char* what) {
        RECT client{};
        GetClientRect(own, &client);
        game.resizeClient(client.right, client.bottom);
        int width = 0, height = 0;
        bool drawn = false, onScreen = false;
        const bool same = game.waitFor(what, [&] {
            const std::vector<uint32_t> frame = game.frames.picture(&width, &height);
            drawn = samePicture(pictures.last(own), frame);
            onScreen = samePicture(pictureOnScreen(own), frame);
            return width == client.right && height == client.bottom && drawn && onScreen;
        });
        if (!same) {
            std::cerr << "the other road's frame is " << width << "x" << height << ", the window " << client.right
                      << "x" << client.bottom << (drawn ? "; drawn" : "; not drawn")
                      << (onScreen ? ", on screen" : ", not on screen") << "; pictures " << pictures.count(own)
                      << std::endl;
        }
        return same;
    };
    EXPECT_TRUE(samePictures("the same picture"));
    SetWindowPos(own, nullptr, 0, 0, static_cast<int>(333 * scale), static_cast<int>(451 * scale),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    EXPECT_TRUE(samePictures("the same picture in another size"));
    ShowWindow(own, SW_MINIMIZE);
    ASSERT_TRUE(game.waitFor("the minimised window", [&] { return IsIconic(own) != FALSE; }));
    ShowWindow(own, SW_RESTORE);
    EXPECT_TRUE(samePictures("the same picture after minimising"));
}

TEST(OwnWindow, ScreenBesideACallback_ShowsTheSamePicture) { checkSamePicture(1); }
TEST(OwnWindow, ScreenBesideACallback_ShowsTheSamePicture_Scale150) { checkSamePicture(1.5f); }

TEST(OwnWindow, RealMouseClick_PageHearsAndTheWindowShowsIt) {
    HttpServer server;
    server.serveHtml(
        "/",
        "<!doctype html><body style='margin:0;height:100vh;background:#203040' onclick='document.body.style."
        "background=`rgb(${event.clientX},${event.clientY},7)`'>");
    GameHost game({.presentCallback = false});
    ShownPictures pictures;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->setDisplayMode(1);
    view->setSize(400, 300);
    view->show();
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    ASSERT_TRUE(game.waitFor("the page", [&] { return pictures.last(own).at(1, 1) == 0xFF203040; }));
    SetWindowPos(own, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    POINT place{60, 90};
    ClientToScreen(own, &place);
    bool heard = false;
    for (int attempt = 0; attempt < 10 && !heard; ++attempt) {
        SetCursorPos(place.x, place.y);
        game.pass(50ms);  // the display server hears of the cursor's move by another way than of the press
        INPUT inputs[2]{};
        inputs[0].type = inputs[1].type = INPUT_MOUSE;
        inputs[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
        inputs[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
        SendInput(2, inputs, sizeof(INPUT));
        heard = game.waitFor("the click", [&] { return pictures.last(own).at(1, 1) == 0xFF3C5A07; }, 2000ms);
    }
    EXPECT_TRUE(heard);
    EXPECT_TRUE(game.waitFor("the screen", [&] { return pictureOnScreen(own).at(1, 1) == 0xFF3C5A07; }));
}

// As many frames as the library asks for; what an engine without that wish gives is more.
TEST(FrameRate, ViewOfTheLibrary_AskedForThirtyASecond) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->show();
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    int rate = 0;
    ASSERT_TRUE(runOnEngine(game, [&] {
        for (int id = 1; id <= 16 && !rate; ++id) {
            if (const auto browser = CefBrowserHost::GetBrowserByIdentifier(id)) {
                rate = browser->GetHost()->GetWindowlessFrameRate();
            }
        }
    }));
    EXPECT_EQ(rate, 30);
}

}  // namespace ZEMO::Test
