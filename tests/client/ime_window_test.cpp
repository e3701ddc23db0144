#include <gtest/gtest.h>
#include <windows.h>

#include <imm.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

#include "client/ime_page.h"
#include "core/process_state.h"
#include "support/ime_keyboard.h"

// What a page's fields do to the window's input method: places, password fields, the end of a view.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

CANDIDATEFORM candidateOf(HWND window) {
    CANDIDATEFORM form{};
    const HIMC context = ImmGetContext(window);
    ImmGetCandidateWindow(context, 0, &form);
    ImmReleaseContext(window, context);
    return form;
}

bool hasContext(HWND window) {
    const HIMC context = ImmGetContext(window);
    ImmReleaseContext(window, context);
    return context != nullptr;
}

/// The field "a" begins at (20, 40), its characters are 16 pixels of a monospace font. Two are composed.
void checkCandidatesAtTheCaret(float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    ImePage page({.clientWidth = static_cast<int>(320 * scale), .clientHeight = static_cast<int>(240 * scale)});
    ASSERT_TRUE(page.open());
    ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(page.window)) / 96.0f, scale) << "the session's scale";
    const ImeKeyboard keyboard(LANG_CHINESE);
    ASSERT_TRUE(keyboard.isActive());
    ImeKeyboard::setOpen(page.window, true);
    pressKeys({'N', 'I'});
    ASSERT_TRUE(page.waitUntilSaid("compositionupdate ni"));
    // The page tells the widths that it measures itself: of the text before the last character, and with it.
    page.run(
        "const c=document.createElement('canvas').getContext('2d');c.font=getComputedStyle(a).font;"
        "const r=a.getBoundingClientRect();say('from '+Math.round(r.left+c.measureText('n').width)+' to '+"
        "Math.round(r.left+c.measureText('ni').width)+' top '+r.top+' bottom '+r.bottom)");
    int from = 0, to = 0, top = 0, bottom = 0;
    ASSERT_TRUE(page.game.waitFor("the page's own measure", [&] {
        const auto lines = page.said();
        return std::ranges::any_of(lines, [&](const std::string& line) {
            return std::sscanf(line.c_str(), "from %d to %d top %d bottom %d", &from, &to, &top, &bottom) == 4;
        });
    }));
    const auto device = [&](int logical) { return static_cast<float>(logical) * scale; };
    const auto isAt = [&](int logical, LONG px) {
        return std::abs(device(logical) - static_cast<float>(px)) <= 2 * scale;
    };
    const auto placed = [&] {
        const CANDIDATEFORM form = candidateOf(page.window);
        return form.dwStyle == CFS_EXCLUDE && isAt(from, form.rcArea.left) && isAt(to, form.rcArea.right);
    };
    EXPECT_TRUE(page.game.waitFor("the candidate window's place", placed, 10s));
    const CANDIDATEFORM form = candidateOf(page.window);
    EXPECT_TRUE(isAt(from, form.ptCurrentPos.x)) << form.ptCurrentPos.x << " for " << from;
    EXPECT_TRUE(isAt(to, form.rcArea.right)) << form.rcArea.right << " for " << to;
    EXPECT_GE(form.rcArea.top, std::lround(device(top)) - 1);
    EXPECT_LE(form.rcArea.bottom, std::lround(device(bottom)) + 1);
    EXPECT_GT(form.rcArea.bottom, form.rcArea.top);
}

}  // namespace

TEST(ImeWindow, CandidatesAtTheCaretForeground) { checkCandidatesAtTheCaret(1.0f); }
TEST(ImeWindow, CandidatesAtTheCaretForeground_Scale150) { checkCandidatesAtTheCaret(1.5f); }

TEST(ImeWindow, PasswordFieldForeground_KeysArriveUncomposedAndTheMethodIsBackOnBlur) {
    ImePage page;
    ASSERT_TRUE(page.open());
    const ImeKeyboard keyboard(LANG_KOREAN);
    ASSERT_TRUE(keyboard.isActive());
    ImeKeyboard::setOpen(page.window, true);
    page.run("p.focus()");
    ASSERT_TRUE(page.game.waitFor("the method taken away", [&] { return !hasContext(page.window); }));
    page.forget();
    pressKeys({'G', 'K', 'S'});
    EXPECT_TRUE(page.waitUntilSaid("p=gks"));
    page.run("a.focus()");
    ASSERT_TRUE(page.game.waitFor("the method back", [&] { return hasContext(page.window); }));
    EXPECT_TRUE(page.game.waitFor("the method open", [&] { return ImeKeyboard::isOpen(page.window); }));
    page.forget();
    pressKeys({'G', 'K', 'S', VK_RETURN});
    EXPECT_TRUE(page.waitUntilSaid("compositionend 한"));
}

TEST(ImeWindow, ViewClosedInAPasswordFieldForeground_MethodIsAsItWas) {
    ImePage page;
    ASSERT_TRUE(page.open());
    const ImeKeyboard keyboard(LANG_KOREAN);
    ASSERT_TRUE(keyboard.isActive());
    ImeKeyboard::setOpen(page.window, true);
    page.run("p.focus()");
    ASSERT_TRUE(page.game.waitFor("the method taken away", [&] { return !hasContext(page.window); }));
    page.view->close();
    page.view.reset();
    EXPECT_TRUE(page.game.waitFor("the method back", [&] { return ImeKeyboard::isOpen(page.window); }));
    EXPECT_FALSE(isPasswordFieldFocused());
}

TEST(ImeWindow, OwnWindowForeground_ComposesOnItsThread) {
    ImePage page({}, 1);
    ASSERT_TRUE(page.open());
    std::unique_ptr<ImeKeyboard> keyboard;
    ASSERT_TRUE(page.onWindowThread([&] {
        keyboard = std::make_unique<ImeKeyboard>(LANG_KOREAN);
        ImeKeyboard::setOpen(page.window, true);
    }));
    ASSERT_TRUE(keyboard->isActive());
    pressKeys({'G', 'K', 'S', VK_RETURN});
    EXPECT_TRUE(page.waitUntilSaid("compositionend 한"));
    EXPECT_TRUE(page.onWindowThread([&] { keyboard.reset(); }));
}

TEST(ImeWindow, PressIntoThePageForeground_EndsTheComposition) {
    ImePage page;
    ASSERT_TRUE(page.open());
    const ImeKeyboard keyboard(LANG_KOREAN);
    ASSERT_TRUE(keyboard.isActive());
    ImeKeyboard::setOpen(page.window, true);
    pressKeys({'G', 'K'});
    ASSERT_TRUE(page.waitUntilSaid("compositionupdate 하"));
    page.forget();
    SendMessageW(page.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 92));
    SendMessageW(page.window, WM_LBUTTONUP, 0, MAKELPARAM(40, 92));
    EXPECT_TRUE(page.waitUntilSaid("focus b"));
    EXPECT_TRUE(page.waitUntilSaid("compositionend 하")) << "what was composed stays";
    pressKeys({'X'});
    EXPECT_TRUE(page.waitUntilSaid("b=x")) << "the method has nothing left of it";
}

}  // namespace ZEMO::Test
