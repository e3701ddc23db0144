#include <gtest/gtest.h>

#include "browser/default_browser.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/debug_log.h"

namespace ZEMO::UI {
namespace {

using Test::DebugLogCapture;
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
