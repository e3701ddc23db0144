#include <gtest/gtest.h>

#include <format>

#include "engine/game_host.h"
#include "support/debug_log.h"
#include "support/http_server.h"

// What pages and games do that nobody meant them to do.
namespace ZEMO::Test {
namespace {

/// Its upper half changes for as long as scripts run, its lower half is of one colour.
std::string livelyPage(const char* script) {
    return std::format(
        "<!doctype html><body style='margin:0;background:#336699'><div id=d style='height:50px'></div><script>"
        "let n=0;setInterval(()=>{{d.style.background=(n++%2)?'#ff0000':'#00ff00'}},50);{}</script>",
        script);
}

class DropsItself : public ZEMO::UI::ZEMOViewDelegate {
public:
    explicit DropsItself(std::shared_ptr<ZEMO::UI::IZEMOWebView>& heldView) : view(heldView) {}
    void viewDidShow(ZEMO::UI::IZEMOView*) override {}
    void viewDidClose(ZEMO::UI::IZEMOView*) override {
        const std::weak_ptr<ZEMO::UI::IZEMOWebView> watched = view;
        view.reset();
        dropped = true;
        aliveInItsCall = !watched.expired();
    }
    std::shared_ptr<ZEMO::UI::IZEMOWebView>& view;
    bool dropped = false;
    bool aliveInItsCall = false;
};

}  // namespace

TEST(Hostile, PagePrints_NothingHappensFramesGoOnAndFurtherViewsStart) {
    HttpServer server;
    server.serveHtml("/", livelyPage("setTimeout(()=>{print();fetch('/printed')},300)"));
    server.serveHtml("/next", "<body style='background:#112233'>");
    GameHost game;
    NavigationRecorder events;
    const auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the script behind print()", [&] { return server.requestCount("/printed") == 1; }));
    game.frames.forgetFrames();
    ASSERT_TRUE(game.waitFor("twenty frames more", [&] { return game.frames.frameCount() >= 20; }));
    NavigationRecorder nextEvents;
    const auto next = game.makeView(server.url("/next"), nextEvents);
    next->show();
    ASSERT_TRUE(game.waitFor("the next view's page", [&] { return game.frames.pixel(9, 150) == 0xFF112233u; }));
}

TEST(Hostile, ViewDroppedInsideViewDidClose_CloseComesBack) {
    HttpServer server;
    server.serveHtml("/", livelyPage(""));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    const auto drops = std::make_shared<DropsItself>(view);
    view->setViewDelegate(drops);
    view->show();
    ASSERT_TRUE(game.waitFor("a frame", [&] { return game.frames.frameCount() > 0; }));
    view->close();
    EXPECT_TRUE(drops->dropped);
    EXPECT_TRUE(drops->aliveInItsCall) << "close still works on the view";
    EXPECT_EQ(view, nullptr);
    EXPECT_TRUE(game.waitFor("the notice of the end", [&] { return game.frames.lastFrame().cleared; }));
}

TEST(Hostile, ViewDroppedInsideItsPresentCallback_NoticeOfTheEndFollowsThatFrame) {
    HttpServer server;
    server.serveHtml("/", livelyPage(""));
    GameHost game;
    NavigationRecorder events;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
    std::mutex mutex;
    std::vector<std::string> calls;
    bool inside = false;
    ZEMO::UI::setUIOsrFramePresentCallback([&](const void* pixels, int, int, int, int, int, int) {
        const std::lock_guard lock(mutex);
        calls.emplace_back(inside ? "nested" : pixels ? "frame" : "end");
        inside = true;
        if (pixels) std::exchange(view, nullptr).reset();
        inside = false;
    });
    auto made = game.makeView(server.url("/"), events);
    made->show();
    {
        const std::lock_guard lock(mutex);
        view = std::move(made);
    }
    ASSERT_TRUE(game.waitFor("the end", [&] {
        const std::lock_guard lock(mutex);
        return !calls.empty() && calls.back() == "end";
    }));
    ZEMO::UI::setUIOsrFramePresentCallback(nullptr);
    const std::lock_guard lock(mutex);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "nested"), 0);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "end"), 1);
}

TEST(Hostile, ViewClosedAndShownAgainInsideItsPresentCallback_FramesGoOnOneAfterTheOther) {
    HttpServer server;
    server.serveHtml("/", livelyPage(""));
    GameHost game;
    NavigationRecorder events;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
    std::recursive_mutex mutex;
    int frames = 0, turns = 0, nested = 0;
    bool inside = false;
    ZEMO::UI::setUIOsrFramePresentCallback([&](const void* pixels, int, int, int, int, int, int) {
        const std::lock_guard lock(mutex);
        if (!pixels) return;
        nested += inside;
        if (++frames % 5 != 0 || inside || !view) return;
        inside = true;
        view->close();
        view->show();
        inside = false;
        ++turns;
    });
    const auto made = game.makeView(server.url("/"), events);
    made->show();
    {
        const std::lock_guard lock(mutex);
        view = made;
    }
    EXPECT_TRUE(game.waitFor("frames after three turns", [&] {
        const std::lock_guard lock(mutex);
        return turns >= 3 && frames % 5 == 4;
    }));
    ZEMO::UI::setUIOsrFramePresentCallback(nullptr);
    const std::lock_guard lock(mutex);
    EXPECT_EQ(nested, 0);
    view.reset();
}

TEST(Hostile, GamesOwnMessagesOfTheReservedNumbers_LeftAloneWhileAViewIsShown) {
    HttpServer server;
    server.serveHtml("/", livelyPage(""));
    GameHost game;
    NavigationRecorder events;
    const auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    static int notAText = 42;
    for (const UINT message : {1224u, 1225u}) {
        for (const LPARAM lParam :
             {reinterpret_cast<LPARAM>(&notAText), LPARAM{0x1234}, LPARAM{-1}, reinterpret_cast<LPARAM>(&game)}) {
            game.gameMessages.clear();
            SendMessageW(game.window, message, 7, lParam);
            EXPECT_EQ(game.gameMessages, (std::vector<GameMessage>{{message, 7, lParam}}));
        }
    }
    EXPECT_EQ(notAText, 42);
}

TEST(Hostile, MainWindowMadeAnew_NextViewFillsTheNewOne) {
    HttpServer server;
    server.serveHtml("/", "<body style='background:#445566'>");
    GameHost game;
    {
        NavigationRecorder events;
        const auto view = game.makeView(server.url("/"), events);
        view->show();
        ASSERT_TRUE(game.waitFor("the first page", [&] { return game.frames.pixel(300, 190) == 0xFF445566u; }));
    }
    game.remakeWindow(240, 160);
    game.frames.forgetFrames();
    NavigationRecorder events;
    const auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("a frame of the new window's size", [&] {
        return game.frames.lastFrame().width == 240 && game.frames.lastFrame().height == 160 &&
               game.frames.pixel(230, 150) == 0xFF445566u;
    }));
    // Its messages come to the view first now.
    game.gameMessages.clear();
    SendMessageW(game.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(std::count_if(game.gameMessages.begin(), game.gameMessages.end(),
                            [](const GameMessage& m) { return m.id == WM_LBUTTONDOWN; }),
              0);
}

TEST(Hostile, AddressesThatTheEngineRefuses_LoggedAndReportedAsFailed) {
    GameHost game;
    for (const std::string& address :
         {std::string(), std::string("   "), std::string("http://127.0.0.1:99999/"), std::string("http://[/")}) {
        DebugLogCapture log;
        NavigationRecorder events;
        const auto view = game.makeView(address, events);
        view->show();
        EXPECT_TRUE(game.waitFor("the failure", [&] { return events.has("failed -300"); })) << address;
        EXPECT_TRUE(log.contains("the engine refuses this address")) << address;
    }
}

TEST(Hostile, TextTooLongForTheEngine_LoggedAndReportedAsFailedThenTheViewGoesOn) {
    HttpServer server;
    server.serveHtml("/", "<body style='background:#778899'>");
    GameHost game;
    DebugLogCapture log;
    NavigationRecorder events;
    const auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    const std::string text = "<body>" + std::string(1'700'000, 'x');
    view->loadHtml(text, "x/y");
    EXPECT_TRUE(game.waitFor("the failure", [&] { return events.has("failed -300"); }));
    EXPECT_TRUE(log.contains("the engine refuses this address of "));
    events.forget();
    view->loadContent(addressItem(server.url("/")));
    EXPECT_TRUE(game.waitFor("the page again", [&] { return events.has("completed"); }));
}

TEST(Hostile, FortyViewsDroppedBeforeTheirBrowserCame_NextPageComesAtOnceWithoutTheirProcesses) {
    HttpServer server;
    server.serveHtml("/", "<body style='background:#99AABB'>");
    GameHost game;
    NavigationRecorder events;
    for (int i = 0; i < 40; ++i) {
        const auto view = game.makeView(server.url("/dropped"), events);
        view->show();
    }
    const auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(300, 190) == 0xFF99AABBu; }));
    EXPECT_LT(server.requestCount("/dropped"), 20u) << "most of the dropped views have cost a page process";
}

}  // namespace ZEMO::Test
