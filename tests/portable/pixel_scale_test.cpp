#include "render/pixel_scale.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

namespace ZEMO::UI {

TEST(PixelScale, DeviceHundredAtOnePointFive_LogicalSixtySix) { EXPECT_EQ(deviceToLogical(100, 1.5f), 66); }

TEST(PixelScale, LogicalThirtySixAtOnePointTwoFive_DeviceFortyFive) { EXPECT_EQ(logicalToDevice(36, 1.25f), 45); }

TEST(PixelScale, NegativeValues_FloorAwayFromZero) {
    EXPECT_EQ(deviceToLogical(-1, 2.0f), -1);
    EXPECT_EQ(logicalToDevice(-3, 1.5f), -5);
}

TEST(PixelScale, PairAndPoint_EachFieldByItself) {
    EXPECT_EQ(deviceToLogicalPair(100, 7, 1.5f), std::make_pair(66, 4));
    Point point{100, 7};
    deviceToLogicalPoint(point, 1.5f);
    EXPECT_EQ(point, (Point{66, 4}));
}

TEST(PixelScale, RectToDevice_FieldByField) {
    Rect out;
    logicalToDeviceRect(out, Rect{3, 5, 33, 7}, 1.5f);
    EXPECT_EQ(out, (Rect{4, 7, 49, 10}));
}

TEST(PixelScale, ValuesBeyondAnInt_TakeItsNearestEnd) {
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = std::numeric_limits<int>::min();
    EXPECT_EQ(logicalToDevice(kMost, 1.0f), kMost);
    EXPECT_EQ(logicalToDevice(kMost, 4.0f), kMost);
    EXPECT_EQ(logicalToDevice(kLeast, 1.5f), kLeast);
    EXPECT_EQ(deviceToLogical(kMost, 0.5f), kMost);
    EXPECT_EQ(deviceToLogical(kLeast, 1.0f), kLeast);
    EXPECT_EQ(truncateToInt(1e30f), kMost);
    EXPECT_EQ(truncateToInt(-std::numeric_limits<float>::infinity()), kLeast);
    EXPECT_EQ(truncateToInt(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(truncateToInt(-2.9f), -2);
    EXPECT_EQ(truncateToInt(2.9f), 2);
}

TEST(PixelScale, LargestInt_StaysTheLargest) {
    for (const float scale : {1.0f, 1.25f, 3.0f, 1e9f}) EXPECT_EQ(logicalToDevice(INT_MAX, scale), INT_MAX) << scale;
    for (const float scale : {1.0f, 0.5f, 1e-9f}) EXPECT_EQ(deviceToLogical(INT_MAX, scale), INT_MAX) << scale;
}

TEST(PixelScale, SmallestInt_StaysTheSmallest) {
    for (const float scale : {1.0f, 1.25f, 3.0f, 1e9f}) EXPECT_EQ(logicalToDevice(INT_MIN, scale), INT_MIN) << scale;
    for (const float scale : {1.0f, 0.5f, 1e-9f}) EXPECT_EQ(deviceToLogical(INT_MIN, scale), INT_MIN) << scale;
}

TEST(PixelScale, JustWithinAnInt_NotCut) {
    EXPECT_EQ(logicalToDevice(1'073'741'760, 2.0f), 2'147'483'520);
    EXPECT_EQ(logicalToDevice(1'073'741'824, 2.0f), INT_MAX);
    EXPECT_EQ(logicalToDevice(-1'073'741'824, 2.0f), INT_MIN);
    EXPECT_EQ(deviceToLogical(INT_MAX, 2.0f), 1'073'741'824);
}

TEST(PixelScale, Zero_StaysZero) {
    EXPECT_EQ(logicalToDevice(0, 1.5f), 0);
    EXPECT_EQ(deviceToLogical(0, 1.5f), 0);
}

TEST(PixelScale, RectBeyondAnInt_EachFieldByItself) {
    Rect out;
    logicalToDeviceRect(out, Rect{INT_MIN, 10, INT_MAX, 7}, 1.5f);
    EXPECT_EQ(out, (Rect{INT_MIN, 15, INT_MAX, 10}));
}

}  // namespace ZEMO::UI
