#include "layers/input_modifiers.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace ZEMO::UI {
namespace {

constexpr LPARAM kExtended = LPARAM{1} << 24;

/// The keyboard state of this thread, which GetKeyState reads; the one before is back at the end.
class KeyboardState {
public:
    KeyboardState(const std::vector<int>& down, const std::vector<int>& toggled = {}) {
        GetKeyboardState(before);
        BYTE keys[256] = {};
        for (const int key : down) keys[key] |= 0x80;
        for (const int key : toggled) keys[key] |= 0x01;
        SetKeyboardState(keys);
    }
    ~KeyboardState() { SetKeyboardState(before); }

private:
    BYTE before[256] = {};
};

TEST(InputModifiers, IsKeyDown_TellsDownFromToggled) {
    const KeyboardState state({VK_SHIFT}, {VK_CAPITAL});
    EXPECT_TRUE(isKeyDown(VK_SHIFT));
    EXPECT_FALSE(isKeyDown(VK_CAPITAL));
    EXPECT_FALSE(isKeyDown('A'));
}

TEST(InputModifiers, KeyboardState_GivesItsBits) {
    struct Row {
        std::vector<int> down, toggled;
        uint32_t bits;
    };
    const std::vector<Row> rows = {
        {{}, {}, 0},
        {{VK_SHIFT}, {}, kEventShiftDown},
        {{VK_CONTROL}, {}, kEventControlDown},
        {{VK_MENU}, {}, kEventAltDown},
        {{}, {VK_NUMLOCK}, kEventNumLockOn},
        {{}, {VK_CAPITAL}, kEventCapsLockOn},
        {{VK_NUMLOCK, VK_CAPITAL}, {}, 0},         // held is not switched on
        {{}, {VK_SHIFT, VK_CONTROL, VK_MENU}, 0},  // nor the other way round
        {{VK_SHIFT, VK_CONTROL, VK_MENU}, {VK_NUMLOCK, VK_CAPITAL}, 2 | 4 | 8 | 256 | 1},
    };
    ASSERT_EQ(rows.size(), 9u);
    for (const Row& row : rows) {
        const KeyboardState state(row.down, row.toggled);
        EXPECT_EQ(keyboardModifiers('A', 0), row.bits);
    }
}

TEST(InputModifiers, EveryVirtualKey_HasItsPlace) {
    const std::set<WPARAM> alwaysPad = {12, 96, 97, 98, 99, 100, 101, 102, 103, 104, 105, 106, 107, 109, 110, 111, 144};
    const std::set<WPARAM> padUnlessExtended = {33, 34, 35, 36, 37, 38, 39, 40, 45, 46};
    const KeyboardState state({});
    for (WPARAM key = 0; key < 256; ++key) {
        for (const bool extended : {false, true}) {
            uint32_t expected = 0;
            if (alwaysPad.count(key)) expected = 512;
            if (padUnlessExtended.count(key) && !extended) expected = 512;
            if (key == 13 && extended) expected = 512;
            if (key == 91) expected = 1024;
            if (key == 92) expected = 2048;
            EXPECT_EQ(keyboardModifiers(key, extended ? kExtended : 0), expected) << key << " " << extended;
        }
    }
}

TEST(InputModifiers, OnlyBit24_CountsAsExtended) {
    const KeyboardState state({});
    EXPECT_EQ(keyboardModifiers(VK_RETURN, static_cast<LPARAM>(0xFEFFFFFF)), 0u);
    EXPECT_EQ(keyboardModifiers(VK_LEFT, static_cast<LPARAM>(0xFEFFFFFF)), kEventIsKeyPad);
    EXPECT_EQ(keyboardModifiers(VK_RETURN, 0xC11C0001), kEventIsKeyPad);
    EXPECT_EQ(keyboardModifiers(VK_LEFT, 0xC14B0001), 0u);
}

TEST(InputModifiers, SidedKeys_TellLeftFromRightAndLeftWins) {
    struct Sided {
        int key, left, right;
        uint32_t down;
    };
    for (const Sided& s : {Sided{16, 160, 161, kEventShiftDown}, Sided{17, 162, 163, kEventControlDown},
                           Sided{18, 164, 165, kEventAltDown}}) {
        SCOPED_TRACE(s.key);
        const WPARAM key = static_cast<WPARAM>(s.key);
        {
            const KeyboardState state({s.key, s.left});
            EXPECT_EQ(keyboardModifiers(key, 0), s.down | kEventIsLeft);
        }
        {
            const KeyboardState state({s.key, s.right});
            EXPECT_EQ(keyboardModifiers(key, kExtended), s.down | kEventIsRight);
        }
        {
            const KeyboardState state({s.key, s.left, s.right});
            EXPECT_EQ(keyboardModifiers(key, 0), s.down | kEventIsLeft);
        }
        {
            const KeyboardState state({});  // the key's own release
            EXPECT_EQ(keyboardModifiers(key, 0), 0u);
        }
    }
}

TEST(InputModifiers, MouseKeys_GiveTheirBits) {
    struct Row {
        WPARAM keys;
        uint32_t bits;
    };
    const std::vector<Row> rows = {
        {0, 0},
        {MK_LBUTTON, kEventLeftMouseButton},
        {MK_RBUTTON, kEventRightMouseButton},
        {MK_MBUTTON, kEventMiddleMouseButton},
        {MK_SHIFT, kEventShiftDown},
        {MK_CONTROL, kEventControlDown},
        {MK_XBUTTON1 | MK_XBUTTON2, 0},
        {MK_LBUTTON | MK_RBUTTON | MK_MBUTTON | MK_SHIFT | MK_CONTROL, 16 | 64 | 32 | 2 | 4},
    };
    ASSERT_EQ(rows.size(), 8u);
    const KeyboardState state({});
    for (const Row& row : rows) EXPECT_EQ(mouseModifiers(row.keys), row.bits) << row.keys;
}

TEST(InputModifiers, MouseModifiers_TakeAltAndTheLocksFromTheKeyboardButNotShiftAndCtrl) {
    const KeyboardState state({VK_MENU, VK_SHIFT, VK_CONTROL}, {VK_NUMLOCK, VK_CAPITAL});
    EXPECT_EQ(mouseModifiers(MK_LBUTTON), kEventLeftMouseButton | kEventAltDown | kEventNumLockOn | kEventCapsLockOn);
}

}  // namespace
}  // namespace ZEMO::UI
