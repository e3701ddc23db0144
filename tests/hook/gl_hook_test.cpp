#include "hook/hooked_game.h"

// The reference module in an OpenGL game. This program's own calls of the swap are led to the module as a game's are.
namespace ZEMO::Test {

class GlHook : public HookedGame<GlGame> {
protected:
    /// A frame was on its way while the page went: it comes now, and the game's frame stays without a page.
    void expectNothingOf(HeldFrame& late) {
        late.letGo();
        ASSERT_TRUE(game.waitFor("the late frame", [&] { return late.isOver(); }));
        for (int i = 0; i < 50; ++i) {
            scene->present();
            ASSERT_TRUE(cornerIs(kScene)) << "present " << i << ": " << std::hex << frame.at(5, 5);
            game.pass(5ms);
        }
    }
};

TEST_F(GlHook, ModuleFreedByTheGame_PageGoesOn) {
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    for (int i = 0; i < 5; ++i) FreeLibrary(module);
    EXPECT_EQ(GetModuleHandleW(L"ZEMOGraphicsHook.dll"), module) << "calls may come through its replacements";
    EXPECT_TRUE(playUntil("the page again", [&] { return cornerIs(0x112233); }));
}

TEST_F(GlHook, ViewClosedWhileAFrameIsOnItsWay_GamesFrameStaysBare) {
    HandedFrames::watch(module);
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    HeldFrame late;
    ASSERT_TRUE(playUntil("a frame on its way", [&] { return late.isHeld(); }));
    view->close();
    ASSERT_NO_FATAL_FAILURE(expectNothingOf(late));
    view = show(solidPage("#332211"));
    EXPECT_TRUE(playUntil("the next page", [&] { return cornerIs(0x332211); }));
}

TEST_F(GlHook, GameWindowDestroyedWhileAFrameIsOnItsWay_NewWindowStaysBare) {
    HandedFrames::watch(module);
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    HeldFrame late;
    ASSERT_TRUE(playUntil("a frame on its way", [&] { return late.isHeld(); }));
    scene->end();
    game.remakeWindow(360, 220);
    scene = std::make_unique<GlGame>(game.window);
    ASSERT_NO_FATAL_FAILURE(expectNothingOf(late));
    view->close();
    view = show(solidPage("#332211"));
    EXPECT_TRUE(playUntil("the new page", [&] { return cornerIs(0x332211); }));
}

}  // namespace ZEMO::Test
