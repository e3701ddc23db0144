#include <gtest/gtest.h>

#include <format>

#include "client/input_case.h"

// Keys and characters of a window in a real page, in both styles and at two scales.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;

struct Key {
    WORD virtualKey;
    const char* name;  ///< as a page calls it
    bool extended = false;
};

std::vector<Key> namedKeys() {
    std::vector<Key> keys = {
        {VK_BACK, "Backspace"},
        {VK_TAB, "Tab"},
        {VK_CLEAR, "Clear"},
        {VK_RETURN, "Enter"},
        {VK_RETURN, "Enter", true},
        {VK_PAUSE, "Pause"},
        {VK_CAPITAL, "CapsLock"},
        {VK_ESCAPE, "Escape"},
        {VK_SPACE, "Space"},
        {VK_LWIN, "Meta", true},
        {VK_RWIN, "Meta", true},
        {VK_NUMLOCK, "NumLock", true},
        {VK_SCROLL, "ScrollLock"},
        {VK_MULTIPLY, "*"},
        {VK_ADD, "+"},
        {VK_SUBTRACT, "-"},
        {VK_DIVIDE, "/", true},
        {VK_OEM_1, ";"},
        {VK_OEM_PLUS, "="},
        {VK_OEM_COMMA, ","},
        {VK_OEM_MINUS, "-"},
        {VK_OEM_PERIOD, "."},
        {VK_OEM_2, "/"},
        {VK_OEM_3, "`"},
        {VK_OEM_4, "["},
        {VK_OEM_5, "\\"},
        {VK_OEM_6, "]"},
        {VK_OEM_7, "'"},
    };
    // The keys of the block above the arrows are extended; their twins on the numeric pad are not.
    for (const bool extended : {true, false}) {
        for (const Key& key :
             {Key{VK_PRIOR, "PageUp"}, Key{VK_NEXT, "PageDown"}, Key{VK_END, "End"}, Key{VK_HOME, "Home"},
              Key{VK_LEFT, "ArrowLeft"}, Key{VK_UP, "ArrowUp"}, Key{VK_RIGHT, "ArrowRight"}, Key{VK_DOWN, "ArrowDown"},
              Key{VK_INSERT, "Insert"}, Key{VK_DELETE, "Delete"}}) {
            keys.push_back({key.virtualKey, key.name, extended});
        }
    }
    return keys;
}

std::string keyLine(const char* kind, int code, const std::string& name, const std::string& modifiers = "") {
    return std::format("{} {} {}{}", kind, code, name, modifiers.empty() ? "" : " " + modifiers);
}

/// Where the key is on a keyboard, in the high word of lParam. The system here knows no place for the pad's digits.
WORD scanOf(WORD key) {
    constexpr WORD kPadDigits[] = {0x52, 0x4F, 0x50, 0x51, 0x4B, 0x4C, 0x4D, 0x47, 0x48, 0x49};
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD9) return kPadDigits[key - VK_NUMPAD0];
    return static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
}

/// A press and a release, with what is held meanwhile.
InputCase pressAndRelease(WORD key, const std::string& name, bool extended = false, std::vector<int> down = {},
                          std::vector<int> toggled = {}, const std::string& modifiers = "") {
    const WORD scan = scanOf(key);
    return {.name = std::format("key {} {}{}", key, extended ? "extended " : "", modifiers),
            .messages = {{WM_KEYDOWN, key, keyPress(scan, extended)}, {WM_KEYUP, key, keyRelease(scan, extended)}},
            .page = {keyLine("keydown", key, name, modifiers), keyLine("keyup", key, name, modifiers)},
            .down = std::move(down),
            .toggled = std::move(toggled)};
}

std::vector<InputCase> keyCases() {
    std::vector<InputCase> cases;
    for (WORD key = 'A'; key <= 'Z'; ++key) cases.push_back(pressAndRelease(key, std::string(1, char(key | 0x20))));
    for (WORD key = '0'; key <= '9'; ++key) cases.push_back(pressAndRelease(key, std::string(1, char(key))));
    for (WORD i = 0; i < 12; ++i) cases.push_back(pressAndRelease(VK_F1 + i, std::format("F{}", i + 1)));
    for (const Key& key : namedKeys()) cases.push_back(pressAndRelease(key.virtualKey, key.name, key.extended));
    // The engine names the pad's digits by their place alone, which the whole lParam hides from it.
    for (WORD key = VK_NUMPAD0; key <= VK_NUMPAD9; ++key) {
        cases.push_back(pressAndRelease(key, "Unidentified", false, {}, {VK_NUMLOCK}, "N"));
    }
    cases.push_back({.name = "key of the input method",
                     .messages = {{WM_KEYDOWN, VK_PROCESSKEY, keyPress(0x1E)}},
                     .page = {keyLine("keydown", VK_PROCESSKEY, "Process")}});
    // The engine's own question for a menu, which the page hears and nobody shows.
    cases.push_back(pressAndRelease(VK_APPS, "ContextMenu", true));
    cases.back().page.push_back("contextmenu by key");
    struct Held {
        WORD key;
        int side;
        const char *name, *modifiers;
    };
    for (const Held& h : {Held{VK_SHIFT, VK_LSHIFT, "Shift", "S"}, Held{VK_SHIFT, VK_RSHIFT, "Shift", "S"},
                          Held{VK_CONTROL, VK_LCONTROL, "Control", "C"}, Held{VK_CONTROL, VK_RCONTROL, "Control", "C"},
                          Held{VK_MENU, VK_LMENU, "Alt", "A"}, Held{VK_MENU, VK_RMENU, "Alt", "A"}}) {
        const bool extended = h.side == VK_RCONTROL || h.side == VK_RMENU;
        cases.push_back(pressAndRelease(h.key, h.name, extended, {h.key, h.side}, {}, h.modifiers));
        cases.push_back(pressAndRelease('A', h.key == VK_SHIFT ? "A" : "a", false, {h.key, h.side}, {}, h.modifiers));
    }
    cases.push_back(pressAndRelease('A', "A", false, {}, {VK_CAPITAL}, "K"));
    cases.push_back(pressAndRelease('A', "a", false, {}, {VK_NUMLOCK}, "N"));
    cases.push_back(pressAndRelease('A', "a", false, {VK_CAPITAL, VK_NUMLOCK}, {VK_SHIFT}));  // held is not toggled
    cases.push_back(pressAndRelease('A', "A", false, {VK_SHIFT, VK_CONTROL, VK_MENU}, {VK_NUMLOCK}, "SCAN"));
    return cases;
}

InputCase character(const std::string& name, WPARAM unit, const Lines& page, std::vector<int> down = {}) {
    return {.name = "character " + name,
            .messages = {{WM_CHAR, unit, keyPress(0x1E)}},
            .page = page,
            .down = std::move(down)};
}

std::vector<InputCase> characterCases() {
    std::vector<InputCase> cases;
    for (int c = ' '; c <= '~'; ++c) {
        const std::string name = c == ' ' ? "Space" : std::string(1, static_cast<char>(c));
        cases.push_back(character(name, static_cast<WPARAM>(c), {keyLine("keypress", c, name)}));
    }
    cases.push_back(character("Korean", 0xD55C, {"keypress 54620 한"}));
    cases.push_back(character("umlaut", 0xE4, {"keypress 228 ä"}));
    cases.push_back(character("return", 13, {"keypress 13 Enter"}));
    cases.push_back(character("a with Shift", 'a', {"keypress 97 a S"}, {VK_SHIFT}));
    // A command of the page's, and no text.
    cases.push_back(character("a with Ctrl and Alt", 'a', {}, {VK_CONTROL, VK_MENU}));
    // Both keys of AltGr are held, and the layout has no such character, which counts as one that they make.
    cases.push_back(character("euro with AltGr", 0x20AC, {"keypress 8364 € G"}, {VK_CONTROL, VK_MENU, VK_RMENU}));
    cases.push_back(character("euro with the left Alt", 0x20AC, {}, {VK_CONTROL, VK_MENU, VK_LMENU}));
    // The layout makes it without AltGr: it stays a command.
    cases.push_back(character("a with AltGr", 'a', {}, {VK_CONTROL, VK_MENU, VK_RMENU}));
    return cases;
}

/// With Alt held the game keeps the press, so that its own combinations go on working; the rest goes to the page.
std::vector<InputCase> systemKeyCases(Style style) {
    const bool layer = style == Style::kLayer;
    constexpr LPARAM kAlt = 1 << 29;
    std::vector<InputCase> cases;
    for (const WORD key : {'F', 'X', '1'}) {
        const std::string name(1, char(key == '1' ? key : key | 0x20));
        const WORD scan = scanOf(key);
        cases.push_back({.name = "system press " + name,
                         .messages = {{WM_SYSKEYDOWN, key, keyPress(scan) | kAlt}},
                         .page = layer ? Lines{} : Lines{keyLine("keydown", key, name, "A")},
                         .game = layer ? std::vector<UINT>{WM_SYSKEYDOWN} : std::vector<UINT>{},
                         .down = {VK_MENU}});
        cases.push_back({.name = "system character " + name,
                         .messages = {{WM_SYSCHAR, static_cast<WPARAM>(name[0]), keyPress(scan) | kAlt}},
                         .page = {},
                         .down = {VK_MENU}});
        cases.push_back({.name = "system release " + name,
                         .messages = {{WM_SYSKEYUP, key, keyRelease(scan) | kAlt}},
                         .page = {keyLine("keyup", key, name, "A")},
                         .down = {VK_MENU}});
    }
    return cases;
}

/// Through the window's queue, where the game's own loop, or the view's, makes the characters.
void checkPostedLetters(InputPage& page) {
    for (WORD key = 'A'; key <= 'Z'; ++key) {
        const std::string name(1, char(key | 0x20));
        SCOPED_TRACE("posted " + name);
        const WORD scan = scanOf(key);
        EXPECT_EQ(page.logPosted({WM_KEYDOWN, key, keyPress(scan)}, 2),
                  (Lines{keyLine("keydown", key, name), keyLine("keypress", name[0], name)}));
        EXPECT_EQ(page.logPosted({WM_KEYUP, key, keyRelease(scan)}, 1), Lines{keyLine("keyup", key, name)});
        EXPECT_EQ(page.reachedGame(), std::vector<UINT>{});
    }
}

/// The display's keyboard: the system says itself what is held.
void checkRealKeys(InputPage& page, Style style) {
    struct Row {
        const char* name;
        std::function<void()> act;
        Lines page;
        std::vector<UINT> game = {};
    };
    const auto held = [](WORD key, DWORD flags, WORD other) {
        return [=] {
            sendRealKey(key, flags);
            tapRealKey(other);
            sendRealKey(key, flags | KEYEVENTF_KEYUP);
        };
    };
    constexpr DWORD kExtended = KEYEVENTF_EXTENDEDKEY;
    const bool layer = style == Style::kLayer;
    const Lines shifted = {"keydown 16 Shift S", "keydown 65 A S", "keypress 65 A S", "keyup 65 A S", "keyup 16 Shift"};
    const Lines copied = {"keydown 17 Control C", "keydown 67 c C", "keyup 67 c C", "keyup 17 Control"};
    const Lines altDown = layer ? Lines{} : Lines{"keydown 18 Alt A"};
    const std::vector<UINT> systemPress = layer ? std::vector<UINT>{WM_SYSKEYDOWN} : std::vector<UINT>{};
    const std::vector<Row> rows = {
        {"a", [] { tapRealKey('A'); }, {"keydown 65 a", "keypress 97 a", "keyup 65 a"}},
        {"1", [] { tapRealKey('1'); }, {"keydown 49 1", "keypress 49 1", "keyup 49 1"}},
        {"return", [] { tapRealKey(VK_RETURN); }, {"keydown 13 Enter", "keypress 13 Enter", "keyup 13 Enter"}},
        {"return of the pad",
         [] { tapRealKey(VK_RETURN, kExtended); },
         {"keydown 13 Enter", "keypress 13 Enter", "keyup 13 Enter"}},
        {"left", [] { tapRealKey(VK_LEFT, kExtended); }, {"keydown 37 ArrowLeft", "keyup 37 ArrowLeft"}},
        {"left of the pad", [] { tapRealKey(VK_LEFT); }, {"keydown 37 ArrowLeft", "keyup 37 ArrowLeft"}},
        {"escape", [] { tapRealKey(VK_ESCAPE); }, {"keydown 27 Escape", "keyup 27 Escape"}},
        {"F1", [] { tapRealKey(VK_F1); }, {"keydown 112 F1", "keyup 112 F1"}},
        {"left Shift and a", held(VK_LSHIFT, 0, 'A'), shifted},
        {"right Shift and a", held(VK_RSHIFT, 0, 'A'), shifted},
        {"left Ctrl and c", held(VK_LCONTROL, 0, 'C'), copied},
        {"right Ctrl and c", held(VK_RCONTROL, kExtended, 'C'), copied},
        {"left Alt", [] { tapRealKey(VK_LMENU); }, altDown + Lines{"keyup 18 Alt"}, systemPress},
        {"right Alt", [] { tapRealKey(VK_RMENU, kExtended); }, altDown + Lines{"keyup 18 Alt"}, systemPress},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(page.logReal(row.act), row.page);
        EXPECT_EQ(page.reachedGame(), row.game);
    }
    EXPECT_EQ(rows.size(), 14u);
}

void checkKeys(Style style, float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    InputPage page(style, scale);
    ASSERT_TRUE(page.open());
    ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(page.window)) / 96.0f, scale) << "the session's scale";
    std::vector<InputCase> cases = keyCases();
    for (const auto& more : {characterCases(), systemKeyCases(style)})
        cases.insert(cases.end(), more.begin(), more.end());
    EXPECT_EQ(cases.size(), 236u);
    runCases(page, cases);
    checkPostedLetters(page);
    checkRealKeys(page, style);
}

}  // namespace

TEST(KeyInput, LayerForeground_EveryKeyAndCharacterReachesThePageAsTold) { checkKeys(Style::kLayer, 1.0f); }
TEST(KeyInput, OwnWindowForeground_EveryKeyAndCharacterReachesThePageAsTold) { checkKeys(Style::kOwnWindow, 1.0f); }
TEST(KeyInput, Layer_EveryKeyAndCharacterReachesThePageAsTold_Scale150) { checkKeys(Style::kLayer, 1.5f); }
TEST(KeyInput, OwnWindow_EveryKeyAndCharacterReachesThePageAsTold_Scale150) { checkKeys(Style::kOwnWindow, 1.5f); }

}  // namespace ZEMO::Test
