// What the shell is asked, and what its answer leads to. Its answers can't be chosen here, so this program's import of
// it is replaced; the associations are real.
#include <gtest/gtest.h>
#include <windows.h>

#include <shellapi.h>

#include <string>
#include <vector>

#include "browser/browser_launch.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace {

using Test::DebugLogCapture;
using Test::ImportReplaced;
using Test::StandInBrowserStage;
using Test::toUtf8;

struct Asked {
    HWND window;
    std::string verb, file, parameters, directory;
    int show;
    bool operator==(const Asked&) const = default;
};
std::vector<Asked> asked;
INT_PTR answer = 0;

std::string textOf(const wchar_t* text) { return text ? toUtf8(text) : "(null)"; }

HINSTANCE WINAPI askedOnly(HWND window, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                           const wchar_t* directory, INT show) {
    asked.push_back({window, textOf(verb), textOf(file), textOf(parameters), textOf(directory), show});
    return reinterpret_cast<HINSTANCE>(answer);
}

class BrowserShell : public testing::Test {
protected:
    BrowserShell() {
        asked.clear();
        stage.makeDefault(L"chrome.exe");
        path = toUtf8(stage.install(L"chrome.exe"));
    }
    static Asked direct() { return {nullptr, "open", "https://x/", "(null)", "(null)", SW_SHOWNORMAL}; }
    Asked privately() const { return {nullptr, "open", path, "--incognito \"https://x/\"", "(null)", SW_SHOWNORMAL}; }

    StandInBrowserStage stage;
    std::string path;
    const ImportReplaced shell{"ShellExecuteW", &askedOnly};
    const DebugLogCapture log;
};

TEST_F(BrowserShell, PrivateStartAnswersAbove32_BrowserHasStarted) {
    answer = 33;
    openIncognitoBrowserProcedure("https://x/");
    EXPECT_EQ(asked, std::vector<Asked>{privately()});
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST_F(BrowserShell, PrivateStartAnswersAtMost32_LoggedAndOrdinaryWindowAskedFor) {
    for (const INT_PTR refusal : {0, 2, 31, 32}) {
        answer = refusal;
        openIncognitoBrowserProcedure("https://x/");
        EXPECT_EQ(asked, (std::vector<Asked>{privately(), direct()})) << refusal;
        asked.clear();
        EXPECT_EQ(log.texts().back(), "openIncognitoBrowser: ShellExecute 실패(" + std::to_string(refusal) +
                                          "). exe=" + path + " flag=--incognito");
    }
    EXPECT_EQ(log.lines().size(), 4u) << log.dump();
    for (const auto& line : log.lines()) EXPECT_TRUE(line.wide) << line.text;
}

TEST_F(BrowserShell, OrdinaryWindow_AnswerIsNotLookedAt) {
    for (const INT_PTR value : {0, 32, 33}) {
        answer = value;
        openBrowserProcedure("https://x/", {});
        EXPECT_EQ(asked, std::vector<Asked>{direct()}) << value;
        asked.clear();
    }
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

}  // namespace
}  // namespace ZEMO::UI
