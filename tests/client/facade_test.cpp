#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "api/zemo_web_view_window.h"
#include "engine/game_host.h"
#include "support/http_server.h"

// The object that a game holds, with the real engine behind it: its own rules, not those of its layer.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

class ShowRecorder : public ZEMOViewDelegate {
public:
    void viewDidShow(IZEMOView*) override {
        ++shown;
        if (onShow) onShow();
    }
    void viewDidClose(IZEMOView*) override { ++closed; }
    int shown = 0, closed = 0;
    std::function<void()> onShow;
};

}  // namespace

TEST(Facade, NotMadeByItsFactory_ShowThrowsBadWeakPtr) {
    const auto view = std::make_unique<ZEMOWebViewWindow>();
    EXPECT_THROW(view->show(), std::bad_weak_ptr);
}

TEST(Facade, OpenViewDropped_ViewDidCloseIsNotCalled) {
    GameHost game;
    const auto delegate = std::make_shared<ShowRecorder>();
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setViewDelegate(delegate);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    ASSERT_EQ(delegate->shown, 1);
    view.reset();
    EXPECT_EQ(delegate->closed, 0);
}

TEST(Facade, PresentCallbackChangedAfterTheFirstShow_LayerKeepsItsOwn) {
    HttpServer server;
    server.serveHtml("/a", solidPage("#a1a1a1"));
    server.serveHtml("/b", solidPage("#b2b2b2"));
    GameHost game;
    FrameRecorder later;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/a"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFFA1A1A1u; }));
    setUIOsrFramePresentCallback(later.callback());
    view->close();
    view->show();
    view->loadContent(addressItem(server.url("/b")));
    EXPECT_TRUE(game.waitFor("the next page", [&] { return game.frames.pixel(9, 9) == 0xFFB2B2B2u; }));
    EXPECT_EQ(later.frameCount(), 0u);
    view.reset();
    setUIOsrFramePresentCallback(nullptr);
    EXPECT_EQ(later.frameCount(), 0u);
}

TEST(Facade, CloseButtonAskedForAfterTheFirstShow_ThereIsNone) {
    HttpServer server;
    server.serveHtml("/a", solidPage("#a1a1a1"));
    server.serveHtml("/b", solidPage("#b2b2b2"));
    GameHost game({.clientWidth = 400, .clientHeight = 300});
    NavigationRecorder events;
    const auto buttonPixel = [&] { return game.frames.pixel(362, 38); };  // the middle of the button
    {
        auto view = game.makeView(server.url("/a"), events);
        view->show();
        ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFFA1A1A1u; }));
        ASSERT_TRUE(game.waitFor("completion", [&] { return events.count("completed") == 1; }));
        view->setCloseButtonEnabled(true);
        view->close();
        view->show();
        view->loadContent(addressItem(server.url("/b")));
        ASSERT_TRUE(game.waitFor("the next page", [&] { return game.frames.pixel(9, 9) == 0xFFB2B2B2u; }));
        ASSERT_TRUE(game.waitFor("completion", [&] { return events.count("completed") == 2; }));
        game.pass(500ms);
        EXPECT_EQ(buttonPixel(), 0xFFB2B2B2u);
    }
    auto asked = game.makeView(server.url("/b"), events);
    asked->setCloseButtonEnabled(true);
    asked->show();
    EXPECT_TRUE(game.waitFor("the button of a view that was asked in time",
                             [&] { return game.frames.pixel(9, 9) == 0xFFB2B2B2u && buttonPixel() != 0xFFB2B2B2u; }));
}

TEST(Facade, ViewDidShow_ComesAfterTheLoadWasStarted) {
    HttpServer server;
    server.serveHtml("/first", solidPage("#a1a1a1"));
    server.serveHtml("/told", solidPage("#b2b2b2"));
    GameHost game;
    const auto delegate = std::make_shared<ShowRecorder>();
    NavigationRecorder events;
    auto view = game.makeView(server.url("/first"), events);
    view->setViewDelegate(delegate);
    // Before the load was started, this would take its place.
    delegate->onShow = [&] { view->loadContent(addressItem(server.url("/told"))); };
    view->show();
    ASSERT_EQ(delegate->shown, 1);
    ASSERT_TRUE(game.waitFor("a navigation", [&] { return !events.events().empty(); }));
    EXPECT_EQ(events.events().front(), "requested " + server.url("/first"));
}

TEST(Facade, NavigationStarting_MainWindowIsRepainted) {
    GameHost game;
    NavigationRecorder events;
    const auto view = std::make_shared<ZEMOWebViewWindow>();  // never shown: nothing else paints
    const auto paints = [&] { return std::ranges::count(game.gameMessages, UINT{WM_PAINT}, &GameMessage::id); };
    // Windows of other tests come and go on the same desktop, and lay parts of this one bare.
    bool quiet = false;
    for (int i = 0; i < 40 && !quiet; ++i) {
        game.gameMessages.clear();
        game.pass(300ms);
        quiet = paints() == 0;
    }
    ASSERT_TRUE(quiet) << "a window that is painted all the time";
    view->navigationStarting(view);
    EXPECT_TRUE(game.waitFor("WM_PAINT", [&] { return paints() > 0; }, 5s));
}

}  // namespace ZEMO::Test
