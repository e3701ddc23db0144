#include "render/pixel_scale.h"

#include <gtest/gtest.h>

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

}  // namespace ZEMO::UI
