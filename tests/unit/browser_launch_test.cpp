// Launches end to end: real associations, a real shell, real processes that write down how they were started.
#include "browser/browser_launch.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "browser/browser_rules.h"
#include "helpers/loopback_client.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/debug_log.h"

namespace ZEMO::UI {
namespace {

using Test::BrowserStart;
using Test::DebugLogCapture;
using Test::StandInBrowserStage;
using Test::toUtf8;

enum class Window { Ordinary, Private };
enum class Answer { NoCallback, False, True };
enum class Way { Direct, Redirect, PrivateSwitch, Game };
enum Running : unsigned { None = 0, Chrome = 1, Whale = 2, Both = 3 };

struct LaunchCase {
    Window window;
    const wchar_t* defaultBrowser;
    unsigned running;
    int urlBytes;
    bool hasKeyboard;
    Answer answer;
    Way way;
    const char* flag;
};

using enum Window;
using enum Answer;
using enum Way;

// clang-format off
constexpr LaunchCase kChromeLengths[] = {
    // the length decides, at a cold start only
    {Ordinary, L"chrome.exe", None, 40, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", None, 799, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", None, 800, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", None, 801, false, NoCallback, Redirect, ""},
    {Ordinary, L"chrome.exe", None, 802, false, NoCallback, Redirect, ""},
    {Ordinary, L"chrome.exe", Chrome, 799, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", Chrome, 800, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", Chrome, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", Chrome, 802, false, NoCallback, Direct, ""},
    // only the default browser's own process counts
    {Ordinary, L"chrome.exe", Whale, 800, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", Whale, 801, false, NoCallback, Redirect, ""},
    {Ordinary, L"chrome.exe", Whale, 802, false, NoCallback, Redirect, ""},
    {Ordinary, L"chrome.exe", Both, 801, false, NoCallback, Direct, ""},
};

constexpr LaunchCase kChromeSettings[] = {
    // the handheld is never redirected
    {Ordinary, L"chrome.exe", None, 800, true, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", None, 801, true, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", Whale, 801, true, NoCallback, Direct, ""},
    {Ordinary, L"chrome.exe", Chrome, 801, true, NoCallback, Direct, ""},
    // the game's answer comes before everything else
    {Ordinary, L"chrome.exe", None, 40, false, True, Game, ""},
    {Ordinary, L"chrome.exe", None, 801, false, True, Game, ""},
    {Ordinary, L"chrome.exe", None, 801, true, True, Game, ""},
    {Ordinary, L"chrome.exe", None, 40, false, False, Direct, ""},
    {Ordinary, L"chrome.exe", None, 800, false, False, Direct, ""},
    {Ordinary, L"chrome.exe", None, 801, false, False, Redirect, ""},
    {Ordinary, L"chrome.exe", Chrome, 801, false, False, Direct, ""},
    {Ordinary, L"chrome.exe", None, 801, true, False, Direct, ""},
    // the association's own case does not matter
    {Ordinary, L"CHROME.EXE", None, 801, false, NoCallback, Redirect, ""},
};

constexpr LaunchCase kOrdinaryWhale[] = {
    {Ordinary, L"whale.exe", None, 799, false, NoCallback, Direct, ""},
    {Ordinary, L"whale.exe", None, 800, false, NoCallback, Direct, ""},
    {Ordinary, L"whale.exe", None, 801, false, NoCallback, Redirect, ""},
    {Ordinary, L"whale.exe", None, 802, false, NoCallback, Redirect, ""},
    {Ordinary, L"whale.exe", Whale, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"whale.exe", Whale, 802, false, NoCallback, Direct, ""},
    {Ordinary, L"whale.exe", Chrome, 801, false, NoCallback, Redirect, ""},
    {Ordinary, L"whale.exe", Both, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"whale.exe", None, 801, true, NoCallback, Direct, ""},
    {Ordinary, L"whale.exe", None, 801, false, False, Redirect, ""},
    {Ordinary, L"whale.exe", None, 801, false, True, Game, ""},
    {Ordinary, L"Whale.exe", None, 801, false, NoCallback, Redirect, ""},
};

constexpr LaunchCase kOrdinaryOthers[] = {
    {Ordinary, L"firefox.exe", None, 800, false, NoCallback, Direct, ""},
    {Ordinary, L"firefox.exe", None, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"firefox.exe", None, 1200, false, NoCallback, Direct, ""},
    {Ordinary, L"firefox.exe", Chrome, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"firefox.exe", Whale, 801, false, False, Direct, ""},
    {Ordinary, L"firefox.exe", None, 801, false, True, Game, ""},
    {Ordinary, L"msedge.exe", None, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"opera.exe", None, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"brave.exe", None, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"launchwinapp.exe", None, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"rundll32.exe", None, 801, false, NoCallback, Direct, ""},
    {Ordinary, L"chrome2.exe", None, 801, false, NoCallback, Direct, ""},
};

constexpr LaunchCase kPrivateSwitches[] = {
    {Private, L"firefox.exe", None, 40, false, NoCallback, PrivateSwitch, "-private-window"},
    {Private, L"waterfox.exe", None, 40, false, NoCallback, PrivateSwitch, "-private-window"},
    {Private, L"librewolf.exe", None, 40, false, NoCallback, PrivateSwitch, "-private-window"},
    {Private, L"msedge.exe", None, 40, false, NoCallback, PrivateSwitch, "--inprivate"},
    {Private, L"opera.exe", None, 40, false, NoCallback, PrivateSwitch, "--private"},
    {Private, L"chrome.exe", None, 40, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"whale.exe", None, 40, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"brave.exe", None, 40, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"vivaldi.exe", None, 40, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"Firefox.EXE", None, 40, false, NoCallback, PrivateSwitch, "-private-window"},
    // launchers of the system: an ordinary window instead
    {Private, L"launchwinapp.exe", None, 40, false, NoCallback, Direct, ""},
    {Private, L"openwith.exe", None, 40, false, NoCallback, Direct, ""},
    {Private, L"rundll32.exe", None, 40, false, NoCallback, Direct, ""},
    {Private, L"RunDll32.exe", None, 801, false, False, Direct, ""},
};

constexpr LaunchCase kPrivateSettings[] = {
    // never redirected, whatever the length
    {Private, L"chrome.exe", None, 800, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"chrome.exe", None, 801, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"chrome.exe", None, 20000, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"chrome.exe", Chrome, 801, false, NoCallback, PrivateSwitch, "--incognito"},
    {Private, L"whale.exe", None, 802, true, NoCallback, PrivateSwitch, "--incognito"},
    // the game's answer
    {Private, L"chrome.exe", None, 801, false, True, Game, ""},
    {Private, L"firefox.exe", None, 40, false, True, Game, ""},
    {Private, L"firefox.exe", None, 40, false, False, PrivateSwitch, "-private-window"},
    {Private, L"msedge.exe", None, 801, true, False, PrivateSwitch, "--inprivate"},
};
// clang-format on

static_assert(std::size(kChromeLengths) + std::size(kChromeSettings) + std::size(kOrdinaryWhale) +
                  std::size(kOrdinaryOthers) + std::size(kPrivateSwitches) + std::size(kPrivateSettings) ==
              73);

// Signs that the shell or a parser might trip over, then letters up to the length.
std::string addressOf(int bytes, const char* scheme = "https") {
    std::string url = std::string(scheme) + "://example.test/a?b=%41&c=1;d#";
    EXPECT_GE(bytes, static_cast<int>(url.size()));
    while (static_cast<int>(url.size()) < bytes) url += static_cast<char>('a' + url.size() % 26);
    return url;
}

// Starts a launch and waits until its thread has let go of everything it captured: from then on it starts nothing more.
// What the launch looks at is shared with it, so one that hangs is reported and finds it still there.
class Launch {
public:
    struct State {
        const HANDLE ended = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        OpenExternalBrowserCallback callback;
        std::atomic<bool> hasKeyboard{false};
        int callbackCalls = 0;
        std::string urlOfCallback;
        DWORD threadOfCallback = 0;

        State() = default;
        State(const State&) = delete;
        State& operator=(const State&) = delete;
        ~State() { CloseHandle(ended); }
    };
    using Start = void (*)(std::string, BrowserLaunchSettings);

    /// False if the launch did not end; what it has changed may not be read then.
    [[nodiscard]] bool run(Start start, const std::string& url) {
        {
            const std::shared_ptr<void> token(nullptr, [held = state](void*) { SetEvent(held->ended); });
            start(url, {[held = state, token] { return held->callback; },
                        [held = state] { return held->hasKeyboard.load(); }});
        }
        const bool hasEnded = WaitForSingleObject(state->ended, 60000) == WAIT_OBJECT_0;
        EXPECT_TRUE(hasEnded) << "the launch's thread did not end";
        return hasEnded;
    }

    // The callback is a part of the state and held with it: it need not hold it itself.
    void answer(bool value) {
        state->callback = [held = state.get(), value](const std::string& url) {
            ++held->callbackCalls;
            held->urlOfCallback = url;
            held->threadOfCallback = GetCurrentThreadId();
            return value;
        };
    }

    const std::shared_ptr<State> state = std::make_shared<State>();
};

constexpr char kSeparator = '\\';

std::string currentDirectory() { return toUtf8(std::filesystem::current_path().wstring()); }

// The texts of the log; every line must have come by the wide call, since Korean text is cut up by the narrow one.
std::vector<std::string> wideTexts(const DebugLogCapture& log) {
    for (const auto& line : log.lines()) EXPECT_TRUE(line.wide) << line.text;
    return log.texts();
}

void expectRedirect(const std::string& shortAddress, const std::string& url) {
    static const std::regex kPattern("http://127\\.0\\.0\\.1:([0-9]+)/\\?requestId=([0-9a-f]{16})");
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(shortAddress, parts, kPattern)) << shortAddress;
    const auto port = static_cast<unsigned short>(std::stoi(parts[1]));
    const std::string request = Test::browserRequest("/?requestId=" + parts[2].str());
    EXPECT_EQ(Test::exchange(port, request), "HTTP/1.1 302 Found\r\nLocation: " + url + "\r\n\r\n");
    EXPECT_EQ(Test::exchange(port, request), "HTTP/1.1 404 Not Found\r\n\r\n");
}

void runCase(StandInBrowserStage& stage, const LaunchCase& row) {
    stage.makeDefault(row.defaultBrowser);
    if (row.running & Chrome) stage.startRunning(L"chrome.exe");
    if (row.running & Whale) stage.startRunning(L"whale.exe");

    const std::string url = addressOf(row.urlBytes);
    Launch launch;
    launch.state->hasKeyboard = row.hasKeyboard;
    if (row.answer != NoCallback) launch.answer(row.answer == True);
    ASSERT_TRUE(launch.run(row.window == Private ? launchIncognitoBrowser : launchBrowser, url));
    const std::vector<BrowserStart> starts = stage.takeStarts();
    stage.stopRunning();

    EXPECT_EQ(launch.state->callbackCalls, row.answer == NoCallback ? 0 : 1);
    if (row.answer != NoCallback) {
        EXPECT_EQ(launch.state->urlOfCallback, url);
        EXPECT_NE(launch.state->threadOfCallback, GetCurrentThreadId());
    }
    if (row.way == Game) {
        EXPECT_TRUE(starts.empty());
        return;
    }
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].executable, toUtf8(stage.install(row.defaultBrowser)));
    EXPECT_EQ(starts[0].directory, currentDirectory());
    EXPECT_EQ(starts[0].showCommand, SW_SHOWNORMAL);
    switch (row.way) {
        case Direct:
            EXPECT_EQ(starts[0].arguments, std::vector<std::string>{url});
            break;
        case PrivateSwitch:
            EXPECT_EQ(starts[0].arguments, (std::vector<std::string>{row.flag, url}));
            break;
        case Redirect:
            ASSERT_EQ(starts[0].arguments.size(), 1u);
            expectRedirect(starts[0].arguments[0], url);
            break;
        case Game:
            break;
    }
}

template <std::size_t N>
void runTable(const LaunchCase (&rows)[N]) {
    for (const LaunchCase& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        StandInBrowserStage stage;
        runCase(stage, row);
    }
}

TEST(BrowserLaunch, ChromeIsDefault_LongAddressRedirectedAtColdStartOnly) { runTable(kChromeLengths); }

TEST(BrowserLaunch, ChromeIsDefault_GameAnswerAndHandheldComeBeforeTheRedirect) { runTable(kChromeSettings); }

TEST(BrowserLaunch, WhaleIsDefault_LongAddressRedirectedAtColdStartOnly) { runTable(kOrdinaryWhale); }

TEST(BrowserLaunch, AnotherBrowserIsDefault_AddressGoesDirectWhateverItsLength) { runTable(kOrdinaryOthers); }

TEST(BrowserLaunch, PrivateWindow_SwitchOfTheBrowserOrOrdinaryWindow) { runTable(kPrivateSwitches); }

TEST(BrowserLaunch, PrivateWindow_GameAnswerComesFirstAndNoLengthIsRedirected) { runTable(kPrivateSettings); }

TEST(BrowserLaunch, UpperCaseScheme_LookedUpAsHttp) {
    StandInBrowserStage stage;
    stage.setCommand(L"http", L"\"" + stage.install(L"chrome.exe") + L"\" \"%1\"");
    stage.setCommand(L"https", L"\"" + stage.install(L"firefox.exe") + L"\" \"%1\"");

    Launch launch;
    ASSERT_TRUE(launch.run(launchIncognitoBrowser, "HTTPS://x"));
    ASSERT_TRUE(launch.run(launchIncognitoBrowser, "https://x"));
    ASSERT_TRUE(launch.run(launchIncognitoBrowser, "http://x"));
    std::vector<std::vector<std::string>> seen;
    for (const BrowserStart& start : stage.takeStarts()) {
        auto line = start.arguments;
        line.insert(line.begin(), start.executable.substr(start.executable.rfind(kSeparator) + 1));
        seen.push_back(line);
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen, (std::vector<std::vector<std::string>>{{"chrome.exe", "--incognito", "HTTPS://x"},
                                                           {"chrome.exe", "--incognito", "http://x"},
                                                           {"firefox.exe", "-private-window", "https://x"}}));

    // the rule of the long address looks at http as well, whose browser is the cold one
    ASSERT_TRUE(launch.run(launchBrowser, addressOf(801, "HTTPS")));
    const auto redirected = stage.takeStarts();
    ASSERT_EQ(redirected.size(), 1u);
    ASSERT_EQ(redirected[0].arguments.size(), 1u);
    expectRedirect(redirected[0].arguments[0], addressOf(801, "HTTPS"));
}

TEST(BrowserLaunch, LauncherIsDefault_FlagFailureIsLoggedAndOrdinaryWindowOpens) {
    StandInBrowserStage stage;
    stage.makeDefault(L"rundll32.exe");
    DebugLogCapture log;
    ASSERT_TRUE(Launch().run(launchIncognitoBrowser, "https://x/"));
    const auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, std::vector<std::string>{"https://x/"});
    const std::string path = toUtf8(stage.install(L"rundll32.exe"));
    EXPECT_EQ(wideTexts(log), std::vector<std::string>{"openIncognitoBrowser: 사생활 모드 플래그 결정 실패. exePath=[" +
                                                       path + "] exeName=[rundll32.exe]"})
        << log.dump();
}

TEST(BrowserLaunch, NoDefaultBrowser_BothFailuresAreLoggedAndNothingStarts) {
    StandInBrowserStage stage;
    DebugLogCapture log;
    ASSERT_TRUE(Launch().run(launchIncognitoBrowser, "https://x/"));
    EXPECT_EQ(wideTexts(log), (std::vector<std::string>{
                                  "getDefaultBrowserPath: 기본 브라우저 해석 실패 (scheme=https)",
                                  "openIncognitoBrowser: 사생활 모드 플래그 결정 실패. exePath=[] exeName=[]",
                              }))
        << log.dump();
    log.clear();
    ASSERT_TRUE(Launch().run(launchBrowser, "http://x/"));
    EXPECT_EQ(wideTexts(log), std::vector<std::string>{"getDefaultBrowserPath: 기본 브라우저 해석 실패 (scheme=http)"})
        << log.dump();
    EXPECT_TRUE(stage.takeStarts().empty());
}

TEST(BrowserLaunch, PrivateStartFails_IsLoggedAndOrdinaryWindowOpens) {
    StandInBrowserStage stage;
    // the shell starts this name by a command line, but knows no program that opens it as a file
    const std::wstring path = stage.install(L"Browser.dat");
    stage.makeDefault(L"Browser.dat");
    DebugLogCapture log;
    ASSERT_TRUE(Launch().run(launchIncognitoBrowser, "https://x/"));
    const auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].executable, toUtf8(path));
    EXPECT_EQ(starts[0].arguments, std::vector<std::string>{"https://x/"});
    EXPECT_EQ(wideTexts(log), std::vector<std::string>{"openIncognitoBrowser: ShellExecute 실패(31). exe=" +
                                                       toUtf8(path) + " flag=--incognito"})
        << log.dump();
}

TEST(BrowserLaunch, EmptyAddress_IsLoggedWithItsLengthAndNothingStarts) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    DebugLogCapture log;
    ASSERT_TRUE(Launch().run(launchBrowser, ""));
    EXPECT_EQ(wideTexts(log), std::vector<std::string>{"openBrowser: URL 변환 실패로 중단 (length=0)"}) << log.dump();
    log.clear();
    ASSERT_TRUE(Launch().run(launchIncognitoBrowser, ""));
    EXPECT_EQ(wideTexts(log), std::vector<std::string>{"openIncognitoBrowser: URL 변환 실패로 중단 (length=0)"})
        << log.dump();
    EXPECT_TRUE(stage.takeStarts().empty());
}

TEST(BrowserLaunch, InvalidUtf8AndKorean_LaunchGoesOn) {
    StandInBrowserStage stage;
    stage.makeDefault(L"firefox.exe");
    ASSERT_TRUE(Launch().run(launchBrowser, "http://x/\xff?q=한글"));
    auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, std::vector<std::string>{"http://x/\uFFFD?q=한글"});
    ASSERT_TRUE(Launch().run(launchIncognitoBrowser, "http://x/\xff?q=한글"));
    starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, (std::vector<std::string>{"-private-window", "http://x/\uFFFD?q=한글"}));
}

TEST(BrowserLaunch, PrivateAddressWithBlanks_OneArgumentInQuotes) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    ASSERT_TRUE(Launch().run(launchIncognitoBrowser, "http://x/a b  c"));
    const auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, (std::vector<std::string>{"--incognito", "http://x/a b  c"}));
}

TEST(BrowserLaunch, SettingsWithoutQuestions_SystemBrowserOpens) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    launchBrowser(addressOf(801), {});
    ASSERT_TRUE(stage.waitForStarts(1));
    const auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    ASSERT_EQ(starts[0].arguments.size(), 1u);
    expectRedirect(starts[0].arguments[0], addressOf(801));
}

// The caller is not held up by a callback that takes its time, and every call has its own thread.
TEST(BrowserLaunch, CallbackBlocks_CallsReturnAndRunBesideEachOther) {
    StandInBrowserStage stage;
    struct Shared {
        const HANDLE entered = CreateSemaphoreW(nullptr, 0, 10, nullptr);
        const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        const HANDLE ended = CreateSemaphoreW(nullptr, 0, 10, nullptr);
        std::atomic<int> threads{0};
        ~Shared() {
            for (const HANDLE handle : {entered, go, ended}) CloseHandle(handle);
        }
    };
    const auto shared = std::make_shared<Shared>();
    for (int i = 0; i < 4; ++i) {
        const std::shared_ptr<void> token(nullptr, [shared](void*) { ReleaseSemaphore(shared->ended, 1, nullptr); });
        launchBrowser("http://x", {[token, shared] {
                                       return OpenExternalBrowserCallback([shared](const auto&) {
                                           ++shared->threads;
                                           ReleaseSemaphore(shared->entered, 1, nullptr);
                                           WaitForSingleObject(shared->go, 60000);
                                           return true;
                                       });
                                   },
                                   {}});
    }
    for (int i = 0; i < 4; ++i) ASSERT_EQ(WaitForSingleObject(shared->entered, 30000), WAIT_OBJECT_0) << "only " << i;
    EXPECT_EQ(shared->threads, 4);
    SetEvent(shared->go);
    for (int i = 0; i < 4; ++i) ASSERT_EQ(WaitForSingleObject(shared->ended, 30000), WAIT_OBJECT_0) << "only " << i;
    EXPECT_TRUE(stage.takeStarts().empty());
}

// The game's settings are read by the launch itself, so a callback that sets the keyboard is seen by the same launch.
TEST(BrowserLaunch, CallbackChangesKeyboard_SameLaunchSeesIt) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    Launch launch;
    launch.state->callback = [held = launch.state.get()](const std::string&) {
        held->hasKeyboard = true;
        return false;
    };
    ASSERT_TRUE(launch.run(launchBrowser, addressOf(801)));
    const auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, std::vector<std::string>{addressOf(801)});
}

}  // namespace
}  // namespace ZEMO::UI
