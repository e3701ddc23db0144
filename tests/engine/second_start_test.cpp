#include <gtest/gtest.h>

#include "engine/helper_game.h"

// A game that starts the library twice.
namespace ZEMO::Test {
namespace {

size_t countOf(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

}  // namespace

TEST(SecondStart, EngineGoesOnShowsAPageAndIsStoppedInOrder) {
    HelperGame game(programDirectory() / L"ZEMOUIFramework.dll", L"return-started-twice", programDirectory());
    ASSERT_TRUE(game.waitForLine("ready")) << "a page is shown\n" << game.output();
    ASSERT_TRUE(game.waitForEnd(std::chrono::seconds(20))) << game.output();
    const std::string output = game.output();
    EXPECT_EQ(game.exitCode(), 7u) << output;
    EXPECT_EQ(countOf(output, "cef initializing"), 1u) << output;
    EXPECT_EQ(countOf(output, "cef module is ready"), 1u) << output;
    EXPECT_EQ(countOf(output, "cef is shutdown"), 1u) << output;
    EXPECT_FALSE(std::filesystem::exists(programDirectory() / L"cache" / L"cef.lock"));
}

}  // namespace ZEMO::Test
