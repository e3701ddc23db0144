#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/http_server.h"

// Views that come and go, one after the other.
namespace ZEMO::Test {
namespace {

/// Six new composited layers in each frame, each of a size that was not there before, so that nothing is used again: as
/// many handles as can be are on their way from the page's process to the game's when the process ends.
constexpr char kRestlessPage[] = R"(<!doctype html>
<style>html,body{margin:0;height:100%;background:#204060} i{position:absolute;opacity:.5}</style>
<script>
let old = [];
function frame(count) {
    for (const layer of old) layer.remove();
    old = [];
    for (let i = 0; i < 6; ++i) {
        const layer = document.createElement('i');
        layer.style.cssText = `left:${100 + i * 20}px;top:${(count * 7 + i * 13) % 100}px;` +
                              `width:${20 + (count * 6 + i) % 180}px;height:${20 + (count * 7 + i * 3) % 90}px;` +
                              `will-change:transform;background:rgb(${count % 256},${i * 40},90)`;
        document.body.append(layer);
        old.push(layer);
    }
    requestAnimationFrame(() => frame(count + 1));
}
addEventListener('load', () => frame(0));
</script><body>)";

}  // namespace

// Under Wine without its guards the engine may stand still for good in any of them (see src/core/wine/handle_moves.h).
// How often depends on the machine and its load.
TEST(ViewCycles, SixtyRestlessPagesOpenedDrawnAndClosedAtOnce_EachIsDrawn) {
    HttpServer server;
    server.serveHtml("/", kRestlessPage);
    GameHost game;
    for (int cycle = 1; cycle <= 60; ++cycle) {
        NavigationRecorder events;
        auto view = game.makeView(server.url("/"), events);
        game.frames.forgetFrames();
        view->show();
        ASSERT_TRUE(game.waitFor(
            "a few frames", [&] { return game.frames.frameCount() >= 5 && game.frames.pixel(9, 9) == 0xFF204060u; }))
            << "in cycle " << cycle;
        view->close();
    }
}

}  // namespace ZEMO::Test
