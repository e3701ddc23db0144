#include "browser/browser_rules.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace ZEMO::UI {
namespace {

struct ProtocolCase {
    const char* url;
    const wchar_t* protocol;
};

constexpr ProtocolCase kProtocols[] = {
    {"https://x", L"https"},       {"https://", L"https"}, {"https:/", L"http"},    {"https:/x", L"http"},
    {"HTTPS://x", L"http"},        {"Https://x", L"http"}, {" https://x", L"http"}, {"http://x", L"http"},
    {"http://https://x", L"http"}, {"https", L"http"},     {"", L"http"},           {"ftp://x", L"http"},
    {"mailto:a@b.c", L"http"},
};

struct TextCase {
    const wchar_t* input;
    const wchar_t* output;
};

constexpr TextCase kCommandLines[] = {
    {L"", L""},
    {L"\"", L""},
    {L"\"\"", L""},
    {L"\"\" C:\\a.exe", L""},
    {L"\"C:\\Program Files\\a b.exe\" \"%1\"", L"C:\\Program Files\\a b.exe"},
    {L"\"C:\\Program Files\\a b.exe\"", L"C:\\Program Files\\a b.exe"},
    {L"\"C:\\Program Files\\a b.exe %1", L""},
    {L"C:\\a.exe", L"C:\\a.exe"},
    {L"C:\\a.exe %1", L"C:\\a.exe"},
    {L"C:\\Program Files\\a.exe %1", L"C:\\Program"},
    {L" C:\\a.exe", L""},
    {L"a\"b c", L"a\"b"},
    {L"C:\\a.exe\t%1", L"C:\\a.exe\t%1"},
    {L"\"C:\\\xd55c\xae00\\a.exe\" %1", L"C:\\\xd55c\xae00\\a.exe"},
};

constexpr TextCase kExecutableNames[] = {
    {L"", L""},
    {L"C:\\Apps\\Firefox.EXE", L"firefox.exe"},
    {L"C:/Apps/Chrome.exe", L"chrome.exe"},
    {L"C:\\Apps/mixed\\WHALE.exe", L"whale.exe"},
    {L"chrome.exe", L"chrome.exe"},
    {L"C:\\Apps\\", L""},
    {L"C:\\Program Files\\Some Browser.exe", L"some browser.exe"},
    {L"\\\\server\\share\\Opera.exe", L"opera.exe"},
};

constexpr TextCase kPrivateFlags[] = {
    {L"", L""},
    {L"firefox.exe", L"-private-window"},
    {L"waterfox.exe", L"-private-window"},
    {L"librewolf.exe", L"-private-window"},
    {L"msedge.exe", L"--inprivate"},
    {L"opera.exe", L"--private"},
    {L"launchwinapp.exe", L""},
    {L"openwith.exe", L""},
    {L"rundll32.exe", L""},
    {L"chrome.exe", L"--incognito"},
    {L"whale.exe", L"--incognito"},
    {L"brave.exe", L"--incognito"},
    {L"x", L"--incognito"},
    // exact comparisons: the caller brings lower case
    {L"Firefox.exe", L"--incognito"},
    {L"firefox.exe ", L"--incognito"},
    {L"firefox", L"--incognito"},
    {L"openwith", L"--incognito"},
};

TEST(BrowserRules, Address_ProtocolByExactPrefix) {
    ASSERT_EQ(std::size(kProtocols), 13u);
    for (const auto& row : kProtocols) EXPECT_STREQ(browserProtocolOf(row.url), row.protocol) << row.url;
}

TEST(BrowserRules, CommandLine_ExecutableIsQuotedTextOrFirstWord) {
    ASSERT_EQ(std::size(kCommandLines), 14u);
    for (const auto& row : kCommandLines) {
        EXPECT_EQ(extractExecutable(row.input), row.output) << &row - kCommandLines;
    }
}

TEST(BrowserRules, Path_NameIsLastComponentInLowerCase) {
    ASSERT_EQ(std::size(kExecutableNames), 8u);
    for (const auto& row : kExecutableNames) {
        EXPECT_EQ(browserExecutableName(row.input), row.output) << &row - kExecutableNames;
    }
}

TEST(BrowserRules, ExecutableName_PrivateFlagOfTheTable) {
    ASSERT_EQ(std::size(kPrivateFlags), 17u);
    for (const auto& row : kPrivateFlags) {
        EXPECT_EQ(privateModeFlag(row.input), row.output) << &row - kPrivateFlags;
    }
}

TEST(BrowserRules, MixedCasePathOfFirefox_PrivateFlagOfFirefox) {
    EXPECT_EQ(privateModeFlag(browserExecutableName(L"C:\\Apps\\Firefox.EXE")), L"-private-window");
}

TEST(BrowserRules, PrivateParameters_FlagBlankAndQuotedAddressUnescaped) {
    EXPECT_EQ(privateWindowParameters(L"--incognito", L"http://x/a b"), L"--incognito \"http://x/a b\"");
    EXPECT_EQ(privateWindowParameters(L"-private-window", L"a\"b"), L"-private-window \"a\"b\"");
}

TEST(LoopbackRule, AddressOf800Bytes_DirectAnd801Redirected) {
    const BrowserSituation coldChrome{.defaultExecutable = L"chrome.exe"};
    const BrowserSituation coldWhale{.defaultExecutable = L"whale.exe"};
    for (const auto& situation : {coldChrome, coldWhale}) {
        EXPECT_FALSE(takesLoopbackRoute(0, situation));
        EXPECT_FALSE(takesLoopbackRoute(799, situation));
        EXPECT_FALSE(takesLoopbackRoute(800, situation));
        EXPECT_TRUE(takesLoopbackRoute(801, situation));
        EXPECT_TRUE(takesLoopbackRoute(802, situation));
        EXPECT_TRUE(takesLoopbackRoute(2'000'000, situation));
    }
}

// Every combination of long address, browser, running processes and handheld. One row holds the answers for
// {none, chrome, whale, both} running, for a long address and no keyboard callback.
TEST(LoopbackRule, EveryCombination_OnlyTheColdDefaultBrowserIsRedirected) {
    struct Row {
        const wchar_t* executable;
        bool answer[4];
    };
    constexpr Row kRows[] = {
        {L"chrome.exe", {true, false, true, false}},    {L"whale.exe", {true, true, false, false}},
        {L"firefox.exe", {false, false, false, false}}, {L"msedge.exe", {false, false, false, false}},
        {L"Chrome.exe", {false, false, false, false}},  {L"chrome.exe2", {false, false, false, false}},
        {L"chrome", {false, false, false, false}},      {L"", {false, false, false, false}},
    };
    int checked = 0;
    for (const auto& row : kRows) {
        for (int running = 0; running < 4; ++running) {
            for (const std::size_t length : {799u, 800u, 801u, 802u}) {
                for (const bool keyboard : {false, true}) {
                    const BrowserSituation situation{row.executable, (running & 1) != 0, (running & 2) != 0, keyboard};
                    const bool expected = row.answer[running] && length > 800 && !keyboard;
                    EXPECT_EQ(takesLoopbackRoute(length, situation), expected)
                        << &row - kRows << " running " << running << " length " << length << " keyboard " << keyboard;
                    ++checked;
                }
            }
        }
    }
    EXPECT_EQ(checked, 256);
}

}  // namespace
}  // namespace ZEMO::UI
