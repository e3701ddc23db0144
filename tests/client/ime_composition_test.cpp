#include <gtest/gtest.h>

#include "client/ime_page.h"
#include "support/ime_keyboard.h"

// Composed text in a real page. The keys are the display's; the system hands them to an input method module, whose
// messages come to the window; the page says what it gets.
namespace ZEMO::Test {
namespace {

using Lines = std::vector<std::string>;

/// What the page says of one composition: a start, an update with the field's value for each text, and an end with the
/// last one, which is told once more as it is committed.
Lines composition(const std::string& before, const Lines& texts, bool committed) {
    Lines lines{"compositionstart "};
    const auto update = [&](const std::string& text) {
        lines.push_back("compositionupdate " + text);
        lines.push_back("a=" + before + text);
    };
    for (const std::string& text : texts) update(text);
    const std::string end = committed ? texts.back() : "";
    update(end);
    lines.push_back("compositionend " + end);
    return lines;
}

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

class ImeComposition : public ::testing::Test {
protected:
    void open(WORD language) {
        ASSERT_TRUE(page.open());
        keyboard.emplace(language);
        ASSERT_TRUE(keyboard->isActive()) << "the system does not take the input method";
        ImeKeyboard::setOpen(page.window, true);
        page.forget();
    }
    ImePage page;
    std::optional<ImeKeyboard> keyboard;
};

}  // namespace

TEST_F(ImeComposition, KoreanForeground_StartUpdateCommitAndCancel) {
    open(LANG_KOREAN);
    pressKeys({'G', 'K', 'S', VK_RETURN, 'G', 'K', VK_ESCAPE, 'X'});
    ASSERT_TRUE(page.waitUntilSaid("a=한x"));
    EXPECT_EQ(page.said(),
              composition("", {"ㅎ", "하", "한"}, true) + composition("한", {"ㅎ", "하"}, false) + Lines{"a=한x"});
}

TEST_F(ImeComposition, JapaneseForeground_StartUpdateConvertCommitAndCancel) {
    open(LANG_JAPANESE);
    pressKeys({'K', 'A', 'N', 'J', 'I', 'W', 'O', VK_SPACE, VK_RETURN, 'K', 'A', VK_ESCAPE, 'X'});
    ASSERT_TRUE(page.waitUntilSaid("a=漢字をx"));
    EXPECT_EQ(page.said(),
              composition("", {"ｋ", "か", "かｎ", "かんｊ", "かんじ", "かんじｗ", "かんじを", "漢字を"}, true) +
                  composition("漢字を", {"ｋ", "か"}, false) + Lines{"a=漢字をx"});
}

TEST_F(ImeComposition, ChineseForeground_StartUpdateConvertCommitAndCancel) {
    open(LANG_CHINESE);
    pressKeys({'N', 'I', 'H', 'A', 'O', VK_SPACE, VK_RETURN, 'N', 'I', VK_ESCAPE, 'X'});
    ASSERT_TRUE(page.waitUntilSaid("a=你好x"));
    EXPECT_EQ(page.said(), composition("", {"n", "ni", "ni h", "ni ha", "ni hao", "你好"}, true) +
                               composition("你好", {"n", "ni"}, false) + Lines{"a=你好x"});
}

TEST_F(ImeComposition, CommitAndNewCompositionInOneMessageForeground_BothArriveCommitFirst) {
    open(LANG_KOREAN);
    pressKeys({'G', 'K', 'S', 'G', 'K', VK_RETURN});
    ASSERT_TRUE(page.waitUntilSaid("compositionend 하"));
    EXPECT_EQ(page.said(), composition("", {"ㅎ", "하", "한"}, true) + composition("한", {"ㅎ", "하"}, true));
}

}  // namespace ZEMO::Test
