#include <gtest/gtest.h>

#include <format>
#include <string>

#include "client/client_view.h"
#include "client/post_item.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/http_server.h"

// Who decides where a page goes: the delegate, for each frame and each redirect. The server's record says what went
// out.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

bool refuseForbidden(const std::string& url) { return url.find("/forbidden") != std::string::npos; }

class NavigationPolicy : public ::testing::Test {
protected:
    NavigationPolicy() {
        server.serveHtml("/forbidden", "<body>no");
        server.serveHtml("/allowed", "<body>yes");
        server.serveHtml("/done", "");
    }

    void open(const std::string& html) {
        server.serveHtml("/", "<!doctype html><body>" + html);
        view = std::make_unique<ClientView>(game, server.url("/"), ClientView::Options{.decide = &refuseForbidden});
    }
    void waitForRequest(const std::string& path) {
        EXPECT_TRUE(game.waitFor(path.c_str(), [&] { return server.requestCount(path) > 0; }));
    }
    bool asked(const std::string& path) { return view->events->has("requested " + server.url(path)); }
    void waitUntilAsked(const std::string& path) {
        EXPECT_TRUE(game.waitFor(("the question for " + path).c_str(), [&] { return asked(path); }));
    }

    HttpServer server;
    GameHost game;
    std::unique_ptr<ClientView> view;
};

}  // namespace

TEST_F(NavigationPolicy, RefusedMainFrame_NeverReachesTheServerAndThePageStays) {
    open("<script>location='/forbidden';setTimeout(()=>fetch('/done'),500)</script>");
    waitUntilAsked("/forbidden");
    waitForRequest("/done");
    EXPECT_EQ(server.requestCount("/forbidden"), 0u);
    EXPECT_EQ(view->adapter->getBrowser()->GetMainFrame()->GetURL().ToString(), server.url("/"));
}

TEST_F(NavigationPolicy, RefusedSubFrame_CancelledLikeAMainFrame) {
    open("<iframe src=/forbidden></iframe><iframe src=/allowed></iframe>");
    waitUntilAsked("/forbidden");
    waitForRequest("/allowed");
    ASSERT_TRUE(game.waitFor("completion", [&] { return view->events->has("completed"); }));
    game.pass(300ms);
    EXPECT_EQ(server.requestCount("/forbidden"), 0u);
}

TEST_F(NavigationPolicy, RedirectToARefusedAddress_EndsThere) {
    server.serve("/moved", {.status = 302, .extraHeaders = "Location: /forbidden\r\n"});
    server.serve("/moved_frame", {.status = 307, .extraHeaders = "Location: /forbidden?frame\r\n"});
    open("<iframe src=/moved_frame></iframe><script>setTimeout(()=>location='/moved',300)</script>");
    waitUntilAsked("/forbidden?frame");
    waitUntilAsked("/forbidden");
    game.pass(300ms);
    EXPECT_EQ(server.requestCount("/forbidden"), 0u);
    EXPECT_TRUE(asked("/moved"));
}

TEST_F(NavigationPolicy, FormsAndLinksToARefusedAddress_NeverReachTheServer) {
    open(
        "<form id=f action=/forbidden method=post><input name=a value=1></form><a id=a href='/forbidden?link'></a>"
        "<script>f.submit();setTimeout(()=>{a.click();setTimeout(()=>fetch('/done'),300)},300)</script>");
    waitUntilAsked("/forbidden");
    waitUntilAsked("/forbidden?link");
    waitForRequest("/done");
    EXPECT_EQ(server.requestCount("/forbidden"), 0u);
}

TEST_F(NavigationPolicy, RefusedPostItem_NeverReachesTheServer) {
    open("<script>setTimeout(()=>{location='/forbidden';setTimeout(()=>fetch('/done'),300)},300)</script>");
    view->adapter->setContentItems({postItem(server.url("/forbidden"), "secret", {{"X-Token", "secret"}})});
    waitUntilAsked("/forbidden");
    waitForRequest("/done");
    EXPECT_EQ(server.requestCount("/forbidden"), 0u);
}

TEST_F(NavigationPolicy, PicturesAndScriptsRequests_AreNoNavigation) {
    open("<img src='/forbidden?img'><script>fetch('/forbidden?fetch').then(()=>fetch('/done'))</script>");
    waitForRequest("/done");
    EXPECT_TRUE(game.waitFor("both requests", [&] { return server.requestCount("/forbidden") == 2; }));
    EXPECT_FALSE(asked("/forbidden?img"));
    EXPECT_FALSE(asked("/forbidden?fetch"));
}

TEST_F(NavigationPolicy, DelegateGone_EveryFurtherNavigationIsCancelled) {
    open(
        "<script>onmessage=0;const go=()=>fetch('/gone').then(r=>{if(r.status!=200)return setTimeout(go,50);"
        "location='/allowed';let f=document.createElement('iframe');f.src='/allowed';document.body.append(f);"
        "setTimeout(()=>fetch('/done'),500)});go()</script>");
    ASSERT_TRUE(game.waitFor("completion", [&] { return view->events->has("completed"); }));
    view->events.reset();
    server.serveHtml("/gone", "");
    waitForRequest("/done");
    EXPECT_EQ(server.requestCount("/allowed"), 0u);
}

// The engine shows a page of its own in place of such an address, so nothing of the asking page can tell the end.
TEST_F(NavigationPolicy, AddressesOfOtherPrograms_AskedForAndNeverHandedOut) {
    StandInBrowserStage stage;
    const std::wstring command = L"\"" + stage.install(L"other.exe") + L"\" \"%1\"";
    stage.setCommand(L"mailto", command);
    stage.setCommand(L"steam", command);
    for (const std::string address : {"mailto:a@example.org", "steam://run/1"}) {
        open("<script>location='" + address + "'</script>");
        EXPECT_TRUE(game.waitFor("the question", [&] { return view->events->has("requested " + address); })) << address;
        EXPECT_TRUE(game.waitFor("the refusal", [&] {
            return view->events->has(std::format("failed {}", static_cast<int>(ERR_UNKNOWN_URL_SCHEME)));
        })) << address;
    }
    EXPECT_FALSE(stage.waitForStarts(1, 500ms));
}

// Through the exports: the view stands between the engine and the game's delegate.
TEST(NavigationPolicyOfAView, ReservedAddresses_NoNetworkNoErrorAndTheDelegateSeesNeither) {
    HttpServer server;
    server.serveHtml("/done", "");
    server.serveHtml("/",
                     "<!doctype html><body><iframe src='zemosdk://nativeclose'></iframe><script>"
                     "const all=['zemosdk://nativeclose','ZEMOSDK://NATIVECLOSE','zemosdk://gamepadinit?use=false',"
                     "'zemosdk://anything/x'];let i=0;const next=()=>{if(i<all.length){location=all[i++];"
                     "setTimeout(next,200)}else fetch('/done')};setTimeout(next,300)</script>");
    GameHost game;
    NavigationRecorder events;
    events.decide = [](const std::string& url) { return url.starts_with("zemosdk:"); };
    const auto view = game.makeView(server.url("/"), events);
    view->setCloseButtonEnabled(true);
    view->show();
    ASSERT_TRUE(game.waitFor("the page's last step", [&] { return server.requestCount("/done") > 0; }));
    EXPECT_TRUE(game.waitFor("the clicks on the close button", [&] { return events.count("closeRequested") >= 2; }));
    std::vector<std::string> asked;
    for (const std::string& event : events.events()) {
        EXPECT_FALSE(event.starts_with("failed")) << event;
        if (event.starts_with("requested zemosdk")) asked.push_back(event);
    }
    EXPECT_EQ(asked, std::vector<std::string>{"requested zemosdk://anything/x"}) << "an unknown host is the game's";
}

TEST(NavigationPolicyOfAView, AnswerOfTheGamesDelegate_Decides) {
    HttpServer server;
    server.serveHtml("/",
                     "<body><iframe src=/forbidden></iframe><script>setTimeout(()=>location='/allowed',300)</script>");
    server.serveHtml("/allowed", solidPage("#0a0"));
    GameHost game;
    NavigationRecorder events;
    events.decide = &refuseForbidden;
    const auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the allowed page", [&] { return game.frames.pixel(9, 9) == 0xFF00AA00u; }));
    EXPECT_TRUE(events.has("requested " + server.url("/forbidden")));
    EXPECT_EQ(server.requestCount("/forbidden"), 0u);
}

}  // namespace ZEMO::Test
