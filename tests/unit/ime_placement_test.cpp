#include "layers/ime/ime_placement.h"

#include <gtest/gtest.h>

#include <climits>
#include <format>

// Where an input method's windows go, by language and by character.
namespace ZEMO::UI {
namespace {

std::string textOf(const ImePlacement& place) {
    const auto& c = place.candidate;
    const auto& e = place.exclude;
    std::string text;
    if (place.composition) {
        text = std::format("composition {} ({},{}) ", place.composition->dwStyle, place.composition->ptCurrentPos.x,
                           place.composition->ptCurrentPos.y);
    }
    EXPECT_EQ(c.dwIndex, 0u);
    EXPECT_EQ(c.dwStyle, static_cast<DWORD>(CFS_CANDIDATEPOS));
    EXPECT_EQ(e.dwIndex, 0u);
    EXPECT_EQ(e.dwStyle, static_cast<DWORD>(CFS_EXCLUDE));
    return text + std::format("candidate ({},{}) caret ({},{}) exclude ({},{}) ({},{},{},{})", c.ptCurrentPos.x,
                              c.ptCurrentPos.y, place.caret.x, place.caret.y, e.ptCurrentPos.x, e.ptCurrentPos.y,
                              e.rcArea.left, e.rcArea.top, e.rcArea.right, e.rcArea.bottom);
}

}  // namespace

TEST(ImePlacement, LanguageOfALayout_LastFourDigitsReadAsDecimal) {
    const struct {
        const wchar_t* name;
        uint16_t language;
        uint16_t primary;
    } cases[] = {
        {L"00000409", 409, 409},
        {L"00000412", 412, 412},
        {L"00000411", 411, 411},
        {L"00000804", 804, 804},
        {L"E0010412", 412, 412},
        {L"00000c0a", 0, 0},
        {L"0000040c", 40, 40},
        {L"00001042", 1042, kImeKorean},
        {L"00001041", 1041, kImeJapanese},
        {L"00001028", 1028, kImeChinese},
        {L"00000018", 18, kImeKorean},
        {L"00000017", 17, kImeJapanese},
        {L"00000004", 4, kImeChinese},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(languageIdOfLayoutName(c.name), c.language) << CefString(std::wstring(c.name)).ToString();
        EXPECT_EQ(primaryImeLanguage(c.language), c.primary) << CefString(std::wstring(c.name)).ToString();
    }
    EXPECT_EQ(std::size(cases), 13u);
}

TEST(ImePlacement, Character_CursorCountsFromTheRange) {
    const std::vector<CefRect> bounds{{10, 1, 5, 9}, {20, 1, 5, 9}, {30, 1, 5, 9}};
    const struct {
        int cursor;
        CefRange range;
        int expectedX;  ///< 0: none
    } cases[] = {
        {-1, {0, 3}, 10}, {-1, {7, 10}, 10}, {0, {0, 3}, 10},  {2, {0, 3}, 30}, {3, {0, 3}, 0},  {7, {7, 10}, 10},
        {9, {7, 10}, 30}, {10, {7, 10}, 0},  {1, {7, 10}, 20}, {6, {7, 10}, 0}, {-2, {0, 3}, 0}, {-2, {7, 10}, 0},
    };
    for (const auto& c : cases) {
        const auto character = imeCharacter(c.cursor, c.range, bounds);
        EXPECT_EQ(character ? character->x : 0, c.expectedX) << c.cursor << " in " << c.range.from;
    }
    EXPECT_EQ(std::size(cases), 12u);
    EXPECT_FALSE(imeCharacter(-1, {0, 0}, {}));
}

TEST(ImePlacement, Windows_ByLanguage) {
    const CefRect character(40, 30, 12, 20);
    const struct {
        uint16_t language;
        std::string expected;
    } cases[] = {
        {9, "composition 2 (40,30) candidate (40,50) caret (40,30) exclude (40,30) (40,30,52,50)"},
        {412, "composition 2 (40,30) candidate (40,50) caret (40,30) exclude (40,30) (40,30,52,50)"},
        {kImeChinese, "candidate (40,30) caret (40,30) exclude (40,30) (40,30,52,50)"},
        {kImeJapanese, "composition 2 (40,30) candidate (40,50) caret (40,50) exclude (40,30) (40,30,52,50)"},
        {kImeKorean, "composition 2 (40,30) candidate (40,50) caret (40,30) exclude (40,31) (40,31,52,51)"},
    };
    for (const auto& c : cases) EXPECT_EQ(textOf(placeImeWindows(character, c.language)), c.expected) << c.language;
    EXPECT_EQ(std::size(cases), 5u);
}

TEST(ImePlacement, CharacterBeyondEveryScreen_StaysWithinAnInteger) {
    const ImePlacement place = placeImeWindows({INT_MAX, INT_MAX, INT_MAX, INT_MAX}, kImeKorean);
    EXPECT_EQ(place.candidate.ptCurrentPos.y, LONG_MAX);
    EXPECT_EQ(place.exclude.rcArea.right, LONG_MAX);
    EXPECT_EQ(place.exclude.rcArea.bottom, LONG_MAX);
}

}  // namespace ZEMO::UI
