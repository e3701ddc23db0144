#include "layers/deck/on_screen_keyboard_rules.h"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <string>

namespace ZEMO::UI {
namespace {

constexpr ScreenMetrics kUnscaled1080{1920, 1080, 1920, 1080};
constexpr ScreenMetrics kScaled1080{1280, 720, 1920, 1080};
constexpr ScreenMetrics kUnscaled768{1366, 768, 1366, 768};
constexpr ScreenMetrics kScaled2160{1920, 1080, 3840, 2160};
constexpr ScreenMetrics kHalfAPixel{1680, 1050, 1680, 1050};
constexpr ScreenMetrics kDeck{1280, 800, 1280, 800};
constexpr ScreenMetrics kNothing{0, 0, 0, 0};
constexpr ScreenMetrics kHuge{UINT_MAX, UINT_MAX, UINT_MAX, UINT_MAX};

struct PlaceCase {
    bool atBottom;
    ScreenMetrics metrics;
    Rect starting, open;
};
constexpr PlaceCase kPlaces[] = {
    {false, kUnscaled1080, {0, 0, 1920, 378}, {0, 0, 1920, 378}},
    {true, kUnscaled1080, {0, 702, 1920, 378}, {0, 702, 1920, 378}},
    // The size of a starting keyboard is logical, its position is not.
    {false, kScaled1080, {0, 0, 1280, 252}, {0, 0, 1920, 378}},
    {true, kScaled1080, {0, 702, 1280, 252}, {0, 702, 1920, 378}},
    {true, kScaled2160, {0, 1404, 1920, 378}, {0, 1404, 3840, 756}},
    // 35 % of 768 is 268.8: the one cuts 499.2, the other takes 268 from 768.
    {false, kUnscaled768, {0, 0, 1366, 268}, {0, 0, 1366, 268}},
    {true, kUnscaled768, {0, 499, 1366, 268}, {0, 500, 1366, 268}},
    {true, kHalfAPixel, {0, 682, 1680, 367}, {0, 683, 1680, 367}},
    {true, kDeck, {0, 520, 1280, 280}, {0, 520, 1280, 280}},
    {true, kNothing, {0, 0, 0, 0}, {0, 0, 0, 0}},
    {false, kHuge, {0, 0, INT_MAX, 1503238528}, {0, 0, INT_MAX, 1503238528}},
};

TEST(OnScreenKeyboardRules, Places_FullWidthAndThirtyFivePercentOfTheHeight) {
    ASSERT_EQ(std::size(kPlaces), 11u);
    for (const PlaceCase& c : kPlaces) {
        const std::string what = std::to_string(c.metrics.deviceHeight) + (c.atBottom ? " bottom" : " top");
        EXPECT_EQ(startingKeyboardPlace(c.atBottom, c.metrics), c.starting) << what;
        EXPECT_EQ(openKeyboardPlace(c.atBottom, c.metrics), c.open) << what;
    }
}

TEST(OnScreenKeyboardRules, EveryScreenUpTo8K_KeyboardStaysOnIt) {
    for (uint32_t height = 1; height <= 4320; ++height) {
        const ScreenMetrics metrics{7680, height, 7680, height};
        const Rect open = openKeyboardPlace(true, metrics);
        ASSERT_EQ(open.y + open.height, static_cast<int>(height));
        const Rect starting = startingKeyboardPlace(true, metrics);
        ASSERT_EQ(starting.height, open.height) << height;
        ASSERT_GE(starting.y, open.y - 1) << height;
        ASSERT_LE(starting.y, open.y) << height;
    }
}

TEST(OnScreenKeyboardRules, TouchInTheUpperPart_KeyboardGoesToTheBottom) {
    const struct {
        int height, touchY;
        bool atBottom;
    } cases[] = {{1000, 0, true},    {1000, 449, true}, {1000, 451, false}, {1000, 999, false}, {1080, 485, true},
                 {1080, 487, false}, {768, 345, true},  {768, 346, false},  {1080, -20, true},  {1080, 4000, false}};
    for (const auto& c : cases) EXPECT_EQ(keyboardBelongsAtBottom(c.height, c.touchY), c.atBottom) << c.touchY;
}

TEST(OnScreenKeyboardRules, TouchExactlyAtFortyFivePercent_KeyboardGoesToTheTop) {
    int screens = 0;
    for (int height = 20; height <= 8640; height += 20, ++screens) {
        const int line = height / 20 * 9;
        ASSERT_FALSE(keyboardBelongsAtBottom(height, line)) << height;
        ASSERT_TRUE(keyboardBelongsAtBottom(height, line - 1)) << height;
    }
    EXPECT_EQ(screens, 432);
}

TEST(OnScreenKeyboardRules, Settings_SixValuesInTheirOrder) {
    const auto settings = keyboardSettings({12, 702}, {1280, 252});
    const struct {
        const char* name;
        uint32_t value;
    } expected[] = {{"WindowLeft", 12},    {"WindowTop", 702}, {"WindowWidth", 1280},
                    {"WindowHeight", 252}, {"ShowNumPad", 0},  {"ShowClearKey", 0}};
    ASSERT_EQ(std::size(expected), settings.size());
    for (size_t i = 0; i < settings.size(); ++i) {
        EXPECT_STREQ(settings[i].name, expected[i].name);
        EXPECT_EQ(settings[i].value, expected[i].value) << settings[i].name;
    }
}

}  // namespace
}  // namespace ZEMO::UI
