#include "layers/ime/composition_reader.h"

#include <gtest/gtest.h>
#include <imm.h>

#include <cstring>
#include <format>
#include <map>
#include <optional>
#include <ostream>

// The reading of compositions as tables. The source stands in for the system's input context: no input method brings
// every one of these parts.
namespace ZEMO::UI {
namespace {

class TableSource final : public ICompositionSource {
public:
    LONG read(DWORD part, void* buffer, DWORD sizeBytes) const override {
        asked.push_back({part, sizeBytes});
        if (part == GCS_CURSORPOS) return cursor;
        const auto entry = parts.find(part);
        if (entry == parts.end()) return missing;
        if (buffer) std::memcpy(buffer, entry->second.data(), std::min<size_t>(sizeBytes, entry->second.size()));
        return static_cast<LONG>(entry->second.size());
    }
    void putText(DWORD part, const std::wstring& text) {
        parts[part] = std::string(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
    }
    void putClauses(const std::vector<uint32_t>& offsets) {
        parts[GCS_COMPCLAUSE] =
            std::string(reinterpret_cast<const char*>(offsets.data()), offsets.size() * sizeof(uint32_t));
    }

    std::map<DWORD, std::string> parts;
    LONG cursor = 0;
    LONG missing = 0;
    mutable std::vector<std::pair<DWORD, DWORD>> asked;
};

std::string linesOf(const CompositionUnderlines& underlines) {
    std::string text;
    for (const auto& line : underlines) {
        EXPECT_EQ(line.color, 0xFF000000u);
        EXPECT_EQ(line.background_color, 0u);
        EXPECT_EQ(line.style, CEF_CUS_SOLID);
        text += std::format("{}-{}{} ", line.range.from, line.range.to, line.thick ? " thick" : "");
    }
    return text;
}

}  // namespace

TEST(CompositionReader, String_ReadOnlyWhereTheMessageHasThePart) {
    TableSource source;
    source.putText(GCS_RESULTSTR, L"한글");
    std::wstring text = L"before";
    EXPECT_FALSE(readCompositionString(source, GCS_COMPSTR, GCS_RESULTSTR, text));
    EXPECT_EQ(text, L"before");
    EXPECT_TRUE(source.asked.empty());
    EXPECT_TRUE(readCompositionString(source, GCS_RESULTSTR | GCS_COMPSTR, GCS_RESULTSTR, text));
    EXPECT_EQ(text, L"한글");
}

TEST(CompositionReader, String_SizeBelowOneIsNone) {
    for (const LONG size : {0, IMM_ERROR_NODATA, IMM_ERROR_GENERAL}) {
        TableSource source;
        source.missing = size;
        std::wstring text = L"before";
        EXPECT_FALSE(readCompositionString(source, GCS_COMPSTR, GCS_COMPSTR, text)) << size;
        EXPECT_EQ(text, L"before");
    }
}

TEST(CompositionReader, String_AskedForWithTwoBytesMoreThanItsSize) {
    TableSource source;
    source.putText(GCS_COMPSTR, L"abc");
    std::wstring text;
    ASSERT_TRUE(readCompositionString(source, GCS_COMPSTR, GCS_COMPSTR, text));
    const std::vector<std::pair<DWORD, DWORD>> expected{{GCS_COMPSTR, 0}, {GCS_COMPSTR, 8}};
    EXPECT_EQ(source.asked, expected);
}

TEST(CompositionReader, String_EmptyAsSoonAsItIsReadClearsTheText) {
    TableSource source;
    source.putText(GCS_COMPSTR, std::wstring(2, L'\0'));
    std::wstring text = L"before";
    EXPECT_TRUE(readCompositionString(source, GCS_COMPSTR, GCS_COMPSTR, text));
    EXPECT_EQ(text, L"");
}

TEST(CompositionReader, Target_FirstRunOfTargetAttributes) {
    const struct {
        std::vector<uint8_t> attributes;
        CompositionTarget expected;
    } cases[] = {
        {{}, {0, 0}},
        {{ATTR_INPUT}, {1, 1}},
        {{ATTR_INPUT, ATTR_CONVERTED, ATTR_INPUT_ERROR, ATTR_FIXEDCONVERTED}, {4, 4}},
        {{ATTR_TARGET_CONVERTED}, {0, 1}},
        {{ATTR_TARGET_NOTCONVERTED, ATTR_TARGET_CONVERTED, ATTR_CONVERTED}, {0, 2}},
        {{ATTR_CONVERTED, ATTR_TARGET_CONVERTED, ATTR_TARGET_CONVERTED}, {1, 3}},
        {{ATTR_INPUT, ATTR_TARGET_NOTCONVERTED, ATTR_INPUT, ATTR_TARGET_CONVERTED}, {1, 2}},
    };
    for (const auto& c : cases) {
        const CompositionTarget target = findTarget(c.attributes);
        EXPECT_EQ(target.targetStart, c.expected.targetStart) << ::testing::PrintToString(c.attributes);
        EXPECT_EQ(target.targetEnd, c.expected.targetEnd) << ::testing::PrintToString(c.attributes);
    }
    EXPECT_EQ(std::size(cases), 7u);
}

TEST(CompositionReader, Underlines_ThinThickThinAroundTheTarget) {
    const struct {
        uint32_t length;
        CompositionTarget target;
        std::string expected;
    } cases[] = {
        {0, {0, 0}, ""},
        {3, {3, 3}, "0-3 "},
        {3, {0, 0}, "0-3 "},
        {3, {0, 3}, "0-3 thick "},
        {3, {0, 1}, "0-1 thick 1-3 "},
        {3, {1, 2}, "0-1 1-2 thick 2-3 "},
        {3, {2, 3}, "0-2 2-3 thick "},
        {3, {5, 5}, "0-5 "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(linesOf(targetUnderlines(c.length, c.target)), c.expected)
            << c.length << ": " << c.target.targetStart << "-" << c.target.targetEnd;
    }
    EXPECT_EQ(std::size(cases), 8u);
}

TEST(CompositionReader, Clauses_ThickExactlyInsideTheTarget) {
    const struct {
        std::vector<uint32_t> offsets;
        CompositionTarget target;
        std::string expected;
    } cases[] = {
        {{}, {0, 0}, ""},
        {{0}, {0, 1}, ""},
        {{0, 3}, {3, 3}, "0-3 "},
        {{0, 3}, {0, 3}, "0-3 thick "},
        {{0, 2, 3}, {0, 2}, "0-2 thick 2-3 "},
        {{0, 2, 3, 5}, {2, 3}, "0-2 2-3 thick 3-5 "},
        {{0, 2, 5}, {0, 3}, "0-2 thick 2-5 "},
        {{0, 2, 5}, {1, 5}, "0-2 2-5 thick "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(linesOf(clauseUnderlines(c.offsets, c.target)), c.expected) << ::testing::PrintToString(c.offsets);
    }
    EXPECT_EQ(std::size(cases), 8u);
}

TEST(CompositionReader, Info_WhatTheFlagsNameAndNothingElse) {
    constexpr LPARAM kAttributes = GCS_COMPATTR;
    constexpr LPARAM kClauses = GCS_COMPCLAUSE;
    const struct {
        const char* name;
        LPARAM flags;
        std::string lines;
        int cursor;
    } cases[] = {
        {"text alone", GCS_COMPSTR, "0-3 ", 0},
        {"attributes", GCS_COMPSTR | kAttributes, "0-1 1-2 thick 2-3 ", 0},
        {"clauses without a target", GCS_COMPSTR | kClauses, "0-1 1-2 2-3 ", 0},
        {"clauses", GCS_COMPSTR | kAttributes | kClauses, "0-1 1-2 thick 2-3 ", 0},
        {"cursor", GCS_COMPSTR | GCS_CURSORPOS, "0-3 ", 2},
        {"cursor that must not move", GCS_COMPSTR | GCS_CURSORPOS | CS_NOMOVECARET, "0-3 ", 0},
        {"only the order not to move it", GCS_COMPSTR | CS_NOMOVECARET, "0-3 ", 0},
    };
    for (const auto& c : cases) {
        TableSource source;
        source.parts[GCS_COMPATTR] = {ATTR_INPUT, ATTR_TARGET_CONVERTED, ATTR_INPUT};
        source.putClauses({0, 1, 2, 3});
        source.cursor = 2;
        CompositionUnderlines underlines{CefCompositionUnderline()};
        int cursor = 77;
        fillCompositionInfo(source, c.flags, L"abc", underlines, cursor);
        EXPECT_EQ(linesOf(underlines), c.lines) << c.name;
        EXPECT_EQ(cursor, c.cursor) << c.name;
    }
    EXPECT_EQ(std::size(cases), 7u);
}

TEST(CompositionReader, Info_PartsThatTheContextDoesNotHaveLeaveTheTextUnderlined) {
    TableSource source;
    source.missing = IMM_ERROR_NODATA;
    CompositionUnderlines underlines;
    int cursor = 0;
    fillCompositionInfo(source, GCS_COMPSTR | GCS_COMPATTR | GCS_COMPCLAUSE, L"ab", underlines, cursor);
    EXPECT_EQ(linesOf(underlines), "0-2 ");
}

TEST(CompositionReader, Clauses_BytesBeyondTheLastWholeNumberDoNotCount) {
    TableSource source;
    source.putClauses({0, 2});
    source.parts[GCS_COMPCLAUSE] += "xyz";
    CompositionUnderlines underlines;
    int cursor = 0;
    fillCompositionInfo(source, GCS_COMPSTR | GCS_COMPCLAUSE, L"ab", underlines, cursor);
    EXPECT_EQ(linesOf(underlines), "0-2 ");
    EXPECT_EQ(source.asked.back(), (std::pair<DWORD, DWORD>{GCS_COMPCLAUSE, 8}));
}

}  // namespace ZEMO::UI
