#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/http_server.h"

namespace ZEMO::Test {

TEST(FirstPixels, PageOfOneColour_ArrivesInTheCallbackPixelForPixel) {
    HttpServer server;
    server.serveHtml("/", solidPage("rgb(17, 34, 51)"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page's colour", [&] { return game.frames.pixel(160, 100) == 0xFF112233u; }));
    EXPECT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    EXPECT_TRUE(game.frames.replayMatches());
    EXPECT_EQ(game.frames.lastFrame().width, 320);
    EXPECT_EQ(game.frames.lastFrame().height, 200);
}

}  // namespace ZEMO::Test
