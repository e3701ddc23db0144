#include "figures.h"
#include "pixel_rect.h"

#include <gtest/gtest.h>

namespace demo {
namespace {

TEST(Samples, None_PercentileIsZero) { EXPECT_EQ(Samples().percentile(0.5), 0); }

TEST(Samples, OneToHundred_MedianAndTail) {
    Samples samples;
    for (int i = 100; i >= 1; --i) samples.add(i);
    EXPECT_EQ(samples.percentile(0), 1);
    EXPECT_EQ(samples.percentile(0.5), 51);
    EXPECT_EQ(samples.percentile(0.99), 99);
    EXPECT_EQ(samples.percentile(1), 100);
}

TEST(Samples, MoreThanItKeeps_OldestAreForgotten) {
    Samples samples;
    for (int i = 0; i < 65536; ++i) samples.add(1);
    for (int i = 0; i < 65536; ++i) samples.add(2);
    EXPECT_EQ(samples.count(), 65536u);
    EXPECT_EQ(samples.percentile(0), 2);
}

TEST(Figures, Json_HoldsCountsAndShares) {
    CallbackFigures callback;
    callback.frames = 4;
    callback.changedPixels = 25;
    callback.framePixels = 100;
    GameFigures game;
    game.frames = 60;
    game.seconds = 1;
    const std::string json = figuresAsJson(callback, game);
    EXPECT_NE(json.find("\"gameFrames\": 60,"), std::string::npos) << json;
    EXPECT_NE(json.find("\"pageFrames\": 4,"), std::string::npos) << json;
    EXPECT_NE(json.find("\"changedShare\": 0.250000,"), std::string::npos) << json;
    EXPECT_NE(json.find("\"callbackMs\": {\"median\": 0.0000, \"p99\": 0.0000, \"samples\": 0},"), std::string::npos);
}

TEST(PixelRect, UniteWithEmpty_IsTheOther) {
    EXPECT_EQ(unite({}, {3, 4, 5, 6}), (PixelRect{3, 4, 5, 6}));
    EXPECT_EQ(unite({3, 4, 5, 6}, {9, 9, 0, 7}), (PixelRect{3, 4, 5, 6}));
}

TEST(PixelRect, UniteOfTwo_HoldsBoth) { EXPECT_EQ(unite({1, 8, 2, 2}, {6, 0, 1, 1}), (PixelRect{1, 0, 6, 10})); }

TEST(PixelRect, ClipOutside_IsEmpty) {
    EXPECT_TRUE(clip({20, 0, 5, 5}, 10, 10).isEmpty());
    EXPECT_TRUE(clip({-9, 0, 5, 5}, 10, 10).isEmpty());
    EXPECT_EQ(clip({-2, 3, 5, 50}, 10, 10), (PixelRect{0, 3, 3, 7}));
}

}  // namespace
}  // namespace demo
