#include "hook/hooked_game.h"

// The reference module in an OpenGL game. This program's own calls of the swap are led to the module as a game's are.
namespace ZEMO::Test {

using GlHook = HookedGame<GlGame>;

TEST_F(GlHook, ModuleFreedByTheGame_PageGoesOn) {
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    for (int i = 0; i < 5; ++i) FreeLibrary(module);
    EXPECT_EQ(GetModuleHandleW(L"ZEMOGraphicsHook.dll"), module) << "calls may come through its replacements";
    EXPECT_TRUE(playUntil("the page again", [&] { return cornerIs(0x112233); }));
}

}  // namespace ZEMO::Test
