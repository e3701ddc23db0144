// What the engine is told of input and a page can't show: left, right and pad of a key, AltGr, the last touch. The
// engine is played by two structures that only record, and a layout that the system here can't load by a table.
#include "engine/client/input/page_input.h"

#include <gtest/gtest.h>

#include <vector>

#include "layers/input_modifiers.h"
#include "support/import_replaced.h"
#include "support/wrapped_browser.h"

namespace ZEMO::UI {
namespace {

using ZEMO::Test::ImportReplaced;

std::vector<cef_key_event_t> keys;
std::vector<cef_touch_event_t> touches;
int clicks = 0;

template <class C>
void makeCounted(C& object) {
    object.base.size = sizeof(C);
    object.base.add_ref = [](cef_base_ref_counted_t*) {};
    object.base.release = [](cef_base_ref_counted_t*) { return 0; };
    object.base.has_one_ref = [](cef_base_ref_counted_t*) { return 0; };
    object.base.has_at_least_one_ref = [](cef_base_ref_counted_t*) { return 1; };
}

cef_browser_host_t host;
cef_browser_t browserOfHost;

CefRefPtr<CefBrowser> recordingBrowser() {
    makeCounted(host);
    makeCounted(browserOfHost);
    host.send_key_event = [](cef_browser_host_t*, auto* event) { keys.push_back(*event); };
    host.send_touch_event = [](cef_browser_host_t*, auto* event) { touches.push_back(*event); };
    host.send_mouse_click_event = [](cef_browser_host_t*, auto*, cef_mouse_button_type_t, int, int) { ++clicks; };
    browserOfHost.get_host = [](cef_browser_t*) { return &host; };
    return ZEMO::Test::wrapBrowser(&browserOfHost);
}

/// The German layout's answers, as far as they are asked for; what it lacks is -1.
SHORT WINAPI germanScan(WCHAR character, HKL) {
    switch (character) {
        case L'@':
            return 0x600 | 'Q';
        case L'{':
            return 0x600 | '7';
        case 0x20AC:
            return 0x600 | 'E';
        case 0xB3:
            return 0x600 | '3';
        case L'q':
            return 'Q';
        case L'!':
            return 0x100 | '1';
        default:
            return -1;
    }
}

class PageInputTest : public ::testing::Test {
protected:
    PageInputTest() {
        GetKeyboardState(before);
        keys.clear();
        touches.clear();
        clicks = 0;
    }
    ~PageInputTest() override { SetKeyboardState(before); }
    uint32_t sent(UINT message, WPARAM key, LPARAM flags, std::initializer_list<int> down = {}) {
        BYTE state[256] = {};
        for (const int each : down) state[each] = 0x80;
        SetKeyboardState(state);
        input.sendKey(browser, message, key, flags);
        return keys.back().modifiers;
    }

    BYTE before[256] = {};
    int cancelled = 0;
    CefRefPtr<CefBrowser> browser = recordingBrowser();
    PageInput input{nullptr, 1.5f, [this](const CefRefPtr<CefBrowser>&) { ++cancelled; }};
};

constexpr LPARAM kExtended = LPARAM{1} << 24;

}  // namespace

TEST_F(PageInputTest, EnterOfThePad_IsAPadKeyAndTheMainOneIsNot) {
    EXPECT_EQ(sent(WM_KEYDOWN, VK_RETURN, kExtended), kEventIsKeyPad);
    EXPECT_EQ(sent(WM_KEYDOWN, VK_RETURN, 0), 0u);
}

TEST_F(PageInputTest, ArrowOfThePad_IsAPadKeyAndTheMainOneIsNot) {
    for (const WPARAM key : {VK_LEFT, VK_UP, VK_RIGHT, VK_DOWN}) {
        EXPECT_EQ(sent(WM_KEYDOWN, key, 0), kEventIsKeyPad) << key;
        EXPECT_EQ(sent(WM_KEYDOWN, key, kExtended), 0u) << key;
    }
}

TEST_F(PageInputTest, LeftAndRightKeys_AreTold) {
    EXPECT_EQ(sent(WM_KEYDOWN, VK_SHIFT, 0, {VK_SHIFT, VK_LSHIFT}), kEventShiftDown | kEventIsLeft);
    EXPECT_EQ(sent(WM_KEYDOWN, VK_SHIFT, 0, {VK_SHIFT, VK_RSHIFT}), kEventShiftDown | kEventIsRight);
    EXPECT_EQ(sent(WM_SYSKEYDOWN, VK_MENU, 0, {VK_MENU, VK_RMENU}), kEventAltDown | kEventIsRight);
    EXPECT_EQ(sent(WM_KEYUP, VK_RWIN, kExtended), kEventIsRight);
}

TEST_F(PageInputTest, AltGrCharacter_ClearsCtrlAndAltForCharactersOnly) {
    const ImportReplaced layout("VkKeyScanExW", &germanScan);
    const auto altGr = {VK_CONTROL, VK_LCONTROL, VK_MENU, VK_RMENU};
    constexpr uint32_t kBoth = kEventControlDown | kEventAltDown;
    for (const WCHAR character : {L'@', L'{', L'\u20AC', L'\u00B3'}) {
        EXPECT_EQ(sent(WM_CHAR, character, 0, altGr), kEventAltGrDown) << static_cast<int>(character);
        EXPECT_EQ(sent(WM_SYSCHAR, character, 0, altGr), kEventAltGrDown) << static_cast<int>(character);
        EXPECT_EQ(sent(WM_CHAR, character, 0, {VK_CONTROL, VK_MENU, VK_LMENU}), kBoth) << "not the right Alt";
    }
    EXPECT_EQ(sent(WM_CHAR, '@', 0, {VK_CONTROL, VK_MENU, VK_RMENU, VK_SHIFT}), kEventAltGrDown | kEventShiftDown);
    EXPECT_EQ(sent(WM_CHAR, '@', 0, {VK_RMENU}), kEventAltGrDown);
    EXPECT_EQ(sent(WM_CHAR, 'q', 0, altGr), kBoth) << "made without AltGr";
    // Made with Shift. Its number is Page Up's as well, and a place is looked up for characters too.
    EXPECT_EQ(sent(WM_CHAR, '!', 0, altGr), kBoth | kEventIsKeyPad);
    EXPECT_EQ(sent(WM_CHAR, 0xD55C, 0, altGr), kEventAltGrDown) << "no key of the layout has it: -1 has both bits";
    // No characters: '@' is no virtual key, but its number is asked about only for characters.
    EXPECT_EQ(sent(WM_KEYDOWN, '@', 0, altGr), kBoth);
    EXPECT_EQ(sent(WM_KEYUP, '@', 0, altGr), kBoth);
    EXPECT_EQ(sent(WM_SYSKEYDOWN, '@', 0, altGr), kBoth);
}

TEST_F(PageInputTest, EachMessage_GivesItsTypeAndTheWholeLParam) {
    struct Row {
        UINT message;
        cef_key_event_type_t type;
        int system;
    };
    const Row rows[] = {
        {WM_KEYDOWN, KEYEVENT_RAWKEYDOWN, 0},    {WM_KEYUP, KEYEVENT_KEYUP, 0},    {WM_CHAR, KEYEVENT_CHAR, 0},
        {WM_SYSKEYDOWN, KEYEVENT_RAWKEYDOWN, 1}, {WM_SYSKEYUP, KEYEVENT_KEYUP, 1}, {WM_SYSCHAR, KEYEVENT_CHAR, 1},
    };
    for (const Row& row : rows) {
        sent(row.message, 'A', 0x401E0001);
        EXPECT_EQ(keys.back().type, row.type);
        EXPECT_EQ(keys.back().is_system_key, row.system);
        EXPECT_EQ(keys.back().windows_key_code, 'A');
        EXPECT_EQ(keys.back().native_key_code, 0x401E0001);
        EXPECT_EQ(keys.back().character, 0);
        EXPECT_EQ(keys.back().unmodified_character, 0);
    }
}

TEST_F(PageInputTest, TouchThenClick_LastTouchIsClearedByPressAndByRelease) {
    for (const bool up : {false, true}) {
        input.sendTouch(browser, 7, 100, 50, WM_POINTERDOWN);
        EXPECT_EQ(input.getLastTouchEvent().id, 7);
        EXPECT_EQ(input.getLastTouchEvent().x, 66.0f);
        input.sendMouseMove(nullptr, 1, 1, 0);
        EXPECT_EQ(input.getLastTouchEvent().id, 7) << "a move leaves it";
        input.sendMouseClick(browser, 0, up, 1, 1);
        EXPECT_EQ(input.getLastTouchEvent().id, 0);
        EXPECT_EQ(input.getLastTouchEvent().x, 0.0f);
    }
    EXPECT_EQ(clicks, 2);
}

TEST_F(PageInputTest, Press_EndsACompositionAndAReleaseDoesNot) {
    input.sendMouseClick(browser, 0, true, 1, 1);
    input.sendTouch(browser, 7, 1, 1, WM_POINTERUPDATE);
    input.sendTouch(browser, 7, 1, 1, WM_POINTERUP);
    EXPECT_EQ(cancelled, 0);
    input.sendMouseClick(browser, 2, false, 1, 1);
    input.sendTouch(browser, 7, 1, 1, WM_POINTERDOWN);
    EXPECT_EQ(cancelled, 2);
}

TEST_F(PageInputTest, Touch_HasFixedShapeInLogicalPixels) {
    input.sendTouch(browser, 9, -1, 100, WM_POINTERDOWN);
    const cef_touch_event_t touch = touches.back();
    EXPECT_EQ(touch.id, 9);
    EXPECT_EQ(touch.x, -1.0f) << "rounded down";
    EXPECT_EQ(touch.y, 66.0f);
    EXPECT_EQ(touch.radius_x, 3.0f);
    EXPECT_EQ(touch.radius_y, 3.0f);
    EXPECT_EQ(touch.rotation_angle, 0.0f);
    EXPECT_EQ(touch.pressure, 1.0f);
    EXPECT_EQ(touch.modifiers, 0u);
    EXPECT_EQ(touch.pointer_type, CEF_POINTER_TYPE_TOUCH);
    EXPECT_EQ(touch.type, CEF_TET_PRESSED);
}

TEST_F(PageInputTest, NoBrowser_NothingIsSent) {
    input.sendMouseClick(nullptr, 0, false, 1, 1);
    input.sendMouseMove(nullptr, 1, 1, 0);
    input.sendMouseWheel(nullptr, MAKEWPARAM(0, 120), 1, 1, false, true);
    input.sendKey(nullptr, WM_KEYDOWN, 'A', 0);
    EXPECT_EQ(cancelled, 0);
    EXPECT_EQ(clicks, 0);
}

}  // namespace ZEMO::UI
