#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <iostream>
#include <numeric>
#include <random>
#include <semaphore>
#include <thread>

#include "engine/game_host.h"

// Every export from eight threads at once, also where the headers ask for one thread, while views open and close: a
// game that does so may get strange answers, and must neither crash nor hang nor lose the engine.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using Core::StringUtil;
namespace Misc = ZEMO::Platform::Misc;

constexpr int kThreads = 8;
constexpr auto kStressTime = 12s;

/// Calls that the engine's threads work off later, in order, the start of the next view behind them: without a limit
/// the test would measure how many of them eight threads can ask for in that time.
constexpr unsigned kMostForTheEngine = 2000;

constexpr char kPage[] =
    "data:text/html,<body style='margin:0;background:rgb(68,85,102)'><input autofocus><script>let n=0;(function f(){"
    "document.body.style.paddingLeft=n++%2550+'px';requestAnimationFrame(f)})()</script>";

void noImeEvent(int, int, int, int) {}
void noBounds(int, const void*, uint32_t) {}

/// What the threads share: one view that stays open, and leave for so many page processes at a time.
struct Common {
    std::shared_ptr<IZEMOWebView> openView;
    std::counting_semaphore<3> pages{3};
    std::atomic<unsigned> views = 0;
    FrameRecorder frames;
};

struct Call {
    const char* name;
    void (*make)(Common& common, unsigned number);
    unsigned oneIn = 1;  ///< chosen, made only each so many times: what costs a page process or seconds
    unsigned most = ~0u;
};

void useOpenView(Common& common, unsigned number) {
    IZEMOWebView& view = *common.openView;
    const std::string name = "object" + std::to_string(number % 5);
    for (int i = 0; i < 10; ++i) view.evaluateJavascript("1+1", [](std::string, std::string) {});
    view.addJavascriptCallback(name, [](std::string) {});
    view.bindObject(name, "text");
    view.setContentItems({addressItem("https://x.test/")});
    view.reserved("text");
    view.deleteCookies("https://x.test/");
    if (view.canGoBack()) view.goBack();
    if (view.canGoForward()) view.goForward();
}

/// A view of the calling thread's own, from its making to its end, maybe before its browser comes.
void ownView(Common& common, unsigned number) {
    if (!common.pages.try_acquire()) return;
    {
        const auto view = createWebViewDefault();
        view->setSize(320, 200);
        view->setDisplayMode(0);
        view->setCloseButtonEnabled(number % 2 == 0);
        view->loadContent(addressItem(kPage));
        view->showAndWait();
        view->evaluateJavascript("1", [](std::string, std::string) {});
        Sleep(number % 400);
        view->loadHtml("<p>text</p>", "");
        view->loadPage("start");
        view->loadUrl("start", {addressItem("https://x.test/")});
        view->close();
    }
    ++common.views;
    common.pages.release();
}

void testView(Common& common, unsigned) {
    if (!common.pages.try_acquire()) return;
    createWebViewTEST();
    common.pages.release();
}

void fileDialog(Common&, unsigned number) {
    const auto dialog = createFileSelectViewDialog();
    dialog->setFileExtensions({"png", "txt"});
    dialog->setMultiSelect(number % 2 == 0);
    dialog->close();
}

void useUrl(Common&, unsigned number) {
    Core::URL url("https://a.test:1/b?c=d#e");
    url.addQueryParameter("number", std::to_string(number));
    url.addPathSegment("f");
    url.setHost("g.test");
    url.setPort("2");
    url.setScheme("http");
    Core::URL copy(url);
    copy = url;
    EXPECT_TRUE(copy.isEqual(url) && copy.isEqual(url.toString()) && copy.isEqual(std::string_view(url.getUrl())));
    EXPECT_EQ(copy.getQueryParameter("number"), std::to_string(number));
    EXPECT_EQ(copy.getScheme() + copy.getHost() + copy.getPort() + copy.getFragment(), "httpg.test2e");
    EXPECT_FALSE(copy.getPath().empty() || copy.getQuery().empty() || copy.getQueryParameters().empty() ||
                 copy.toEncodedString().empty());
}

void useText(Common&, unsigned number) {
    const std::string text = "Text " + std::to_string(number);
    const std::vector<unsigned char> bytes(text.begin(), text.end());
    EXPECT_EQ(StringUtil::base64DecodeString(StringUtil::base64Encode(text)), text);
    EXPECT_EQ(StringUtil::base64DecodeVector(StringUtil::base64Encode(bytes)), bytes);
    EXPECT_EQ(StringUtil::base64URLSafeDecode(StringUtil::base64URLSafeEncode(text)), text);
    EXPECT_EQ(StringUtil::hexStrToByte(StringUtil::byteToHexStr(bytes)), bytes);
    EXPECT_EQ(StringUtil::hexStrToStr(StringUtil::StrToHexStr(text)), text);
    EXPECT_EQ(StringUtil::splitString(text, ' ').size(), 2u);
    std::string changed = " " + text + " ";
    StringUtil::trimString(changed);
    StringUtil::changeLetterCase(changed, StringUtil::LetterCase::Lower);
    EXPECT_TRUE(StringUtil::isEqualCaseInSensitive(changed, text));
    EXPECT_TRUE(StringUtil::isEqual(changed, text, Core::StringSensitive::Insensitive));
    StringUtil::removeCharacter(changed, ' ');
    StringUtil::replaceRangeBetweenStrings(changed, "t", "t", "x", 0);
    EXPECT_EQ(StringUtil::replaceAll(text, "Text", ""), " " + StringUtil::longlongToString(number));
    EXPECT_FALSE(StringUtil::isEmptyString(StringUtil::generateUUID()));
    EXPECT_EQ(StringUtil::getRandomData(16).size() + StringUtil::getUrlSafeRandomString(16).size(), 48u);
}

void useContainers(Common&, unsigned number) {
    Core::JsonContainer object;
    object.values["number"] = number;
    Core::JsonArrayContainer list;
    list.values.emplace_back(object);
    Core::JsonArrayContainer copy(list);
    copy = std::move(list);
    Core::JsonContainer other(object);
    other = object;
    EXPECT_EQ(std::any_cast<unsigned>(other.values.at("number")), number);
    EXPECT_EQ(copy.values.size(), 1u);
}

/// What asks the system of the user may throw where it does not answer.
void askTheRuntime(Common&, unsigned number) {
    constexpr std::array<void (*)(), 4> kQuestions{[] { Misc::getAdvertisingId(); },
                                                   [] { Misc::getIsLimitAdTracking(); }, [] { Misc::getCountry(); },
                                                   [] { Misc::getLanguage(); }};
    try {
        kQuestions[number % kQuestions.size()]();
    } catch (...) {
    }
}

void askTheMachine(Common&, unsigned) {
    EXPECT_EQ(Misc::getPlatform() + Misc::getMcc() + Misc::getMnc(), "W");
    EXPECT_FALSE(Misc::getDeviceName().empty() || Misc::getUserName().empty() || Misc::getCPUModel().empty());
    EXPECT_FALSE(Misc::getCpuType().empty() || Misc::getOsVersion().empty());
    Misc::getAppVersion();
    Misc::getDeviceModel();
    Misc::getGPUModelList();
    EXPECT_GT(Misc::getPhysicallyInstalledSystemMemory(), 0);
    EXPECT_GT(Misc::getPhysicallyInstalledSystemMemoryGB(), 0.0);
    EXPECT_GT(Misc::getWindowWidth(), 0u);
    EXPECT_GT(Misc::getWindowHeight(), 0u);
    EXPECT_TRUE(Misc::getIsLandscapeWindow());
}

void imeStep(Common&, unsigned number) {
    const std::u16string text = u"가나";
    const uint32_t count = number % 3;
    setImeProcess(number % 4, &text, &count, nullptr);
    setImeProcess(0, nullptr, nullptr, nullptr);
}

void remoteInput(Common&, unsigned number) {
    sendUIRemoteInputEvent("Click", number % 2 ? "Down" : "Up", "", 10, 10);
    sendUIRemoteInputEvent("Touch", "Move", "", 20, 20);
    sendUIRemoteInputEvent("Wheel", "Down", "", 10, 10);
    sendUIRemoteInputEvent("Key", number % 2 ? "Down" : "Up", "0x41", 0, 0);
    sendUIRemoteInputEvent("Message", "", "text", 0, 0);
}

void copyHelpers(Common&, unsigned) {
    LocaleSetter locale;
    locale = LocaleSetter(locale);
    Core::Platform platform;
    platform = Core::Platform(platform);
    const Core::Platform same;
    platform = same;
}

bool gameOpens(const std::string&) { return true; }

constexpr Call kCalls[] = {
    {"the open view", useOpenView, 1, kMostForTheEngine},
    {"a view", ownView, 10},
    {"createWebViewTEST", testView, 400},
    {"file dialog", fileDialog},
    {"URL", useUrl},
    {"StringUtil", useText},
    {"containers", useContainers},
    {"the machine", askTheMachine, 20},
    {"the runtime", askTheRuntime, 20},
    {"getProcessorID", [](Common&, unsigned) { EXPECT_EQ(Misc::getProcessorID("no such.exe"), 0); }, 20},
    {"GetDynamicPort", [](Common&, unsigned) { EXPECT_FALSE(Misc::GetDynamicPort().empty()); }, 20},
    {"ipcOpen", [](Common&, unsigned) { Misc::ipcOpen([](std::string) {}); }},
    {"ipcSend", [](Common&, unsigned) { Misc::ipcSend(std::to_string(GetCurrentProcessId()), "text"); }, 20},
    {"setImeProcess", imeStep, 1, kMostForTheEngine},
    {"sendUIRemoteInputEvent", remoteInput, 20},
    {"operators", copyHelpers},
    {"setUTF8PreservePreSettedLocale", [](Common&, unsigned) { LocaleSetter().setUTF8PreservePreSettedLocale(); }, 20},
    {"InitUILibrary", [](Common&, unsigned) { InitUILibrary(); }, 50},
    {"InitUILibraryTEST", [](Common&, unsigned) { EXPECT_EQ(InitUILibraryTEST(), -1); }, 50},
    {"InitUIGraphicsHook", [](Common&, unsigned) { InitUIGraphicsHook(); }, 50},
    {"activeFocusMainWindow", [](Common&, unsigned) { activeFocusMainWindow(); }, 50},
    {"getLocalHTMLResourcePath", [](Common&, unsigned) { EXPECT_FALSE(getLocalHTMLResourcePath().empty()); }},
    {"openBrowser", [](Common&, unsigned) { openBrowser(Core::URL("https://x.test/")); }, 50},
    {"openIncognitoBrowser", [](Common&, unsigned) { openIncognitoBrowser(Core::URL("https://x.test/")); }, 50},
    {"processSteamDeckKeyboardClose", [](Common&, unsigned) { processSteamDeckKeyboardClose(); }, 1, kMostForTheEngine},
    {"sendGameControllerCustomMsgData", [](Common&, unsigned) { sendGameControllerCustomMsgData("{}"); }, 20},
    {"sendGameControllerStatus",
     [](Common&, unsigned number) { sendGameControllerStatus(std::string(number % 99, ' ')); }},
    {"setOpenGLSleepTime", [](Common&, unsigned number) { setOpenGLSleepTime(number % 3); }},
    {"setUIEngineOsrRenderEnabled", [](Common&, unsigned) { setUIEngineOsrRenderEnabled(1); }},
    {"setUIGameControllerScriptUseCallback",
     [](Common&, unsigned) { setUIGameControllerScriptUseCallback([](int) {}); }},
    {"setUIOpenExternalBrowserCallback", [](Common&, unsigned) { setUIOpenExternalBrowserCallback(gameOpens); }},
    {"setUIOsrFramePresentCallback",
     [](Common& common, unsigned) { setUIOsrFramePresentCallback(common.frames.callback()); }},
    {"setUIShowSteamDeckKeyboardCallback", [](Common&, unsigned) { setUIShowSteamDeckKeyboardCallback([](int) {}); }},
    {"setUISteamOverlayActiveStatus", [](Common&, unsigned number) { setUISteamOverlayActiveStatus(number % 2 == 0); }},
    {"updateUILanguage", [](Common&, unsigned) { updateUILanguage("fr-FR"); }},
    {"registerImeEventCallback",
     [](Common&, unsigned number) { registerImeEventCallback(number % 2 ? noImeEvent : nullptr); }},
    {"registerImeCompositionBoundsCallback",
     [](Common&, unsigned number) { registerImeCompositionBoundsCallback(number % 2 ? noBounds : nullptr); }},
    {"setUseExternalTsfIme", [](Common&, unsigned number) { setUseExternalTsfIme(number % 2); }},
};

using Counts = std::array<std::atomic<unsigned>, std::size(kCalls)>;

/// Most of the time all threads are at the same export, which is where they meet; the rest is mixed.
void callAtRandom(Common& common, unsigned seed, const std::atomic<bool>& stop, Counts& made) {
    std::minstd_rand random(seed);
    while (!stop) {
        const size_t favourite = GetTickCount64() / 150 % std::size(kCalls);
        const size_t chosen = random() % 8 ? favourite : random() % std::size(kCalls);
        const unsigned number = random();
        if (number / 8 % kCalls[chosen].oneIn != 0 || made[chosen] >= kCalls[chosen].most) continue;
        kCalls[chosen].make(common, number);
        ++made[chosen];
    }
}

void resetSettings() {
    setUIGameControllerScriptUseCallback(nullptr);
    setUIShowSteamDeckKeyboardCallback(nullptr);
    setUISteamOverlayActiveStatus(false);
    registerImeEventCallback(nullptr);
    registerImeCompositionBoundsCallback(nullptr);
    setUseExternalTsfIme(0);
}

}  // namespace

TEST(Stress, EveryExportFromEightThreadsForTwelveSeconds_NextViewShowsItsPage_Foreground) {
    GameHost game;
    NavigationRecorder events;
    Common common;
    setUIOpenExternalBrowserCallback(gameOpens);
    Misc::ipcOpen([](std::string) {});  // of a thread with a window that dispatches
    Misc::getDeviceModel();             // the first calls of these two must not race
    Misc::getGPUModelList();
    common.openView = game.makeView(kPage, events);
    common.openView->show();
    ASSERT_TRUE(game.waitFor("the open view's page", [&] { return events.has("completed"); }));

    Counts made{};
    std::atomic<bool> stop = false;
    std::atomic<int> running = kThreads;
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            callAtRandom(common, thread + 1, stop, made);
            --running;
        });
    }
    const auto begin = std::chrono::steady_clock::now();
    const auto allCalled = [&made] {
        return std::all_of(std::begin(made), std::end(made), [](const auto& count) { return count > 0; });
    };
    const auto goesOn = [&] {  // a crowded machine needs longer to come to each call
        const auto elapsed = std::chrono::steady_clock::now() - begin;
        return elapsed < kStressTime || (elapsed < 4 * kStressTime && !allCalled());
    };
    while (goesOn()) {
        auto view = game.makeView(kPage, events);
        view->show();
        game.pass(300ms);
        view->close();
    }
    stop = true;
    ASSERT_TRUE(game.waitFor("the threads' end", [&] { return running == 0; }, 60s));
    for (std::thread& thread : threads) thread.join();
    for (size_t i = 0; i < std::size(kCalls); ++i) EXPECT_GT(made[i], 0u) << kCalls[i].name << " was never called";
    std::cerr << std::accumulate(made.begin(), made.end(), size_t{0}) << " calls, " << common.views << " views\n";
    common.openView->close();
    resetSettings();

    setUIOsrFramePresentCallback(game.frames.callback());
    auto next = game.makeView("data:text/html,<body style='background:rgb(17,34,51)'>", events);
    next->show();
    const ULONGLONG shown = GetTickCount64();
    EXPECT_TRUE(game.waitFor("the next view's page", [&] { return game.frames.pixel(300, 190) == 0xFF112233u; }));
    std::cerr << "the next view's page after " << GetTickCount64() - shown << " ms\n";
}

}  // namespace ZEMO::Test
