#include "controller/remote_input.h"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <stdexcept>

namespace ZEMO::UI {
namespace {

constexpr uint32_t kScanCode = 0x1E;

std::optional<RemoteMessage> made(const char* type, const char* action, const std::string& data = "", int x = 0,
                                  int y = 0) {
    return remoteInputMessage(type, action, data, x, y, [](uint32_t) { return kScanCode; });
}

struct Row {
    const char *type, *action, *data;
    int x, y;
    uint32_t message;  ///< 0: none
    uint64_t wParam;
    int64_t lParam;
};

constexpr Row kRows[] = {
    // Moves mask both halves.
    {"Click", "Move", "", 3, 5, 1226, 1, 0x50003},
    {"Touch", "Move", "ignored", 3, 5, 1226, 1, 0x50003},
    {"Click", "Move", "", -1, 0, 1226, 1, 0xFFFF},
    {"Click", "Move", "", 0, -1, 1226, 1, 0xFFFF0000},
    {"Click", "Move", "", 0x12345, 0x1FFFF, 1226, 1, 0xFFFF2345},
    // Presses and releases keep the sign of y.
    {"Click", "Down", "", 3, 5, 1228, 1, 0x50003},
    {"Touch", "Down", "", 3, 5, 1228, 1, 0x50003},
    {"Click", "Down", "", -2, -1, 1228, 1, -0x10000 + 0xFFFE},
    {"Click", "Down", "", 0, 0x12345, 1228, 1, 0x123450000},
    {"Click", "Down", "", INT_MIN, INT_MIN, 1228, 1, INT_MIN * 65536LL},
    {"Click", "Up", "", 3, 5, 514, 0, 0x50003},
    {"Touch", "Up", "", 3, 5, 514, 0, 0x50003},
    {"Click", "Up", "", 0, -1, 514, 0, -0x10000},
    {"Click", "Press", "", 3, 5, 0, 0, 0},
    {"Click", "down", "", 3, 5, 0, 0, 0},
    {"Click", "", "", 3, 5, 0, 0, 0},
    {"Wheel", "Up", "", 3, 5, 1227, 120 << 16, 0x50003},
    {"Wheel", "Down", "", 3, 5, 1227, 0xFFFFFFFFFF880000, 0x50003},
    {"Wheel", "Up", "", 0, -1, 1227, 120 << 16, 0xFFFF0000},
    {"Wheel", "Move", "", 3, 5, 0, 0, 0},
    {"Key", "Down", "65", 9, 9, 256, 65, 0x1E0001},
    {"Key", "Up", "65", 9, 9, 257, 65, 0xC01E0001},
    {"Key", "Down", "0x41", 0, 0, 256, 65, 0x1E0001},
    {"Key", "Down", "0X1b", 0, 0, 256, 27, 0x1E0001},
    {"Key", "Down", "13abc", 0, 0, 256, 13, 0x1E0001},
    {"Key", "Down", "0x1Bg", 0, 0, 256, 27, 0x1E0001},
    {"Key", "Down", " \t\n\v\f\r65", 0, 0, 256, 65, 0x1E0001},
    {"Key", "Down", "+65", 0, 0, 256, 65, 0x1E0001},
    {"Key", "Down", "065", 0, 0, 256, 65, 0x1E0001},
    {"Key", "Down", "-5", 0, 0, 256, 0xFFFFFFFFFFFFFFFB, 0x1E0001},
    {"Key", "Down", "2147483647", 0, 0, 256, 0x7FFFFFFF, 0x1E0001},
    {"Key", "Down", "-2147483648", 0, 0, 256, 0xFFFFFFFF80000000, 0x1E0001},
    {"Key", "Down", "0x80000000", 0, 0, 256, 0xFFFFFFFF80000000, 0x1E0001},
    {"Key", "Down", "0xFFFFFFFF", 0, 0, 256, 0xFFFFFFFFFFFFFFFF, 0x1E0001},
    {"Key", "Down", "0x", 0, 0, 0, 0, 0},
    {"Key", "Down", "0X", 0, 0, 0, 0, 0},
    {"Key", "Down", "0", 0, 0, 0, 0, 0},
    {"Key", "Down", "0x0", 0, 0, 0, 0, 0},
    {"Key", "Down", "-0", 0, 0, 0, 0, 0},
    {"Key", "Down", " 0x41", 0, 0, 0, 0, 0},  // no prefix at the beginning: a decimal 0
    {"Key", "Down", "0x0x41", 0, 0, 0, 0, 0},
    {"Key", "Move", "65", 0, 0, 0, 0, 0},
    {"Key", "down", "65", 0, 0, 0, 0, 0},
    {"Message", "", "text", 0, 0, 0, 0, 0},  // carried by other means
    {"click", "Down", "", 3, 5, 0, 0, 0},
    {"touch", "Down", "", 3, 5, 0, 0, 0},
    {"", "", "", 0, 0, 0, 0, 0},
    {"Click ", "Down", "", 3, 5, 0, 0, 0},
};

struct Fault {
    const char *data, *text;
    bool outOfRange;
};

constexpr Fault kFaults[] = {
    {"abc", "invalid stoi argument", false},
    {"", "invalid stoi argument", false},
    {" ", "invalid stoi argument", false},
    {"-", "invalid stoi argument", false},
    {"+", "invalid stoi argument", false},
    {"+-5", "invalid stoi argument", false},
    {"x41", "invalid stoi argument", false},
    {"0xg", "invalid stoul argument", false},
    {"0X 41", "invalid stoul argument", false},
    {"0x-1", "invalid stoul argument", false},
    {"2147483648", "stoi argument out of range", true},
    {"-2147483649", "stoi argument out of range", true},
    {"99999999999999999999999", "stoi argument out of range", true},
    {"0x100000000", "stoul argument out of range", true},
    {"0xfffffffffffffffffffffff", "stoul argument out of range", true},
};

template <typename Exception>
std::string textOf(const char* action, const char* data) {
    try {
        made("Key", action, data);
    } catch (const Exception& fault) {
        return fault.what();
    } catch (...) {
        return "another exception";
    }
    return "no exception";
}

}  // namespace

TEST(RemoteInput, Table_EachRowGivesItsMessage) {
    EXPECT_EQ(std::size(kRows), 48u);
    for (const Row& row : kRows) {
        const std::string name = std::string(row.type) + " " + row.action + " '" + row.data + "'";
        const auto message = made(row.type, row.action, row.data, row.x, row.y);
        ASSERT_EQ(message.has_value(), row.message != 0) << name;
        if (!message) continue;
        EXPECT_EQ(message->message, row.message) << name;
        EXPECT_EQ(message->wParam, row.wParam) << name;
        EXPECT_EQ(message->lParam, row.lParam) << name;
    }
}

TEST(RemoteInput, Table_KeyThatIsNoNumberThrowsWhateverTheAction) {
    for (const char* action : {"Down", "Up", "Move", ""}) {
        for (const Fault& fault : kFaults) {
            const std::string text = fault.outOfRange ? textOf<std::out_of_range>(action, fault.data)
                                                      : textOf<std::invalid_argument>(action, fault.data);
            EXPECT_EQ(text, fault.text) << "'" << fault.data << "' " << action;
        }
    }
}

TEST(RemoteInput, DataOfOtherEvents_IsNotRead) {
    EXPECT_TRUE(made("Click", "Down", "abc"));
    EXPECT_TRUE(made("Wheel", "Up", "99999999999999999999"));
    EXPECT_FALSE(made("Pad", "Down", "abc"));
}

TEST(RemoteInput, NumberBeforeANul_EndsThere) {
    EXPECT_EQ(made("Key", "Down",
                   std::string("65\0"
                               "9",
                               4))
                  ->wParam,
              65u);
}

TEST(RemoteInput, Coordinates_ComeBackAsSignedSixteenBits) {
    for (const int value : {-32768, -1, 0, 1, 32767}) {
        for (const char* action : {"Move", "Down", "Up"}) {
            const auto bits = static_cast<uint64_t>(made("Click", action, "", value, -value - 1)->lParam);
            EXPECT_EQ(static_cast<int16_t>(bits & 0xFFFF), value) << action;
            EXPECT_EQ(static_cast<int16_t>(bits >> 16 & 0xFFFF), -value - 1) << action;
        }
    }
}

TEST(RemoteInput, ScanCode_AskedForWithTheKeysUnsignedValue) {
    uint32_t asked = 0;
    remoteInputMessage("Key", "Down", "-5", 0, 0, [&](uint32_t key) { return asked = key, kScanCode; });
    EXPECT_EQ(asked, 0xFFFFFFFBu);
}

TEST(RemoteInput, ScanCodeUnknown_MessageWithoutOne) {
    const auto message = remoteInputMessage("Key", "Down", "7", 0, 0, [](uint32_t) { return 0u; });
    EXPECT_EQ(*message, (RemoteMessage{256, 7, 1}));
}

}  // namespace ZEMO::UI
