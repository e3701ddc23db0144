#include "pad_input.h"

#include <gtest/gtest.h>

namespace demo {
namespace {

constexpr std::uint16_t kUpBit = 0x0001, kBBit = 0x2000;

TEST(DemoPadInput, NothingChanged_NothingToTell) {
    const PadState held{.isConnected = true, .buttons = kUpBit, .leftTrigger = 200, .leftX = 30000};
    EXPECT_EQ(padChanges(held, held), "");
}

TEST(DemoPadInput, PressesAndReleases_BecomeOneList) {
    EXPECT_EQ(padChanges({.buttons = kUpBit}, {.buttons = kBBit}),
              R"([{"button":1,"pressed":true},{"button":12,"pressed":false}])");
}

TEST(DemoPadInput, EveryButton_HasItsPlaceInTheStandardLayout) {
    constexpr struct {
        std::uint16_t bit;
        int number;
    } kRows[] = {{0x0001, 12}, {0x0002, 13}, {0x0004, 14}, {0x0008, 15}, {0x0010, 9}, {0x0020, 8}, {0x0040, 10},
                 {0x0080, 11}, {0x0100, 4},  {0x0200, 5},  {0x1000, 0},  {0x2000, 1}, {0x4000, 2}, {0x8000, 3}};
    static_assert(std::size(kRows) == 14);
    for (const auto& [bit, number] : kRows) {
        EXPECT_EQ(padChanges({}, {.buttons = bit}), "[" + padButton(number, true) + "]") << bit;
    }
}

TEST(DemoPadInput, Triggers_AreButtonsBehindTheirThreshold) {
    EXPECT_EQ(padChanges({}, {.leftTrigger = 30, .rightTrigger = 30}), "");
    EXPECT_EQ(padChanges({}, {.leftTrigger = 31}), R"([{"button":6,"pressed":true}])");
    EXPECT_EQ(padChanges({.rightTrigger = 255}, {}), R"([{"button":7,"pressed":false}])");
}

TEST(DemoPadInput, StickInItsDeadZone_SaysNothing) {
    EXPECT_EQ(padChanges({}, {.leftX = 7849, .leftY = -7849, .rightX = 8689, .rightY = -8689}), "");
    EXPECT_EQ(padChanges({}, {.leftX = 7900}), "") << "less than a hundredth";
}

TEST(DemoPadInput, Sticks_CountFromTheDeadZoneAndDownward) {
    EXPECT_EQ(padChanges({}, {.leftX = 32767, .leftY = 32767}), R"([{"axes":[1.00,-1.00,0.00,0.00]}])");
    EXPECT_EQ(padChanges({}, {.rightX = -32768, .rightY = -20728}), R"([{"axes":[0.00,0.00,-1.00,0.50]}])");
    EXPECT_EQ(padChanges({.leftX = 32767}, {}), R"([{"axes":[0.00,0.00,0.00,0.00]}])") << "back at rest";
}

TEST(DemoPadInput, Status_SaysWhetherThereIsAController) {
    EXPECT_EQ(padStatus(true), R"({"isConnected":true,"primaryBtn":"0","secondaryBtn":"1","secondaryBtnText":""})");
    EXPECT_NE(padStatus(false).find(R"("isConnected":false)"), std::string::npos);
}

}  // namespace
}  // namespace demo
