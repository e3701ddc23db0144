#include <gtest/gtest.h>

#include <map>
#include <type_traits>

#include "include/cef_app.h"

namespace {

TEST(CefString, Utf8WideAndUtf16_ConvertEachWay) {
    struct Row {
        const char* utf8;
        const wchar_t* wide;
        const char16_t* units;
    };
    const Row rows[] = {
        {"", L"", u""},
        {"plain", L"plain", u"plain"},
        {"\xEA\xB0\x80\xEB\x82\x98 \xED\x95\x9C", L"\xAC00\xB098 \xD55C", u"\xAC00\xB098 \xD55C"},  // Korean
        {"\xF0\x9F\x98\x80", L"\xD83D\xDE00", u"\xD83D\xDE00"},                                     // beyond 16 bits
    };
    static_assert(std::size(rows) == 4);
    for (const auto& row : rows) {
        EXPECT_EQ(CefString(row.utf8).ToWString(), row.wide);
        EXPECT_EQ(CefString(row.wide).ToString(), row.utf8);
        EXPECT_EQ(CefString(row.units).ToString(), row.utf8);
        EXPECT_EQ(CefString(std::string(row.utf8)).ToString16(), row.units);
        EXPECT_EQ(CefString(std::wstring(row.wide)).ToString16(), row.units);
        EXPECT_EQ(CefString(std::u16string(row.units)).ToWString(), row.wide);
        EXPECT_EQ(CefString(row.utf8).length(), std::u16string(row.units).size());
        EXPECT_EQ(CefString(row.utf8).empty(), *row.utf8 == 0);
        const std::string converted = CefString(row.units);
        EXPECT_EQ(converted, row.utf8);
    }
}

TEST(CefString, NullPointers_AreEmptyStrings) {
    EXPECT_TRUE(CefString(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(CefString(static_cast<const wchar_t*>(nullptr)).empty());
    EXPECT_TRUE(CefString(static_cast<const char16_t*>(nullptr)).empty());
    EXPECT_TRUE(CefString(static_cast<cef_string_t*>(nullptr)).empty());
    EXPECT_TRUE(CefString(static_cast<const cef_string_t*>(nullptr)).empty());
    EXPECT_EQ(CefString().ToString(), "");
}

TEST(CefString, BrokenText_BecomesTheReplacementCharacter) {
    EXPECT_EQ(CefString("a\xFF"
                        "b")
                  .ToWString(),
              L"a\xFFFD"
              L"b");
    const char16_t half[] = {u'x', 0xD83D, 0};
    EXPECT_EQ(CefString(half).ToString(), "x\xEF\xBF\xBD");
}

TEST(CefString, EmbeddedZero_IsKept) {
    const std::string text("a\0b", 3);
    EXPECT_EQ(CefString(text).length(), 3u);
    EXPECT_EQ(CefString(text).ToString(), text);
}

TEST(CefString, ReferenceToAStructure_WritesThroughAndIsFreedByIt) {
    CefSettings settings;
    CefString(&settings.locale) = "ko-KR";
    EXPECT_EQ(CefString(&settings.locale).ToString(), "ko-KR");
    EXPECT_NE(settings.locale.dtor, nullptr) << "the structure can clear it without knowing who filled it";
    CefString(&settings.locale).FromASCII("en");
    EXPECT_EQ(settings.locale.length, 2u);
    settings.locale.dtor(settings.locale.str);
    settings.locale = {};
}

TEST(CefString, ReferenceToAConstStructure_WritesThroughAsWell) {
    CefString source("original");
    EXPECT_TRUE(source.IsOwner());
    CefString reader(source.GetStruct());
    EXPECT_FALSE(reader.IsOwner());
    EXPECT_EQ(reader.c_str(), source.c_str()) << "no copy for reading";
    reader = "changed";
    EXPECT_EQ(source, "changed");
    CefString(reader.GetWritableStruct()) = "other";
    EXPECT_EQ(source, "other");
    reader.clear();
    EXPECT_TRUE(source.empty());
}

TEST(CefString, Owner_IsWhoGivesTheCharactersBack) {
    EXPECT_FALSE(CefString().IsOwner());
    cef_string_t raw{};
    CefString filled(&raw);
    filled = "text";
    EXPECT_FALSE(filled.IsOwner());
    EXPECT_TRUE(CefString(filled).IsOwner());
    filled.clear();
}

TEST(CefString, CopyOfAReference_OwnsItsCharacters) {
    cef_string_t raw{};
    CefString filled(&raw);
    filled = L"\xD55C\xAE00";
    const CefString copy = filled;
    CefString reader(static_cast<const cef_string_t*>(&raw));
    const CefString moved = std::move(reader);
    filled.clear();
    EXPECT_EQ(copy, L"\xD55C\xAE00");
    EXPECT_EQ(moved, copy);
}

#ifndef ZEMO_CEF_DISTRIBUTION  // whose own string does not
TEST(CefString, SelfAndPartAssignment_KeepTheText) {
    CefString text("abcdef");
    text = *&text;
    EXPECT_EQ(text, "abcdef");
    text.FromString(text.c_str() + 2, 3, true);
    EXPECT_EQ(text, "cde");
}
#endif

TEST(CefString, Swap_ExchangesOwnersAndReferences) {
    CefString a("a"), b("b");
    a.swap(b);
    EXPECT_EQ(a, "b");
    EXPECT_EQ(b, "a");
}

TEST(CefString, Ordering_IsByUnitAndUsableAsKey) {
    std::map<CefString, int> map{{"b", 2}, {"a", 1}, {"\xEA\xB0\x80", 3}};
    EXPECT_EQ(map.begin()->first, "a");
    EXPECT_EQ(map[L"\xAC00"], 3);
    EXPECT_LT(CefString("a"), CefString("aa"));
    EXPECT_EQ(CefString("x").compare("x"), 0);
    EXPECT_NE(CefString("x"), CefString("X"));
}

TEST(CefSettings, CopyAndAssign_OwnTheirStrings) {
    CefSettings first;
    CefString(&first.user_agent) = "agent";
    first.remote_debugging_port = 7;
    CefSettings second(first), third;
    third = first;
    CefString(&first.user_agent) = "other";
    EXPECT_EQ(CefString(&second.user_agent), "agent");
    EXPECT_EQ(CefString(&third.user_agent), "agent");
    EXPECT_EQ(third.remote_debugging_port, 7);
    EXPECT_EQ(third.size, sizeof(cef_settings_t));
}

TEST(CefWindowInfo, SetAsWindowless_HasNoWindowStyle) {
    CefWindowInfo info;
    info.SetAsWindowless(nullptr);
    EXPECT_EQ(info.windowless_rendering_enabled, 1);
    EXPECT_EQ(info.runtime_style, CEF_RUNTIME_STYLE_ALLOY);
    info.SetAsPopup(nullptr, "title");
    static_assert(!std::is_convertible_v<const CefWindowInfo&, CefWindowInfo>, "a copy is asked for by name");
    const CefWindowInfo copy(info);
    EXPECT_EQ(CefString(&copy.window_name), "title");
    EXPECT_EQ(copy.bounds.x, CW_USEDEFAULT);
}

TEST(CefRange, Set_TakesSignedNumbersAsTheEngineCountsThem) {
    static_assert(std::is_same_v<decltype(&CefRange::Set), void (CefRange::*)(int, int)>);
    CefRange range(3, 8);
    range.Set(-1, -1);
    EXPECT_EQ(range, CefRange::InvalidRange());
}

TEST(CefScheme, CustomSchemeOptions_AddUpToSeventeen) {
    EXPECT_EQ(CEF_SCHEME_OPTION_STANDARD | CEF_SCHEME_OPTION_CORS_ENABLED, 17u);
}

}  // namespace
