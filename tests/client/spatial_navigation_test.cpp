#include <gtest/gtest.h>

#include <filesystem>
#include <format>
#include <fstream>
#include <iterator>

#include "client/controller_page.h"
#include "core/resource_paths.h"
#include "support/http_server.h"

// Which element lies next to another: the common script's geometry, on real layouts.
namespace ZEMO::Test {
namespace {

std::string fileText(const char* name) {
    std::ifstream file(ZEMO::Core::getLocalHtmlDirectory() / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class SpatialNavigation : public ::testing::Test {
protected:
    SpatialNavigation() {
        server.serve("/navigation.js",
                     {.contentType = "text/javascript", .body = fileText("common/js/spatial_navigation.js")});
    }
    std::string pageWith(const std::string& body) {
        server.serveHtml("/",
                         "<!doctype html><style>*{margin:0}.b{position:absolute;padding:0;border:0}</style>"
                         "<script src=/navigation.js></script><script>const next = (from, direction) => { const e "
                         "= SpatialNavigation.next(direction, document.getElementById(from), "
                         "SpatialNavigation.focusables()); return e ? e.id : 'none' }; const move = direction => "
                         "{ SpatialNavigation.move(direction); return document.activeElement.id };</script>" +
                             body);
        return server.url("/");
    }
    HttpServer server;
    GameHost game{{.clientWidth = 800, .clientHeight = 600}};
};

std::string box(const char* id, int x, int y, int width, int height) {
    return std::format("<button class=b id={} style='left:{}px;top:{}px;width:{}px;height:{}px'>{}</button>", id, x, y,
                       width, height, id);
}

}  // namespace

TEST_F(SpatialNavigation, Table_NeighbourInEachDirection) {
    std::string body;
    // A grid of three by three; a wide bar below it; a column aside; one small box inside the gap; overlapping boxes.
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const std::string id = std::format("g{}{}", row, column);
            body += box(id.c_str(), 20 + column * 120, 20 + row * 60, 100, 40);
        }
    }
    body += box("bar", 20, 220, 340, 30) + box("low", 300, 300, 60, 30) + box("left", 20, 300, 60, 30);
    body += box("side1", 600, 20, 60, 100) + box("side2", 600, 140, 60, 100) + box("far", 600, 500, 60, 30);
    body += box("over1", 400, 400, 80, 40) + box("over2", 440, 410, 80, 40);
    struct Case {
        const char *from, *direction, *to;
    };
    const Case cases[] = {
        {"g00", "right", "g01"},    {"g00", "down", "g10"},      {"g00", "left", "none"},    {"g00", "up", "none"},
        {"g11", "right", "g12"},    {"g11", "left", "g10"},      {"g11", "up", "g01"},       {"g11", "down", "g21"},
        {"g20", "down", "bar"},     {"g21", "down", "bar"},      {"g22", "down", "bar"},     {"bar", "up", "g20"},
        {"bar", "down", "left"},    {"g02", "right", "side1"},   {"g12", "right", "side1"},  {"g22", "right", "side2"},
        {"side1", "left", "g02"},   {"side2", "left", "g22"},    {"side1", "down", "side2"}, {"side2", "up", "side1"},
        {"side2", "down", "over1"}, {"far", "up", "side2"},      {"far", "down", "none"},    {"far", "right", "none"},
        {"left", "right", "low"},   {"low", "left", "left"},     {"low", "up", "bar"},       {"left", "up", "bar"},
        {"left", "left", "none"},   {"over1", "right", "over2"}, {"over2", "left", "over1"}, {"over1", "down", "over2"},
        {"over2", "up", "over1"},   {"side1", "up", "none"},     {"side1", "right", "none"}, {"bar", "right", "side2"},
    };
    static_assert(std::size(cases) == 36);
    ControllerPage page(game, pageWith(body));
    ASSERT_TRUE(page.waitUntilLoaded());
    std::string question, expected;
    for (const Case& each : cases) {
        question += std::format("+'{0} {1} '+next('{0}','{1}')+';'", each.from, each.direction);
        expected += std::format("{} {} {};", each.from, each.direction, each.to);
    }
    EXPECT_EQ(page.ask("''" + question), expected);
}

TEST_F(SpatialNavigation, WhatCannotHaveTheFocus_IsNoNeighbour) {
    ControllerPage page(
        game,
        pageWith("<button id=a>a</button><button disabled>-</button><button tabindex=-1>-</button><button "
                 "hidden>-</button><button style='visibility:hidden'>-</button><fieldset disabled><input></fieldset>"
                 "<div inert><button>-</button></div><div aria-hidden=true><a href=x>-</a></div><input type=hidden>"
                 "<a>no address</a><div style='display:none'><button>-</button></div><button style='width:0;"
                 "padding:0;border:0;overflow:hidden'></button><a id=b href=x>b</a><div id=c tabindex=0>c</div>"
                 "<div id=d contenteditable>d</div><select id=e></select><textarea id=f></textarea>"
                 "<details><summary id=g>g</summary></details>"));
    ASSERT_TRUE(page.waitUntilLoaded());
    EXPECT_EQ(page.ask("SpatialNavigation.focusables().map(e => e.id).join()"), "a,b,c,d,e,f,g");
}

TEST_F(SpatialNavigation, Edge_FocusStaysAndNothingWraps) {
    ControllerPage page(game, pageWith(box("a", 10, 10, 50, 30) + box("b", 10, 100, 50, 30)));
    ASSERT_TRUE(page.waitUntilLoaded());
    EXPECT_EQ(page.ask("[move('down'), move('down'), move('down'), move('right'), move('up'), move('up')].join()"),
              "a,b,b,b,a,a")
        << "the first move only begins";
}

TEST_F(SpatialNavigation, NeighbourOutOfSight_ScrolledIntoView) {
    ControllerPage page(game, pageWith(box("a", 10, 10, 50, 30) + box("b", 10, 1500, 50, 30)));
    ASSERT_TRUE(page.waitUntilLoaded());
    page.run("document.getElementById('a').focus()");
    EXPECT_EQ(page.ask("move('down')"), "a") << "further away than one can see: the page is scrolled first";
    EXPECT_EQ(page.ask("scrollY > 200"), "true");
    // How many steps it takes depends on how much of the page the window shows.
    EXPECT_EQ(
        page.ask("(() => { let at = 'a'; for (let i = 0; i < 5 && at == 'a'; ++i) at = move('down'); return at; })()"),
        "b")
        << "in reach after a few more";
    EXPECT_EQ(page.ask("document.getElementById('b').getBoundingClientRect().bottom <= innerHeight"), "true");
}

TEST_F(SpatialNavigation, NothingBeyondButMoreToRead_ScrollsThere) {
    ControllerPage page(game, pageWith(box("a", 10, 10, 50, 30) + "<div style='height:2000px'></div>"));
    ASSERT_TRUE(page.waitUntilLoaded());
    EXPECT_EQ(page.ask("[move('down'), move('down'), scrollY > 200, move('up'), scrollY].join()"), "a,a,true,a,0");
}

}  // namespace ZEMO::Test
