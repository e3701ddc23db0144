#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "browser/default_browser.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace {

using Test::DebugLogCapture;
using Test::ImportReplaced;
using Test::StandInBrowserStage;

constexpr ASSOCF kFlags = ASSOCF_INIT_IGNOREUNKNOWN;

TEST(DefaultBrowser, SchemeIsKnown_PathOfItsProgram) {
    StandInBrowserStage stage;
    stage.setCommand(L"http", L"\"" + stage.install(L"chrome.exe") + L"\" \"%1\"");
    stage.setCommand(L"https", L"\"" + stage.install(L"Firefox.EXE") + L"\" --url \"%1\"");
    EXPECT_EQ(getDefaultBrowserPath(L"http"), stage.install(L"chrome.exe"));
    EXPECT_EQ(getDefaultBrowserPath(L"https"), stage.install(L"Firefox.EXE"));
}

TEST(DefaultBrowser, NullOrEmptyScheme_CountsAsHttps) {
    StandInBrowserStage stage;
    stage.setCommand(L"http", L"\"" + stage.install(L"chrome.exe") + L"\" \"%1\"");
    stage.setCommand(L"https", L"\"" + stage.install(L"firefox.exe") + L"\" \"%1\"");
    EXPECT_EQ(getDefaultBrowserPath(nullptr), stage.install(L"firefox.exe"));
    EXPECT_EQ(getDefaultBrowserPath(L""), stage.install(L"firefox.exe"));
}

TEST(DefaultBrowser, SchemeIsUnknown_ProgramOfHttp) {
    StandInBrowserStage stage;
    stage.setCommand(L"http", L"\"" + stage.install(L"chrome.exe") + L"\" \"%1\"");
    EXPECT_EQ(getDefaultBrowserPath(L"https"), stage.install(L"chrome.exe"));
    EXPECT_EQ(getDefaultBrowserPath(nullptr), stage.install(L"chrome.exe"));
}

// The shell names an executable only if the file is there; the command line is told in any case.
TEST(DefaultBrowser, ProgramIsMissing_TakenFromTheCommandLine) {
    StandInBrowserStage stage;
    stage.setCommand(L"https", L"\"C:\\gone away\\Some.exe\" \"%1\"");
    EXPECT_EQ(assocQuery(kFlags, ASSOCSTR_EXECUTABLE, L"https"), L"");
    EXPECT_EQ(getDefaultBrowserPath(L"https"), L"C:\\gone away\\Some.exe");
    stage.setCommand(L"https", L"C:\\gone\\Other.exe %1");
    EXPECT_EQ(getDefaultBrowserPath(L"https"), L"C:\\gone\\Other.exe");
}

TEST(DefaultBrowser, ProgramOfSchemeIsMissing_HttpProgramComesBeforeTheCommandLine) {
    StandInBrowserStage stage;
    stage.setCommand(L"https", L"\"C:\\gone away\\Some.exe\" \"%1\"");
    stage.setCommand(L"http", L"\"" + stage.install(L"chrome.exe") + L"\" \"%1\"");
    EXPECT_EQ(getDefaultBrowserPath(L"https"), stage.install(L"chrome.exe"));
}

TEST(DefaultBrowser, BothProgramsAreMissing_SchemesCommandLineComesFirst) {
    StandInBrowserStage stage;
    stage.setCommand(L"https", L"\"C:\\gone away\\Https.exe\" \"%1\"");
    stage.setCommand(L"http", L"\"C:\\gone away\\Http.exe\" \"%1\"");
    EXPECT_EQ(getDefaultBrowserPath(L"https"), L"C:\\gone away\\Https.exe");
    stage.setCommand(L"https", L"\"C:\\never closed");
    EXPECT_EQ(getDefaultBrowserPath(L"https"), L"C:\\gone away\\Http.exe");
}

TEST(DefaultBrowser, NothingIsRegistered_EmptyAndLogged) {
    StandInBrowserStage stage;
    DebugLogCapture log;
    EXPECT_EQ(getDefaultBrowserPath(L"https"), L"");
    EXPECT_EQ(getDefaultBrowserPath(L""), L"");
    EXPECT_EQ(getDefaultBrowserPath(L"http"), L"");
    EXPECT_EQ(log.texts(), (std::vector<std::string>{"getDefaultBrowserPath: 기본 브라우저 해석 실패 (scheme=https)",
                                                     "getDefaultBrowserPath: 기본 브라우저 해석 실패 (scheme=https)",
                                                     "getDefaultBrowserPath: 기본 브라우저 해석 실패 (scheme=http)"}))
        << log.dump();
}

// What the system is asked leaves no other trace, and it never takes back a size that it told; so this program's import
// of the query is replaced.
struct Question {
    ASSOCF flags;
    ASSOCSTR what;
    std::wstring assoc;
    bool asksForSize;
    DWORD size;
    bool operator==(const Question&) const = default;
};
std::vector<Question> questions;
DWORD toldSize = 0;
HRESULT WINAPI refusedUnlessFixed(ASSOCF flags, ASSOCSTR what, const wchar_t* assoc, const wchar_t*, wchar_t* out,
                                  DWORD* size) {
    questions.push_back({flags, what, assoc, out == nullptr, *size});
    if (!out) return *size = toldSize, S_FALSE;
    if (*size != 1024) return E_POINTER;
    wcscpy_s(out, *size, L"C:\\grown meanwhile.exe");
    return S_OK;
}
HRESULT WINAPI unknownToAll(ASSOCF flags, ASSOCSTR what, const wchar_t* assoc, const wchar_t*, wchar_t* out,
                            DWORD* size) {
    questions.push_back({flags, what, assoc, out == nullptr, *size});
    return HRESULT_FROM_WIN32(ERROR_NO_ASSOCIATION);
}

TEST(DefaultBrowser, EveryQuery_CarriesTheFlagThatIgnoresUnknownSchemes) {
    const ImportReplaced noted("AssocQueryStringW", &unknownToAll);
    questions.clear();
    EXPECT_EQ(getDefaultBrowserPath(L"https"), L"");
    const std::vector<Question> expected = {
        {1024, ASSOCSTR_EXECUTABLE, L"https", true, 0}, {1024, ASSOCSTR_EXECUTABLE, L"https", false, 1024},
        {1024, ASSOCSTR_EXECUTABLE, L"http", true, 0},  {1024, ASSOCSTR_EXECUTABLE, L"http", false, 1024},
        {1024, ASSOCSTR_COMMAND, L"https", true, 0},    {1024, ASSOCSTR_COMMAND, L"https", false, 1024},
        {1024, ASSOCSTR_COMMAND, L"http", true, 0},     {1024, ASSOCSTR_COMMAND, L"http", false, 1024},
    };
    EXPECT_EQ(questions, expected);
}

TEST(AssocQuery, ToldSizeIsRefused_AskedAgainWithAFixedBuffer) {
    const ImportReplaced refused("AssocQueryStringW", &refusedUnlessFixed);
    for (const DWORD told : {0u, 1u, 300u, 32768u, 32769u}) {
        toldSize = told;
        questions.clear();
        EXPECT_EQ(assocQuery(kFlags, ASSOCSTR_EXECUTABLE, L"https"), L"C:\\grown meanwhile.exe") << told;
        const bool fits = told >= 1 && told <= 32768;
        ASSERT_EQ(questions.size(), fits ? 3u : 2u) << told;
        if (fits) {
            EXPECT_EQ(questions[1].size, told);
        }
        EXPECT_EQ(questions.back().size, 1024u) << told;
    }
}

TEST(AssocQuery, NullOrEmptyAssociation_Empty) {
    EXPECT_EQ(assocQuery(kFlags, ASSOCSTR_EXECUTABLE, nullptr), L"");
    EXPECT_EQ(assocQuery(kFlags, ASSOCSTR_EXECUTABLE, L""), L"");
}

TEST(AssocQuery, AnswerUpTo32768Characters_WholeAndWithoutNul) {
    StandInBrowserStage stage;
    for (const std::size_t length : {1u, 2u, 1022u, 1023u, 1024u, 1025u, 5000u, 32767u}) {
        const std::wstring command(length, L'c');
        stage.setCommand(L"https", command);
        EXPECT_EQ(assocQuery(kFlags, ASSOCSTR_COMMAND, L"https"), command) << length;
    }
}

TEST(AssocQuery, LongerAnswer_Empty) {
    StandInBrowserStage stage;
    for (const std::size_t length : {32768u, 40000u}) {
        stage.setCommand(L"https", std::wstring(length, L'c'));
        EXPECT_EQ(assocQuery(kFlags, ASSOCSTR_COMMAND, L"https"), L"") << length;
    }
}

}  // namespace
}  // namespace ZEMO::UI
