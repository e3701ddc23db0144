#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "client/display_hands.h"
#include "client/input_case.h"

// The third key level of a layout that has one: AltGr, which is Ctrl and Alt to a program.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;

/// A German keyboard on the display, from before the first window of this process on. The display is its test's own.
class GermanKeyboard : public ::testing::TestWithParam<Style> {
protected:
    void SetUp() override {
        const std::filesystem::path set = "german_keyboard_is_set";
        std::filesystem::remove(set);
        ASSERT_TRUE(runOnDisplay("sh -c \"setxkbmap de && touch german_keyboard_is_set\""));
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (!std::filesystem::exists(set)) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "the display takes no other keyboard";
            Sleep(10);
        }
        ASSERT_EQ(VkKeyScanW('@'), 0x600 | 'Q') << "Ctrl and Alt, which are AltGr, and Q";
    }
};

}  // namespace

TEST_P(GermanKeyboard, AltGrForeground_MakesCharactersAndNoCommands) {
    InputPage page(GetParam(), 1.0f);
    ASSERT_TRUE(page.open());
    const std::vector<int> altGr = {VK_CONTROL, VK_MENU, VK_RMENU}, leftAlt = {VK_CONTROL, VK_MENU, VK_LMENU};
    const std::vector<InputCase> cases = {
        {.name = "@", .messages = {{WM_CHAR, '@', keyPress(0x10)}}, .page = {"keypress 64 @ G"}, .down = altGr},
        {.name = "[", .messages = {{WM_CHAR, '[', keyPress(0x09)}}, .page = {"keypress 91 [ G"}, .down = altGr},
        {.name = "{", .messages = {{WM_CHAR, '{', keyPress(0x08)}}, .page = {"keypress 123 { G"}, .down = altGr},
        // A character of the layout's first level stays a command, and so does all that the left Alt makes.
        {.name = "q", .messages = {{WM_CHAR, 'q', keyPress(0x10)}}, .page = {}, .down = altGr},
        {.name = "@ by the left Alt", .messages = {{WM_CHAR, '@', keyPress(0x10)}}, .page = {}, .down = leftAlt},
        // For characters only.
        {.name = "press of Q",
         .messages = {{WM_KEYDOWN, 'Q', keyPress(0x10)}},
         .page = {"keydown 81 q CA"},
         .down = altGr},
    };
    runCases(page, cases);
}

INSTANTIATE_TEST_SUITE_P(Styles, GermanKeyboard, ::testing::Values(Style::kLayer, Style::kOwnWindow),
                         [](const auto& style) { return style.param == Style::kLayer ? "Layer" : "OwnWindow"; });

}  // namespace ZEMO::Test
