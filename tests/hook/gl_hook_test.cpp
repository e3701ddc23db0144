#include <gtest/gtest.h>

#include "hook/gl_game.h"
#include "support/http_server.h"

// The reference module in an OpenGL game: pages in the frame that goes to the screen, read back before the swap. This
// program's own calls of the swap are led to the module as a game's are.
namespace ZEMO::Test {
namespace {

class GlHook : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(module) << "the reference module is not there";
        GlGame::watchFrames(module);
    }
    std::shared_ptr<ZEMO::UI::IZEMOWebView> show(const std::string& html, bool closeButton = false) {
        server.serveHtml("/", html);
        auto view = game.makeView(server.url("/"), events);
        view->setCloseButtonEnabled(closeButton);
        view->show();
        return view;
    }
    /// Frames are presented until `done` holds.
    bool playUntil(const char* what, const std::function<bool()>& done) {
        return game.waitFor(what, [&] {
            gl->present();
            return done();
        });
    }
    bool cornerIs(uint32_t colour) const { return frame.at(5, 5) == colour; }

    GameHost game{hookGame()};
    HMODULE module = useHookModule(L"hook");
    std::unique_ptr<GlGame> gl = std::make_unique<GlGame>(game.window);
    const Presented& frame = GlGame::presented();
    HttpServer server;
    NavigationRecorder events;
};

}  // namespace

TEST_F(GlHook, Page_StandsInTheGamesFrame) {
    auto view = show(quarteredPage());
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    ASSERT_TRUE(playUntil("all of it", [&] { return frame.at(300, 190) != kScene; }));
    ASSERT_EQ(frame.width, 320);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 320; ++x) {
            const int allowed = x >= 160 && y >= 100 ? 2 : 0;  // where it is blended
            ASSERT_LE(distance(frame.at(x, y), quarterAt(x, y, 320, 200)), allowed)
                << x << ", " << y << ": " << std::hex << frame.at(x, y);
        }
    }
    game.resizeClient(400, 260);
    EXPECT_TRUE(playUntil("the page at another size", [&] { return frame.at(201, 129) == 0xFF0080; }));
    view->close();
    view.reset();
    EXPECT_TRUE(playUntil("the bare scene", [&] { return cornerIs(kScene); }));
}

TEST_F(GlHook, CloseButton_DrawnWhereThePressIsTaken) {
    auto view = show(solidPage("#112233"), true);
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    ASSERT_TRUE(playUntil("the icon", [&] {
        size_t other = 0;
        for (int y = 20; y < 56; ++y)
            for (int x = 264; x < 300; ++x) other += frame.at(x, y) != 0x112233;
        return other > 50;
    }));
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 320; ++x) {
            const bool inside = x >= 264 && x < 300 && y >= 20 && y < 56;
            ASSERT_TRUE(inside || frame.at(x, y) == 0x112233u) << x << ", " << y;
        }
    }
}

TEST_F(GlHook, ListOpens_DrawnOverThePageAndGone) {
    auto view = show(
        "<!doctype "
        "html><style>html,body{margin:0;height:100%;background:#112233}select{position:absolute;left:20px;top:"
        "10px;width:120px;height:24px}option{background:#00ff00;color:#00ff00}</"
        "style><select><option>a<option>b<option>"
        "c<option>d</select>");
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    int tries = 0;
    ASSERT_TRUE(playUntil("the list", [&] {
        if (tries++ % 100 == 0) {
            PostMessageW(game.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(60, 20));
            PostMessageW(game.window, WM_LBUTTONUP, 0, MAKELPARAM(60, 20));
        }
        return frame.at(80, 75) == 0x00FF00;
    }));
    PostMessageW(game.window, WM_KEYDOWN, VK_ESCAPE, 1);
    EXPECT_TRUE(playUntil("the page without it", [&] { return frame.at(80, 75) == 0x112233; }));
}

TEST_F(GlHook, GameWindowDestroyedWhileShown_NewWindowGetsTheNextPage) {
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    gl.reset();
    game.remakeWindow(360, 220);
    gl = std::make_unique<GlGame>(game.window);
    gl->present();
    EXPECT_TRUE(cornerIs(kScene)) << "the old page is not drawn";
    view->close();
    view = show(solidPage("#332211"));
    EXPECT_TRUE(playUntil("the new page", [&] { return cornerIs(0x332211); }));
}

TEST_F(GlHook, ModuleFreedByTheGame_PageGoesOn) {
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    for (int i = 0; i < 5; ++i) FreeLibrary(module);
    EXPECT_EQ(GetModuleHandleW(L"ZEMOGraphicsHook.dll"), module) << "calls may come through its replacements";
    EXPECT_TRUE(playUntil("the page again", [&] { return cornerIs(0x112233); }));
}

}  // namespace ZEMO::Test
