#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/http_server.h"

namespace ZEMO::Test {

TEST(SelfClosedPage, LoadsAndScriptsAfterwards_NothingHappensAndTheViewEndsQuietly) {
    HttpServer server;
    server.serveHtml("/", solidPage("#0f0") +
                              "<script>setInterval(async () => { if (await (await fetch('/leave')).text() === 'yes') "
                              "window.close() }, 50)</script>");
    server.serveHtml("/leave", "no");
    server.serveHtml("/late", solidPage("#00f"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(10, 10) == 0xFF00FF00u; }));
    server.serveHtml("/leave", "yes");
    ASSERT_TRUE(game.waitFor("the end of the page's process", [&] {
        for (const DWORD child : childProcesses()) {
            if (childType(child) == "renderer") return false;
        }
        return true;
    })) << "window.close() did not close the page's browser";

    view->loadContent(addressItem(server.url("/late")));
    view->loadPage("start");
    view->evaluateJavascript("1", [](std::string, std::string) {});
    view->goBack();
    view->canGoForward();
    view->close();
    view->show();
    game.pass(500ms);
    EXPECT_EQ(server.requestCount("/late"), 0u);
    view.reset();
}

}  // namespace ZEMO::Test
