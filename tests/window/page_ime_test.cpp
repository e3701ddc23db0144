#include "engine/client/ime/page_ime.h"

#include <gtest/gtest.h>

#include <thread>

#include "core/process_state.h"
#include "layers/window_messages.h"
#include "support/debug_log.h"
#include "support/ime_keyboard.h"
#include "window/ime_window.h"
#include "window/window_test_support.h"

// A page's text input on a real window with its real input context, as far as it needs no page: there is no browser
// here, so nothing is sent to one.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

class PageImeTest : public ::testing::Test {
protected:
    PageImeTest() {
        target.take = [this](UINT message, WPARAM wParam, LPARAM) {
            if (message == kMessageImeFocus) {
                ++focusMessages;
                ime.onImeFocusChange(wParam != 0);
            } else if (message == kMessageImeBounds) {
                ++boundsMessages;
                ime.onImeBoundsChanged();
            }
            return message == kMessageImeFocus || message == kMessageImeBounds;
        };
    }
    ~PageImeTest() override {
        ime.close();
        setExternalTsfImeUsed(false);
        setPasswordFieldFocused(false);
    }
    void SetUp() override {
        ASSERT_TRUE(keyboard.isActive()) << "the system does not take the input method";
        ASSERT_TRUE(target.waitForFocus());
        ImeKeyboard::setOpen(target.window, true);
    }
    void reportPasswordFocus(bool focused) {
        ime.onPasswordFieldFocus(nullptr, focused);
        target.dispatchWaiting();
    }
    void reportBounds(const CefRange& range, const CefRenderHandler::RectList& bounds) {
        ime.onImeCompositionRangeChanged(nullptr, range, bounds);
        target.dispatchWaiting();
    }
    /// An input method that gives itself back to the window and opens, whatever the page wants.
    void openAgainstThePage() {
        ImmAssociateContextEx(target.window, nullptr, IACE_DEFAULT);
        ImeKeyboard::setOpen(target.window, true);
        ime.onImeSetContext();
        target.dispatchWaiting();
    }

    static constexpr float kScale = 1.5f;
    ImeWindow target;
    ImeKeyboard keyboard{LANG_KOREAN};
    PageIme ime{target.window, kScale};
    int focusMessages = 0;
    int boundsMessages = 0;
};

}  // namespace

TEST_F(PageImeTest, PasswordFieldFocused_ImeIsClosedAndItsContextTakenAway) {
    reportPasswordFocus(true);
    EXPECT_TRUE(isPasswordFieldFocused());
    EXPECT_FALSE(target.hasContext());
    ImmAssociateContextEx(target.window, nullptr, IACE_DEFAULT);
    EXPECT_FALSE(ImeKeyboard::isOpen(target.window)) << "closed before it was taken away";
}

TEST_F(PageImeTest, PasswordFieldLeft_ImeIsAsItWasBefore) {
    for (const bool open : {true, false}) {
        ImeKeyboard::setOpen(target.window, open);
        reportPasswordFocus(true);
        reportPasswordFocus(false);
        EXPECT_FALSE(isPasswordFieldFocused());
        EXPECT_TRUE(target.hasContext());
        EXPECT_EQ(ImeKeyboard::isOpen(target.window), open);
    }
}

TEST_F(PageImeTest, FromOnePasswordFieldToTheNext_StateBeforeTheFirstComesBack) {
    reportPasswordFocus(true);
    openAgainstThePage();
    ImeKeyboard::setOpen(target.window, false);
    reportPasswordFocus(true);
    reportPasswordFocus(false);
    EXPECT_TRUE(ImeKeyboard::isOpen(target.window));
}

TEST_F(PageImeTest, ImeThatKeepsOpeningInAPasswordField_ClosedEightTimesAndThenLeftOpen) {
    reportPasswordFocus(true);
    focusMessages = 0;
    for (int attempt = 1; attempt <= 8; ++attempt) {
        openAgainstThePage();
        EXPECT_FALSE(target.hasContext()) << "attempt " << attempt;
        EXPECT_EQ(focusMessages, attempt);
    }
    openAgainstThePage();
    EXPECT_TRUE(ImeKeyboard::isOpen(target.window)) << "the ninth";
    EXPECT_EQ(focusMessages, 8);
    reportPasswordFocus(true);
    openAgainstThePage();
    EXPECT_FALSE(target.hasContext()) << "the page's focus changed: it counts anew";
}

TEST_F(PageImeTest, ImeClosedInAPasswordField_LogSaysAtWhichMessage) {
    reportPasswordFocus(true);
    const DebugLogCapture log;
    openAgainstThePage();
    EXPECT_EQ(log.count("input method closed in a password field: imeSetContext\n"), 1u) << log.dump();
    ImmAssociateContextEx(target.window, nullptr, IACE_DEFAULT);
    ImeKeyboard::setOpen(target.window, true);
    ime.onImeStartComposition();
    EXPECT_EQ(log.count("input method closed in a password field: imeStartComposition\n"), 1u) << log.dump();
}

TEST_F(PageImeTest, ClosedImeInAPasswordField_NotCounted) {
    reportPasswordFocus(true);
    ImmAssociateContextEx(target.window, nullptr, IACE_DEFAULT);
    ImeKeyboard::setOpen(target.window, false);
    focusMessages = 0;
    for (int i = 0; i < 20; ++i) ime.onImeStartComposition();
    target.dispatchWaiting();
    EXPECT_EQ(focusMessages, 0);
    openAgainstThePage();
    EXPECT_FALSE(target.hasContext()) << "all of its closes are still to come";
}

TEST_F(PageImeTest, PasswordFieldFocused_NoWindowOfTheMethodMoves) {
    reportBounds({0, 1}, {{40, 20, 10, 20}});
    target.forgetPlaces();
    setPasswordFieldFocused(true);
    ime.onImeSetContext();
    ime.onImeStartComposition();
    EXPECT_EQ(target.candidate().ptCurrentPos.x, -7777);
    EXPECT_EQ(target.composition().ptCurrentPos.x, -7777);
    setPasswordFieldFocused(false);
    ime.onImeSetContext();
    EXPECT_EQ(target.composition().ptCurrentPos.x, 60) << "it does otherwise, in device pixels";
}

TEST_F(PageImeTest, BoundsFromThePage_CandidatesAtTheLastCharacterOfTheRange) {
    reportBounds({2, 4}, {{40, 20, 10, 20}, {50, 20, 10, 20}});
    EXPECT_EQ(boundsMessages, 1);
    EXPECT_EQ(target.composition().ptCurrentPos.x, 75);
    EXPECT_EQ(target.composition().ptCurrentPos.y, 30);
    EXPECT_EQ(target.candidate().rcArea.right, 90);
}

TEST_F(PageImeTest, RangeWithoutCharacters_CandidatesAtItsBeginning) {
    reportBounds({0, 0}, {{40, 20, 10, 20}});
    EXPECT_EQ(target.composition().ptCurrentPos.x, 60);
}

TEST_F(PageImeTest, NoBounds_NothingMoves) {
    target.forgetPlaces();
    reportBounds({0, 1}, {});
    EXPECT_EQ(boundsMessages, 1);
    EXPECT_EQ(target.composition().ptCurrentPos.x, -7777);
}

TEST_F(PageImeTest, ExternalService_InputContextIsNotTouched) {
    reportBounds({0, 1}, {{40, 20, 10, 20}});
    setExternalTsfImeUsed(true);
    target.forgetPlaces();
    boundsMessages = 0;
    ime.onImeSetContext();
    ime.onImeStartComposition();
    ime.onImeComposition(nullptr, GCS_COMPSTR | GCS_RESULTSTR);
    ime.onImeEndComposition(nullptr);
    reportBounds({0, 1}, {{80, 20, 10, 20}});
    EXPECT_EQ(boundsMessages, 0);
    EXPECT_EQ(target.candidate().ptCurrentPos.x, -7777);
    EXPECT_EQ(target.composition().ptCurrentPos.x, -7777);
}

TEST_F(PageImeTest, CharacterPosition_AnsweredInScreenPixels) {
    reportBounds({0, 2}, {{40, 20, 10, 20}, {50, 20, 11, 21}});
    POINT origin{};
    ClientToScreen(target.window, &origin);
    RECT client{};
    GetClientRect(target.window, &client);
    const struct {
        DWORD character;
        LONG x;
        UINT lineHeight;
    } cases[] = {{0, 60, 30}, {1, 75, 31}, {2, 75, 31}, {0xFFFFFFFF, 75, 31}};
    for (const auto& c : cases) {
        IMECHARPOSITION position{};
        position.dwSize = sizeof position;
        position.dwCharPos = c.character;
        ASSERT_TRUE(ime.onImeQueryCharPosition(&position)) << c.character;
        EXPECT_EQ(position.pt.x, origin.x + c.x) << c.character;
        EXPECT_EQ(position.pt.y, origin.y + 30) << c.character;
        EXPECT_EQ(position.cLineHeight, c.lineHeight) << c.character;
        EXPECT_EQ(position.rcDocument.left, origin.x);
        EXPECT_EQ(position.rcDocument.top, origin.y);
        EXPECT_EQ(position.rcDocument.right, origin.x + client.right);
        EXPECT_EQ(position.rcDocument.bottom, origin.y + client.bottom);
    }
    EXPECT_EQ(std::size(cases), 4u);
}

TEST_F(PageImeTest, CharacterPosition_RefusedWithoutRoomBoundsOrWindowAndInAPasswordField) {
    IMECHARPOSITION position{};
    position.dwSize = sizeof position;
    EXPECT_FALSE(ime.onImeQueryCharPosition(&position)) << "no bounds yet";
    reportBounds({0, 1}, {{40, 20, 10, 20}});
    EXPECT_FALSE(ime.onImeQueryCharPosition(nullptr));
    position.dwSize = sizeof position - 1;
    EXPECT_FALSE(ime.onImeQueryCharPosition(&position));
    position.dwSize = sizeof position;
    EXPECT_TRUE(ime.onImeQueryCharPosition(&position));
    setPasswordFieldFocused(true);
    EXPECT_FALSE(ime.onImeQueryCharPosition(&position));
    setPasswordFieldFocused(false);
    DestroyWindow(target.window);
    EXPECT_FALSE(ime.onImeQueryCharPosition(&position));
}

TEST_F(PageImeTest, Closed_StateComesBackAndNothingIsHeardAfterwards) {
    reportPasswordFocus(true);
    ASSERT_FALSE(target.hasContext());
    ime.close();
    EXPECT_TRUE(ImeKeyboard::isOpen(target.window)) << "at once, on the window's own thread";
    EXPECT_FALSE(isPasswordFieldFocused());
    focusMessages = boundsMessages = 0;
    reportPasswordFocus(true);
    EXPECT_FALSE(isPasswordFieldFocused()) << "a report that was on its way";
    reportBounds({0, 1}, {{40, 20, 10, 20}});
    ime.onImeSetContext();
    ime.onImeFocusChange(false);
    EXPECT_TRUE(target.hasContext());
    EXPECT_EQ(focusMessages + boundsMessages, 0);
    ime.close();
}

TEST_F(PageImeTest, PageGoneWithItsPasswordField_CountsAsLeft) {
    reportPasswordFocus(true);
    ime.onPageGone(nullptr);
    target.dispatchWaiting();
    EXPECT_FALSE(isPasswordFieldFocused());
    EXPECT_TRUE(ImeKeyboard::isOpen(target.window));
    focusMessages = 0;
    ime.onPageGone(nullptr);
    target.dispatchWaiting();
    EXPECT_EQ(focusMessages, 0) << "only what was there can be left";
}

TEST(PageImeThreads, ClosedOnAnotherThread_WindowsThreadRestoresTheState) {
    SubclassedGame subclassed;
    GameWindow& game = subclassed.game;
    PageIme ime(game.handle(), 1.0f);
    bool taken = false;
    game.onThread([&] {
        ImeKeyboard::setOpen(game.handle(), true);
        ime.onImeFocusChange(false);
        const HIMC context = ImmGetContext(game.handle());
        taken = context == nullptr;
        ImmReleaseContext(game.handle(), context);
    });
    ASSERT_TRUE(taken);
    ime.close();
    bool open = false;
    for (int i = 0; i < 200 && !open; ++i) {
        game.onThread([&] { open = ImeKeyboard::isOpen(game.handle()); });
        if (!open) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(open);
}

}  // namespace ZEMO::Test
