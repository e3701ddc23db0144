#include <gtest/gtest.h>

#include <algorithm>
#include <format>
#include <mutex>

#include "client/ime_page.h"
#include "core/geometry.h"
#include "support/ime_keyboard.h"

// A game that brings its own text service: what it hears of a real page, and what its steps do there.
namespace ZEMO::Test {
namespace {

std::mutex callsMutex;
std::vector<std::string> calls;
std::vector<ZEMO::Rect> lastBounds;
bool sawNullForNone = true;

void onEvent(int event, int browserId, int a, int b) {
    const std::lock_guard lock(callsMutex);
    calls.push_back(std::format("{} {} {} {}", event, browserId, a, b));
}

void onBounds(int browserId, const void* rects, uint32_t count) {
    const std::lock_guard lock(callsMutex);
    calls.push_back(std::format("bounds {} {}", browserId, count));
    if (count == 0) sawNullForNone = sawNullForNone && rects == nullptr;
    const auto* first = static_cast<const ZEMO::Rect*>(rects);
    if (count > 0) lastBounds.assign(first, first + count);
}

bool hasCall(const std::string& call) {
    const std::lock_guard lock(callsMutex);
    return std::ranges::count(calls, call) > 0;
}

std::vector<ZEMO::Rect> boundsHeard() {
    const std::lock_guard lock(callsMutex);
    return lastBounds;
}

void process(uint32_t kind, const std::u16string& text, uint32_t backspaces = 0) {
    setImeProcess(kind, &text, &backspaces, nullptr);
}

class TextService : public ::testing::Test {
protected:
    void SetUp() override {
        setUseExternalTsfIme(1);
        registerImeEventCallback(&onEvent);
        registerImeCompositionBoundsCallback(&onBounds);
        ASSERT_TRUE(page.open());
        page.forget();
    }
    void TearDown() override {
        page.view.reset();
        registerImeEventCallback(nullptr);
        registerImeCompositionBoundsCallback(nullptr);
        setUseExternalTsfIme(0);
    }
    bool waitForCall(const std::string& call) {
        if (page.game.waitFor(call.c_str(), [&] { return hasCall(call); })) return true;
        const std::lock_guard lock(callsMutex);
        ADD_FAILURE() << "heard " << ::testing::PrintToString(calls);
        return false;
    }
    ImePage page;
};

}  // namespace

TEST_F(TextService, ComposedTextForeground_UpdatesInThePageUntilItIsCommitted) {
    process(1, u"に");
    process(1, u"日本");
    process(2, u"日本");
    ASSERT_TRUE(page.waitUntilSaid("compositionend 日本"));
    EXPECT_EQ(page.said(),
              (std::vector<std::string>{"compositionstart ", "compositionupdate に", "a=に", "compositionupdate 日本",
                                        "a=日本", "compositionupdate 日本", "a=日本", "compositionend 日本"}));
}

TEST_F(TextService, CancelForeground_LeavesNothingOfTheComposition) {
    process(1, u"中");
    ASSERT_TRUE(page.waitUntilSaid("a=中"));
    setImeProcess(0, nullptr, nullptr, nullptr);
    ASSERT_TRUE(page.waitUntilSaid("compositionend "));
    EXPECT_EQ(page.said().back(), "compositionend ");
    EXPECT_TRUE(page.waitUntilSaid("a="));
}

TEST_F(TextService, BackspacesForeground_TakeCharactersBeforeTheComposition) {
    process(2, u"abcd");
    ASSERT_TRUE(page.waitUntilSaid("a=abcd"));
    process(1, u"한", 3);
    EXPECT_TRUE(page.waitUntilSaid("a=a한"));
    EXPECT_TRUE(page.waitUntilSaid("a=ab")) << "one by one";
}

TEST_F(TextService, StepsWithoutTextForeground_DoNothing) {
    uint32_t backspaces = 2;
    process(2, u"ab");
    ASSERT_TRUE(page.waitUntilSaid("a=ab"));
    page.forget();
    setImeProcess(1, nullptr, &backspaces, nullptr);
    setImeProcess(2, nullptr, nullptr, nullptr);
    process(3, u"x");
    process(2, u"c");
    ASSERT_TRUE(page.waitUntilSaid("a=abc"));
    EXPECT_EQ(page.said(), std::vector<std::string>{"a=abc"});
}

TEST_F(TextService, CompositionForeground_BoundsOfEachCharacterOnTheScreen) {
    process(1, u"가나");
    ASSERT_TRUE(waitForCall("bounds 1 2"));
    const std::vector<ZEMO::Rect> bounds = boundsHeard();
    ASSERT_EQ(bounds.size(), 2u);
    POINT origin{20, 40};  // of the field
    ClientToScreen(page.window, &origin);
    EXPECT_NEAR(bounds[0].x, origin.x, 2);
    EXPECT_GE(bounds[0].y, origin.y - 1);
    EXPECT_LE(bounds[0].y + bounds[0].height, origin.y + 26);
    EXPECT_NEAR(bounds[1].x, bounds[0].x + bounds[0].width, 2);
    EXPECT_EQ(bounds[1].y, bounds[0].y);
    EXPECT_GT(bounds[1].width, 0);
    process(2, u"가나");
    ASSERT_TRUE(page.waitUntilSaid("compositionend 가나"));
    EXPECT_TRUE(sawNullForNone);
}

TEST_F(TextService, SelectionForeground_ReportedWithItsRange) {
    process(2, u"abcdef");
    ASSERT_TRUE(page.waitUntilSaid("a=abcdef"));
    pressKeys({VK_HOME});
    EXPECT_TRUE(waitForCall("1 1 0 0"));
    pressKeysWithShift({VK_RIGHT, VK_RIGHT, VK_RIGHT});
    EXPECT_TRUE(waitForCall("1 1 0 3"));
}

TEST_F(TextService, PressForeground_AsksForTheCancel) {
    SendMessageW(page.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 92));
    EXPECT_TRUE(waitForCall("2 1 0 0"));
}

TEST_F(TextService, PasswordFieldForeground_Reported) {
    page.run("p.focus()");
    EXPECT_TRUE(waitForCall("3 1 1 0"));
    page.run("a.focus()");
    EXPECT_TRUE(waitForCall("3 1 0 0"));
}

TEST_F(TextService, CompositionsOfTheSystemForeground_ReachNoPage) {
    const ImeKeyboard keyboard(LANG_KOREAN);
    ASSERT_TRUE(keyboard.isActive());
    ImeKeyboard::setOpen(page.window, true);
    pressKeys({'G', 'K', 'S', VK_RETURN, 'X'});
    ASSERT_TRUE(page.waitUntilSaid("a=x"));
    EXPECT_EQ(page.said(), std::vector<std::string>{"a=x"});
}

TEST(TextServiceWithoutAView, Steps_DoNothing) {
    const std::u16string text = u"x";
    for (uint32_t kind = 0; kind < 4; ++kind) setImeProcess(kind, &text, nullptr, nullptr);
}

}  // namespace ZEMO::Test
