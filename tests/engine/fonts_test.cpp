#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/http_server.h"

// What a page that names no font shows on this machine. A page looks at its own glyphs and says by its colour what it
// saw.
namespace ZEMO::Test {
namespace {

constexpr uint32_t kGreen = 0xFF008000u, kRed = 0xFFFF0000u;

/// `claim`: a script expression, true when the page is green. `picture(text)` is what a text looks like; a code point
/// that no font has gives the box which stands for a missing glyph.
std::string pageThatClaims(const std::string& claim) {
    return R"(<!doctype html><meta charset="utf-8"><style>html{background:#fff}</style><script>
const canvas = document.createElement('canvas').getContext('2d', {willReadFrequently: true});
function picture(text) {
    canvas.font = '40px serif';
    canvas.clearRect(0, 0, 200, 100);
    canvas.fillText(text, 10, 60);
    return canvas.getImageData(0, 0, 200, 100).data.join();
}
function width(font, text) { canvas.font = '40px ' + font; return canvas.measureText(text).width; }
const nothing = picture(''), box = picture('\u{10FFFD}');
const drawn = (text) => picture(text) != nothing && picture(text) != box;
document.documentElement.style.background = ()" +
           claim + R"() ? 'rgb(0,128,0)' : 'rgb(255,0,0)';
</script>)";
}

struct Claim {
    const char* name;
    const char* script;
};

class Fonts : public testing::TestWithParam<Claim> {};

}  // namespace

TEST_P(Fonts, PageThatNamesNone_ShowsIt) {
    HttpServer server;
    server.serveHtml("/", pageThatClaims(GetParam().script));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    const auto colour = [&] { return game.frames.pixel(160, 100); };
    ASSERT_TRUE(game.waitFor("green or red", [&] { return colour() == kGreen || colour() == kRed; }));
    EXPECT_EQ(colour(), kGreen) << GetParam().script;
}

INSTANTIATE_TEST_SUITE_P(
    Writing, Fonts,
    testing::Values(Claim{"Latin", "drawn('a')"}, Claim{"Korean", "drawn('다')"}, Claim{"Japanese", "drawn('ツ')"},
                    Claim{"ChineseSimplified", "drawn('简')"}, Claim{"ChineseTraditional", "drawn('體')"},
                    Claim{"Emoji", "drawn('\\u{1F600}')"},
                    Claim{"FixedWidth", "width('monospace', 'iiii') == width('monospace', 'WWWW')"},
                    Claim{"SerifIsNotSansSerif", "width('serif', 'iiiWWW') != width('sans-serif', 'iiiWWW')"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace ZEMO::Test
