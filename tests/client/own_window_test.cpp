#include <gtest/gtest.h>

#include "client/client_view.h"
#include "client/engine_task.h"
#include "support/http_server.h"
#include "support/own_window.h"

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
