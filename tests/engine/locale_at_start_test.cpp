#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include "engine/game_host.h"

namespace ZEMO::Test {

TEST(LocaleAtStart, GamesLanguages_StayAndBecomeUtf8InItsOwnRuntime) {
    ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    ASSERT_NE(std::setlocale(LC_TIME, "Korean_Korea.949"), nullptr);
    const GameHost game;
    const std::string time = std::setlocale(LC_TIME, nullptr);
    EXPECT_TRUE(time.starts_with("Korean_Korea.")) << time;
    EXPECT_EQ(time.find("949"), std::string::npos) << time;
    wchar_t wide[4] = {};
    EXPECT_EQ(std::mbstowcs(wide, "\xEA\xB0\x80", 3), 1u);
    EXPECT_EQ(wide[0], 0xAC00);
}

}  // namespace ZEMO::Test
