#include <gtest/gtest.h>

#include "client/input_case.h"
#include "client/real_hands.h"

// Text in a page's own fields by the display's keyboard, in both styles: what the page holds in the end is the proof.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;

constexpr char kFields[] =
    "<input id=a><textarea id=b rows=3></textarea><div id=c contenteditable style='white-space:pre'></div>"
    "<style>#a,#b,#c{position:absolute;left:10px;width:200px;font:16px monospace}"
    "#a{top:10px}#b{top:50px}#c{top:140px;height:30px}</style>";

constexpr DWORD kExtended = KEYEVENTF_EXTENDEDKEY;  // the keys above the arrows, and the arrows themselves

struct Field {
    const char* name;
    int x, y;
    const char* value;     ///< its text
    const char* selected;  ///< the selected part of it
};

constexpr Field kAll[] = {
    {"a", 50, 20, "a.value", "a.value.slice(a.selectionStart,a.selectionEnd)"},
    {"b", 50, 60, "b.value", "b.value.slice(b.selectionStart,b.selectionEnd)"},
    {"c", 50, 150, "c.textContent", "getSelection().toString()"},
};

class Typing : public ::testing::TestWithParam<Style> {
protected:
    void open() { ASSERT_TRUE(page.open()); }
    void focus(const Field& field) {
        page.log([&](HWND window) {
            SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, page.at(field.x, field.y));
            SendMessageW(window, WM_LBUTTONUP, 0, page.at(field.x, field.y));
        });
        ASSERT_EQ(page.ask("document.activeElement.id"), field.name);
    }
    /// By the display's keys; what the page has then.
    std::string after(const std::function<void()>& keys, const char* expression) {
        page.logReal(keys);
        return page.ask(expression);
    }
    InputPage page{GetParam(), 1.0f, kFields};
};

TEST_P(Typing, EachFieldForeground_TypedDeletedAndSelectedByKeys) {
    open();
    for (const Field& field : kAll) {
        SCOPED_TRACE(field.name);
        focus(field);
        EXPECT_EQ(after([] { typeReal("Hello, World 42!"); }, field.value), "Hello, World 42!");
        EXPECT_EQ(after([] { tapRealKey(VK_BACK); }, field.value), "Hello, World 42");
        EXPECT_EQ(after(
                      [] {
                          tapRealKey(VK_HOME, kExtended);
                          tapRealKey(VK_DELETE, kExtended);
                      },
                      field.value),
                  "ello, World 42");
        EXPECT_EQ(after(
                      [] {
                          tapRealKey(VK_RIGHT, kExtended);
                          typeReal("X");
                      },
                      field.value),
                  "eXllo, World 42");
        EXPECT_EQ(after([] { tapRealKeyWith(VK_LSHIFT, VK_END, kExtended); }, field.selected), "llo, World 42");
        EXPECT_EQ(after([] { typeReal("y"); }, field.value), "eXy");
        EXPECT_EQ(after([] { tapRealKeyWith(VK_LSHIFT, VK_LEFT, kExtended); }, field.selected), "y");
        EXPECT_EQ(after([] { tapRealKey(VK_DELETE, kExtended); }, field.value), "eX");
        EXPECT_EQ(after([] { tapRealKeyWith(VK_LCONTROL, 'A'); }, field.selected), "eX");
        EXPECT_EQ(after(
                      [] {
                          tapRealKeyWith(VK_LCONTROL, 'C');
                          tapRealKey(VK_END, kExtended);
                          tapRealKeyWith(VK_LCONTROL, 'V');
                      },
                      field.value),
                  "eXeX");
        EXPECT_EQ(after(
                      [] {
                          typeReal("one two");
                          tapRealKeyWith(VK_LCONTROL, VK_BACK);
                      },
                      field.value),
                  "eXeXone ");
        EXPECT_EQ(after([] { tapRealKeyWith(VK_LCONTROL, 'Z'); }, field.value), "eXeXone two");
        EXPECT_EQ(after(
                      [] {
                          tapRealKeyWith(VK_LCONTROL, 'A');
                          tapRealKey(VK_BACK);
                      },
                      field.value),
                  "");
    }
    EXPECT_EQ(page.reachedGame(), std::vector<UINT>{});
}

TEST_P(Typing, ReturnForeground_BreaksTheLineOfATextAreaOnly) {
    open();
    focus(kAll[0]);
    EXPECT_EQ(after(
                  [] {
                      typeReal("a");
                      tapRealKey(VK_RETURN);
                      typeReal("b");
                  },
                  "a.value"),
              "ab");
    focus(kAll[1]);
    EXPECT_EQ(after(
                  [] {
                      typeReal("a");
                      tapRealKey(VK_RETURN);
                      typeReal("b");
                      tapRealKey(VK_RETURN, kExtended);
                      typeReal("c");
                  },
                  "JSON.stringify(b.value)"),
              R"("a\nb\nc")");
}

TEST_P(Typing, MouseDragForeground_SelectsWhatTheNextKeyReplaces) {
    open();
    focus(kAll[0]);
    EXPECT_EQ(after([] { typeReal("select me"); }, "a.value"), "select me");
    page.log([&](HWND window) {
        SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, page.at(209, 20));
        for (const int x : {150, 80, 30, 12}) SendMessageW(window, WM_MOUSEMOVE, MK_LBUTTON, page.at(x, 20));
        SendMessageW(window, WM_LBUTTONUP, 0, page.at(12, 20));
    });
    EXPECT_EQ(page.ask("a.value.slice(a.selectionStart,a.selectionEnd)"), "select me");
    EXPECT_EQ(after([] { typeReal("Z"); }, "a.value"), "Z");
}

/// Each half is a character of its own to the window.
TEST_P(Typing, SurrogatePairForeground_IsOneCharacterOfTheField) {
    open();
    for (const Field& field : kAll) {
        SCOPED_TRACE(field.name);
        focus(field);
        page.log([](HWND window) {
            for (const WPARAM unit : {0xD83D, 0xDE00}) SendMessageW(window, WM_CHAR, unit, keyPress(0x1E));
        });
        // The engine shows it with the next key.
        EXPECT_EQ(after([] { typeReal("k"); }, field.value), "\xF0\x9F\x98\x80k");
    }
}

INSTANTIATE_TEST_SUITE_P(Styles, Typing, ::testing::Values(Style::kLayer, Style::kOwnWindow),
                         [](const auto& style) { return style.param == Style::kLayer ? "Layer" : "OwnWindow"; });

}  // namespace

TEST(TypingByRemote, FieldForeground_TakesInjectedKeysAndText) {
    InputPage page(Style::kLayer, 1.0f, kFields);
    ASSERT_TRUE(page.open());
    const auto inject = [&](const char* type, const char* action, const char* data, int x = 0, int y = 0) {
        ZEMO::UI::sendUIRemoteInputEvent(type, action, data, x, y);
        dispatchGameMessages();
    };
    for (const Field& field : kAll) {
        SCOPED_TRACE(field.name);
        inject("Touch", "Down", "", field.x, field.y);
        inject("Touch", "Up", "", field.x, field.y);
        inject("Key", "Down", "0x48");
        inject("Key", "Up", "0x48");
        inject("Message", "", "\xED\x95\x9C, \xF0\x9F\x98\x80");
        std::string now;
        EXPECT_TRUE(page.game.waitFor("the text", [&] {
            now = page.ask(field.value);
            return now == "h\xED\x95\x9C, \xF0\x9F\x98\x80";
        })) << now;
    }
}

}  // namespace ZEMO::Test
