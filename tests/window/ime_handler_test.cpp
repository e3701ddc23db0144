#include <gtest/gtest.h>

#include <algorithm>
#include <format>
#include <optional>

#include "layers/ime/osr_ime_handler_win.h"
#include "support/ime_keyboard.h"
#include "window/ime_window.h"

// The handler on a real window with its real input context: the system loads an input method module for the keyboard
// layout, the display's keys go to it, and its messages come to the window.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Lines = std::vector<std::string>;

std::string utf8(const std::wstring& wide) { return CefString(wide).ToString(); }

class OsrImeHandlerTest : public ::testing::Test {
protected:
    OsrImeHandlerTest() {
        target.take = [this](UINT message, WPARAM wParam, LPARAM lParam) { return onMessage(message, wParam, lParam); };
    }

    void open(WORD language) {
        keyboard.emplace(language);
        ASSERT_TRUE(keyboard->isActive()) << "the system does not take the input method";
        ASSERT_TRUE(target.waitForFocus());
        ImeKeyboard::setOpen(target.window, true);
    }
    bool waitForLine(const std::string& line) {
        return target.waitFor(line.c_str(), [&] { return std::ranges::count(lines, line) > 0; });
    }

    ImeWindow target;
    OsrImeHandlerWin handler{target.window};
    std::optional<ImeKeyboard> keyboard;
    Lines lines;

private:
    bool onMessage(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_IME_STARTCOMPOSITION:
                lines.push_back("start");
                return true;
            case WM_IME_ENDCOMPOSITION:
                lines.push_back("end");
                return true;
            case WM_IME_COMPOSITION:
                onComposition(lParam);
                return true;
            case WM_CHAR:
                lines.push_back(std::format("char {}", wParam));
                return true;
            default:
                return false;
        }
    }
    void onComposition(LPARAM flags) {
        std::wstring text;
        if (handler.getResult(flags, text)) lines.push_back("result " + utf8(text));
        CompositionUnderlines underlines;
        int cursor = 0;
        if (!handler.getComposition(flags, text, underlines, cursor)) return;
        std::string line = std::format("compose {} cursor {}", utf8(text), cursor);
        for (const auto& u : underlines) {
            line += std::format(" {}-{}{}", u.range.from, u.range.to, u.thick ? " thick" : "");
        }
        lines.push_back(line);
    }
};

}  // namespace

TEST_F(OsrImeHandlerTest, KoreanSyllables_ReadWithThinLineAndCursorBehind) {
    open(LANG_KOREAN);
    pressKeys({'G', 'K', 'S', 'G', VK_RETURN});
    ASSERT_TRUE(waitForLine("end"));
    EXPECT_EQ(lines, (Lines{"start", "compose ㅎ cursor 1 0-1", "compose 하 cursor 1 0-1", "compose 한 cursor 1 0-1",
                            "result 한", "compose ㅎ cursor 1 0-1", "result ㅎ", "end"}));
}

TEST_F(OsrImeHandlerTest, JapaneseConversion_TargetClauseIsThick) {
    open(LANG_JAPANESE);
    pressKeys({'K', 'A', 'N', 'J', 'I', 'W', 'O', VK_SPACE, VK_RETURN});
    ASSERT_TRUE(waitForLine("end"));
    EXPECT_EQ(lines, (Lines{"start", "compose ｋ cursor 1 0-1", "compose か cursor 1 0-1", "compose かｎ cursor 2 0-2",
                            "compose かんｊ cursor 3 0-3", "compose かんじ cursor 3 0-3",
                            "compose かんじｗ cursor 4 0-4", "compose かんじを cursor 4 0-4",
                            "compose 漢字を cursor 0 0-2 thick 2-3", "result 漢字を", "end"}));
}

TEST_F(OsrImeHandlerTest, ChineseConversion_WholeTextIsTheTarget) {
    open(LANG_CHINESE);
    pressKeys({'N', 'I', 'H', 'A', 'O', VK_SPACE, VK_RETURN});
    ASSERT_TRUE(waitForLine("end"));
    EXPECT_EQ(lines, (Lines{"start", "compose n cursor 1 0-1", "compose ni cursor 2 0-2", "compose ni h cursor 4 0-4",
                            "compose ni ha cursor 5 0-5", "compose ni hao cursor 6 0-6",
                            "compose 你好 cursor 2 0-2 thick", "result 你好", "end"}));
}

TEST_F(OsrImeHandlerTest, Composing_FromTheFirstStringToItsReset) {
    open(LANG_KOREAN);
    EXPECT_FALSE(handler.isComposing());
    pressKeys({'G'});
    ASSERT_TRUE(waitForLine("compose ㅎ cursor 1 0-1"));
    EXPECT_TRUE(handler.isComposing());
    handler.resetComposition();
    EXPECT_FALSE(handler.isComposing());
}

TEST_F(OsrImeHandlerTest, CancelIme_EndsTheCompositionWithoutAResult) {
    open(LANG_KOREAN);
    pressKeys({'G', 'K'});
    ASSERT_TRUE(waitForLine("compose 하 cursor 1 0-1"));
    lines.clear();
    handler.cancelIme();
    EXPECT_EQ(lines, Lines{"end"}) << "at once, within the call";
    EXPECT_FALSE(handler.isComposing());
    lines.clear();
    handler.cancelIme();
    EXPECT_EQ(lines, Lines{}) << "nothing is being composed";
}

TEST_F(OsrImeHandlerTest, DisableIme_CompletesTheCompositionAndTakesTheContextAway) {
    open(LANG_KOREAN);
    pressKeys({'G', 'K'});
    ASSERT_TRUE(waitForLine("compose 하 cursor 1 0-1"));
    lines.clear();
    handler.disableIme();
    EXPECT_EQ(lines, (Lines{"result 하", "end"}));
    EXPECT_FALSE(handler.isComposing());
    EXPECT_FALSE(target.hasContext());
    pressKeys({'G'});
    EXPECT_TRUE(waitForLine("char 103")) << "the method does not see the key";
    handler.enableIme();
    EXPECT_TRUE(target.hasContext());
}

TEST_F(OsrImeHandlerTest, NoContext_EveryOperationDoesNothing) {
    open(LANG_KOREAN);
    pressKeys({'G'});
    ASSERT_TRUE(waitForLine("compose ㅎ cursor 1 0-1"));
    ImmAssociateContextEx(target.window, nullptr, 0);
    std::wstring text = L"before";
    CompositionUnderlines underlines;
    int cursor = 0;
    EXPECT_FALSE(handler.getResult(GCS_RESULTSTR, text));
    EXPECT_FALSE(handler.getComposition(GCS_COMPSTR, text, underlines, cursor));
    EXPECT_EQ(text, L"before");
    handler.completeIfComposing();
    handler.cancelIme();
    EXPECT_TRUE(handler.isComposing());
    handler.setCompositionBounds({0, 1}, {{1, 2, 3, 4}});
    handler.moveImeWindow();
    handler.enableIme();
}

TEST_F(OsrImeHandlerTest, MoveImeWindow_CompositionAtTheCharacterAndCandidatesClearOfIt) {
    open(LANG_KOREAN);
    handler.setInputLanguage();
    handler.setCompositionBounds({3, 5}, {{40, 30, 12, 20}, {52, 30, 12, 20}});
    handler.moveImeWindow();
    EXPECT_EQ(target.composition().dwStyle, static_cast<DWORD>(CFS_POINT));
    EXPECT_EQ(target.composition().ptCurrentPos.x, 40);
    EXPECT_EQ(target.composition().ptCurrentPos.y, 30);
    handler.setCursorIndex(4);
    handler.moveImeWindow();
    EXPECT_EQ(target.composition().ptCurrentPos.x, 52);
    const CANDIDATEFORM candidate = target.candidate();
    EXPECT_EQ(candidate.dwStyle, static_cast<DWORD>(CFS_EXCLUDE)) << "the last word";
    EXPECT_EQ(candidate.ptCurrentPos.x, 52);
    EXPECT_EQ(candidate.rcArea.right, 64);
    EXPECT_EQ(candidate.rcArea.bottom - candidate.rcArea.top, 20);
}

TEST_F(OsrImeHandlerTest, CursorBeyondTheStoredBounds_NothingMoves) {
    open(LANG_KOREAN);
    handler.setCompositionBounds({3, 5}, {{40, 30, 12, 20}, {52, 30, 12, 20}});
    target.forgetPlaces();
    handler.setCursorIndex(5);
    handler.moveImeWindow();
    EXPECT_EQ(target.candidate().ptCurrentPos.x, -7777);
    EXPECT_EQ(target.composition().ptCurrentPos.x, -7777);
    handler.setCursorIndex(4);
    handler.moveImeWindow();
    EXPECT_EQ(target.composition().ptCurrentPos.x, 52) << "the same windows do move otherwise";
}

TEST_F(OsrImeHandlerTest, WindowWithoutTheFocus_NothingMoves) {
    open(LANG_KOREAN);
    handler.setCompositionBounds({0, 1}, {{40, 30, 12, 20}});
    target.forgetPlaces();
    SetFocus(nullptr);
    handler.moveImeWindow();
    EXPECT_EQ(target.composition().ptCurrentPos.x, -7777);
    SetFocus(target.window);
    handler.moveImeWindow();
    EXPECT_EQ(target.composition().ptCurrentPos.x, 40);
}

TEST_F(OsrImeHandlerTest, CaretOfTheSystem_OnlyForTheLanguagesThatLookForIt) {
    open(LANG_KOREAN);
    handler.setInputLanguage();
    handler.createImeCaret();
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    ASSERT_TRUE(GetGUIThreadInfo(GetCurrentThreadId(), &info));
    EXPECT_EQ(info.hwndCaret, nullptr) << "the layout's number, read as decimal, is none of theirs";
}

TEST(OsrImeHandler, DestroyedOnAnotherThread_LeavesThatThreadsCaretAlone) {
    ImeWindow target;
    ASSERT_TRUE(target.waitForFocus());
    ASSERT_TRUE(CreateCaret(target.window, nullptr, 2, 9));
    OsrImeHandlerWin{target.window};
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    ASSERT_TRUE(GetGUIThreadInfo(GetCurrentThreadId(), &info));
    EXPECT_EQ(info.hwndCaret, target.window) << "it had none of its own";
    DestroyCaret();
}

}  // namespace ZEMO::Test
