#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <thread>

#include "engine/game_host.h"
#include "support/debug_log.h"
#include "support/http_server.h"
#include "support/own_window.h"

// A view from its making to its end, as a game drives it.
namespace ZEMO::Test {
namespace {

class ShownRecorder : public ZEMO::UI::ZEMOViewDelegate {
public:
    void viewDidShow(ZEMO::UI::IZEMOView*) override { ++shown; }
    void viewDidClose(ZEMO::UI::IZEMOView*) override { ++closed; }
    int shown = 0, closed = 0;
};

}  // namespace

TEST(ViewLife, ForwardersBeforeShow_DoNothing) {
    GameHost game;  // with a running engine, so that a call that got through would do something
    auto view = ZEMO::UI::createWebViewDefault();
    view->goBack();
    view->goForward();
    EXPECT_FALSE(view->canGoBack());
    EXPECT_FALSE(view->canGoForward());
    view->setContentItems({addressItem("http://x/")});
    view->evaluateJavascript("1", [](std::string, std::string) { ADD_FAILURE() << "called"; });
    view->addJavascriptCallback("name", [](std::string) { ADD_FAILURE() << "called"; });
    EXPECT_EQ(view->bindObject("gift", "token 1"),
              "window.BindObjectAsync(\"gift\").then(function(result) {gift.postMessage(\"gift\",'token 1');})");
    view->reserved("text");
    view->close();
}

TEST(ViewLife, LoadsBeforeShow_LastTextWinsAndOneBrowserIsMade) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,unused", events);
    view->loadContent(nullptr);
    view->loadPage("first");
    view->loadPage("start");
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    size_t requested = 0;
    for (const std::string& event : events.events()) {
        if (!event.starts_with("requested")) continue;
        ++requested;
        EXPECT_TRUE(event.ends_with("/resources/html/start.html")) << event;
    }
    EXPECT_EQ(requested, 1u);
}

TEST(ViewLife, NothingStored_EmptyHtmlPageIsShown) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,unused", events);
    view->loadContent(nullptr);
    view->show();
    ASSERT_TRUE(game.waitFor("the empty page", [&] { return events.has("completed"); }));
    EXPECT_TRUE(events.has("requested data:text/html;base64,")) << events.events().front();
}

TEST(ViewLife, HtmlStoredThenPage_HtmlRoadIsTaken) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,unused", events);
    view->loadContent(nullptr);
    view->loadHtml("<!doctype html><style>html{background:#778899}</style>", "C:/x/html/p.html");
    view->loadPage("start");
    view->show();
    EXPECT_TRUE(game.waitFor("the HTML's colour", [&] { return game.frames.pixel(9, 9) == 0xFF778899u; }));
}

TEST(ViewLife, HtmlWithKoreanLettersAndReservedCharacters_ArrivesLetterByLetter) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,unused", events);
    view->loadContent(nullptr);
    // The page itself compares its text with what was meant, written in escapes, and says so by its colour.
    const auto page = [](const char* color) {
        return std::string("<!doctype html><meta charset=utf-8><p id=t>한글 1+1=2 50% #가 %2B&amp;?~>>></p><script>") +
               "document.documentElement.style.background=document.getElementById('t').textContent===" +
               "'\\uD55C\\uAE00 1\\x2B1\\x3D2 50\\x25 \\x23\\uAC00 \\x252B\\x26\\x3F~\\x3E\\x3E\\x3E'?'" + color +
               "':'#f00'</script>";
    };
    const std::string first = page("#135724");
    view->loadHtml(first, "");
    view->show();
    EXPECT_TRUE(game.waitFor("the first text", [&] { return game.frames.pixel(310, 190) == 0xFF135724u; }));
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    const std::string second = page("#246813");
    view->loadHtml(second, "");
    EXPECT_TRUE(game.waitFor("the second text", [&] { return game.frames.pixel(310, 190) == 0xFF246813u; }));
}

TEST(ViewLife, WebAddressInMixedCaseWithItems_CreatesTheBrowserOnIt) {
    HttpServer server;
    server.serveHtml("/", solidPage("#8899aa"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,unused", events);
    view->loadContent(nullptr);
    std::string address = server.url("/");
    address.replace(0, 4, "HTTP");
    view->loadUrl(address, {addressItem(address)});
    view->show();
    EXPECT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF8899AAu; }));
}

TEST(ViewLife, OpenViewLoadsAgain_EachRoadNavigatesTheSameBrowser) {
    HttpServer server;
    server.serveHtml("/", solidPage("#99aabb"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the first page", [&] { return game.frames.pixel(9, 9) == 0xFF99AABBu; }));
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.count("completed") == 1; }));
    view->loadHtml("<!doctype html><style>html{background:#112200}</style>", "");
    EXPECT_TRUE(game.waitFor("the HTML", [&] { return game.frames.pixel(9, 9) == 0xFF112200u; }));
    EXPECT_TRUE(game.waitFor("way back", [&] { return view->canGoBack(); }));
    EXPECT_FALSE(view->canGoForward());
    view->goBack();
    EXPECT_TRUE(game.waitFor("the first page again", [&] { return game.frames.pixel(9, 9) == 0xFF99AABBu; }));
    EXPECT_TRUE(game.waitFor("way forward", [&] { return view->canGoForward(); }));
    view->goForward();
    EXPECT_TRUE(game.waitFor("the HTML again", [&] { return game.frames.pixel(9, 9) == 0xFF112200u; }));
    events.forget();
    view->loadUrl("start", {});
    EXPECT_TRUE(game.waitFor("the local page by name", [&] {
        for (const std::string& event : events.events()) {
            if (event.starts_with("requested file:///") && event.ends_with("/resources/html/start.html")) return true;
        }
        return false;
    }));
    EXPECT_TRUE(game.waitFor("its completion", [&] { return events.has("completed"); }));
    events.forget();
    view->loadUrl(server.url("/"), {});  // on an open view this is a name, deliberately
    EXPECT_TRUE(game.waitFor("a missing local page", [&] {
        for (const std::string& event : events.events()) {
            if (event.starts_with("failed")) return true;
        }
        return false;
    }));
    view->loadContent(addressItem(server.url("/")));
    EXPECT_TRUE(game.waitFor("the address as content", [&] { return game.frames.pixel(9, 9) == 0xFF99AABBu; }));
}

TEST(ViewLife, ReservedAddresses_NeverReachDelegateOrNetwork) {
    HttpServer server;
    server.serveHtml("/",
                     "<!doctype html><style>html{background:#204020}</style><script>onload=()=>setTimeout(()=>{"
                     "location='zemosdk://gamepadinit?use=TRUE'},200)</script>");
    server.serveHtml("/use",
                     "<!doctype html><script>onload=()=>setTimeout(()=>{location='ZEMOSDK://GamePadInit?use=true'"
                     "},200)</script>");
    server.serveHtml("/other",
                     "<!doctype html><script>onload=()=>setTimeout(()=>{location='zemosdk://anything'},200)"
                     "</script>");
    GameHost game;
    std::atomic<int> used{-1};
    ZEMO::UI::setUIGameControllerScriptUseCallback([&](int value) { used = value; });
    NavigationRecorder events;
    events.decide = [](const std::string& url) { return url.starts_with("zemosdk"); };
    auto view = game.makeView(server.url("/"), events);
    view->show();
    EXPECT_TRUE(game.waitFor("use=TRUE, which is not true", [&] { return used == 0; }));
    view->loadContent(addressItem(server.url("/use")));
    EXPECT_TRUE(game.waitFor("use=true", [&] { return used == 1; }));
    for (const std::string& event : events.events()) {
        EXPECT_FALSE(event.starts_with("failed")) << event;
        EXPECT_EQ(event.find("gamepadinit"), std::string::npos) << event;
        EXPECT_EQ(event.find("GamePadInit"), std::string::npos) << event;
    }
    view->loadContent(addressItem(server.url("/other")));
    EXPECT_TRUE(game.waitFor("an unknown host of the scheme", [&] {
        for (const std::string& event : events.events()) {
            if (event.starts_with("requested zemosdk://anything")) return true;
        }
        return false;
    }));
    ZEMO::UI::setUIGameControllerScriptUseCallback(nullptr);
}

TEST(ViewLife, DelegateRefuses_NavigationDoesNotHappen) {
    HttpServer server;
    server.serveHtml("/", solidPage("#aa1100"));
    server.serveHtml("/no", solidPage("#00aa11"));
    GameHost game;
    NavigationRecorder events;
    events.decide = [](const std::string& url) { return url.ends_with("/no"); };
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFFAA1100u; }));
    view->loadContent(addressItem(server.url("/no")));
    ASSERT_TRUE(game.waitFor("the question", [&] { return events.has("requested " + server.url("/no")); }));
    game.pass(500ms);
    EXPECT_EQ(server.requestCount("/no"), 0u);
    EXPECT_EQ(game.frames.pixel(9, 9), 0xFFAA1100u);
}

TEST(ViewLife, PageWithFrame_StartsAndCompletionsForEachFrame) {
    HttpServer server;
    server.serveHtml("/", "<!doctype html><iframe src='/inner'></iframe>");
    server.serveHtml("/inner", solidPage("#123123"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    EXPECT_TRUE(game.waitFor("both frames", [&] { return events.count("completed") == 2; }));
    EXPECT_EQ(events.count("starting"), 2u);
}

// Both views draw into the one picture of the game, a small rectangle each time: it is right only if each begins whole.
TEST(ViewLife, TwoLayersThatPaintAllTheTime_PictureRebuiltFromTheirRectanglesIsTheShownOne) {
    const auto page = [](const std::string& colour) {
        return "<!doctype html><style>body{margin:0;background:" + colour +
               "}div{width:10px;height:10px;background:#fff}</style><div id=b></div><script>let n=0;(function f(){"
               "b.style.marginLeft=n++%50*4+'px';requestAnimationFrame(f)})()</script>";
    };
    HttpServer server;
    server.serveHtml("/a", page("#aa0000"));
    server.serveHtml("/b", page("#0000bb"));
    GameHost game;
    NavigationRecorder events;
    auto first = game.makeView(server.url("/a"), events);
    auto second = game.makeView(server.url("/b"), events);
    const auto rectanglesOf = [&](const char* what, uint32_t colour) {
        EXPECT_TRUE(game.waitFor(what, [&] { return game.frames.pixel(300, 190) == colour; }));
        game.frames.forgetFrames();
        EXPECT_TRUE(game.waitFor("its moving block", [&] {
            size_t parts = 0;
            for (const Frame& frame : game.frames.frames()) parts += !frame.cleared && !frame.wholeFrame();
            return parts > 5;
        })) << what;
        EXPECT_EQ(game.frames.pixel(300, 190), colour) << what;
        EXPECT_TRUE(game.frames.replayMatches()) << what;
    };
    first->show();
    rectanglesOf("the first", 0xFFAA0000u);
    second->show();
    rectanglesOf("the second", 0xFF0000BBu);
    second->close();
    rectanglesOf("the first again", 0xFFAA0000u);
    second->show();
    rectanglesOf("the second again", 0xFF0000BBu);
    second->close();
    first->close();
}

TEST(ViewLife, TwoLayers_TheLastShownIsSeenAndTheFirstComesBack) {
    HttpServer server;
    server.serveHtml("/a", solidPage("#aa0000"));
    server.serveHtml("/b", solidPage("#0000bb"));
    GameHost game;
    NavigationRecorder events;
    const DWORD before = GetPriorityClass(GetCurrentProcess());
    auto first = game.makeView(server.url("/a"), events);
    first->show();
    EXPECT_NE(GetPriorityClass(GetCurrentProcess()), before) << "a shown layer raises the priority class";
    ASSERT_TRUE(game.waitFor("the first", [&] { return game.frames.pixel(9, 9) == 0xFFAA0000u; }));
    auto second = game.makeView(server.url("/b"), events);
    second->show();
    ASSERT_TRUE(game.waitFor("the second", [&] { return game.frames.pixel(9, 9) == 0xFF0000BBu; }));
    game.pass(400ms);
    EXPECT_EQ(game.frames.pixel(9, 9), 0xFF0000BBu) << "a covered layer must not present";
    second->close();
    EXPECT_TRUE(game.waitFor("the first again", [&] {
        const Frame last = game.frames.lastFrame();
        return last.wholeFrame() && game.frames.pixel(9, 9) == 0xFFAA0000u;
    }));
    first->close();
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), before);
}

TEST(ViewLife, ShowAndClose_ViewDelegateHearsBothAndADroppedOneNothing) {
    GameHost game;
    auto delegate = std::make_shared<ShownRecorder>();
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setViewDelegate(delegate);
    view->show();
    EXPECT_EQ(delegate->shown, 1);
    view->close();
    EXPECT_EQ(delegate->closed, 1);
    view->show();
    EXPECT_EQ(delegate->shown, 2);
    std::weak_ptr<ShownRecorder> watched = delegate;
    delegate.reset();
    EXPECT_TRUE(watched.expired()) << "the view holds its delegate weakly";
    view->close();
}

TEST(ViewLife, ShowAndWait_FirstWaitReturnsAtOnceAndASecondThreadWaitsForClose) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->showAndWait();  // would hang the test if it waited
    std::atomic<bool> through{false};
    std::thread waiter([&] {
        view->showAndWait();
        through = true;
        view->close();
    });
    game.pass(300ms);
    EXPECT_FALSE(through);
    view->close();
    EXPECT_TRUE(game.waitFor("the second waiter", [&] { return through.load(); }));
    waiter.join();
}

TEST(ViewLife, UnknownDisplayMode_MakesNoLayerAndNoCrash) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setDisplayMode(2);
    view->show();
    view->loadPage("start");
    EXPECT_FALSE(view->canGoBack());
    view->close();
    game.pass(300ms);
    EXPECT_TRUE(events.events().empty());
}

TEST(ViewLife, OwnWindow_OpensOnTheScreenStaysAfterCloseAndGoesWithItsCloseMessage) {
    GameHost game;
    auto delegate = std::make_shared<ShownRecorder>();
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setDisplayMode(1);
    view->setSize(500.9f, 300.9f);
    view->setViewDelegate(delegate);
    view->show();
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    EXPECT_EQ(GetWindow(own, GW_OWNER), game.window);
    EXPECT_TRUE(IsWindowVisible(own));
    wchar_t title[32] = {};
    GetWindowTextW(own, title, 32);
    EXPECT_EQ(std::wstring_view(title), L"Zemo window");
    EXPECT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    view->close();
    game.pass(200ms);
    EXPECT_TRUE(IsWindow(own)) << "close leaves the native window";
    EXPECT_EQ(delegate->closed, 1);
    PostMessageW(own, WM_CLOSE, 0, 0);
    EXPECT_TRUE(game.waitFor("the window's end", [&] { return !IsWindow(own); }));
    EXPECT_EQ(delegate->closed, 2) << "the window's own end is told too";
    view.reset();
}

TEST(ViewLife, OwnWindowViewDropped_WindowCloses) {
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setDisplayMode(1);
    view->setSize(400, 300);
    view->show();
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    view.reset();
    EXPECT_TRUE(game.waitFor("the window's end with its browser", [&] { return !IsWindow(own); }));
}

TEST(ViewLife, LogLines_OfStartAndOfAView_WordForWord) {
    DebugLogCapture log;
    GameHost game;
    NavigationRecorder events;
    {
        auto view = game.makeView("data:text/html,x", events);
        view->show();
        ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    }
    for (const char* line : {"cef initializing ... \n", "cef is initialized.\n", "cef module is ready\n",
                             "navigationStarting\n", "navigationCompleted\n", "html view is closed\n"}) {
        // The engine thread may still hold the view for the event that the test has just seen.
        EXPECT_TRUE(game.waitFor("a log line", [&] { return log.contains(line); })) << line;
    }
}

}  // namespace ZEMO::Test
