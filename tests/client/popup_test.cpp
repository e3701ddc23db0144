#include <gtest/gtest.h>

#include "client/client_view.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/http_server.h"

// Popups of real pages. A stand-in program is the default browser here and writes down what it was started with.
namespace ZEMO::Test {
namespace {

void checkPopup(const std::string& markup) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    HttpServer server;
    const std::string target = server.url("/popup?a=1&b=%ED%95%9C");
    server.serveHtml("/popup", solidPage("#f00"));
    server.serveHtml("/",
                     "<!doctype html><style>html,body{margin:0;height:100%;background:#fff}a,button{position:"
                     "absolute;left:0;top:0;width:200px;height:100px}</style>" +
                         markup + "<script>var popup='" + target + "'</script>");
    GameHost game;
    ClientView view(game, server.url("/"));
    ASSERT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
    // Before its first picture a page takes no input.
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(300, 190) == 0xFFFFFFFFu; }));
    view.events->forget();
    const int browser = view.adapter->getBrowser()->GetIdentifier();

    view.click(100, 50);
    ASSERT_TRUE(stage.waitForStarts(1)) << "the default browser was not started";
    // The page goes on: what it does after the popup is seen.
    EXPECT_TRUE(game.waitFor("the page's next step", [&] { return game.frames.pixel(300, 190) == 0xFF00FF00u; }));
    game.pass(1000ms);  // time for a popup that was not refused

    const std::vector<BrowserStart> starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, std::vector<std::string>{target});
    EXPECT_EQ(server.requestCount("/popup"), 0u) << "no browser of ours asks for it";
    EXPECT_FALSE(view.events->has("requested " + target)) << "the delegate is not asked";
    EXPECT_EQ(view.adapter->getBrowser()->GetIdentifier(), browser);
    EXPECT_FALSE(view.events->has("starting")) << "the page itself goes nowhere";
}

}  // namespace

TEST(Popup, ScriptOpensAWindow_AddressGoesToTheDefaultBrowserAndThePageGoesOn) {
    checkPopup("<button onclick=\"document.body.style.background=window.open(popup)===null?'#0f0':'#f00'\"></button>");
}

TEST(Popup, LinkToANewWindow_AddressGoesToTheDefaultBrowserAndThePageGoesOn) {
    checkPopup("<a target=_blank onclick=\"this.href=popup;document.body.style.background='#0f0'\" href='x:'>go</a>");
}

}  // namespace ZEMO::Test
