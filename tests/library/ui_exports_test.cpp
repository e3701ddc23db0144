#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <limits>

#include "support/debug_log.h"
#include "support/own_window.h"
#include "zemo/ui.h"

// The exports of a library that was loaded but not started: none may need an engine, a window or a layer.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

TEST(UiExports, LanguageUpdated_NothingHappens) {
    const DebugLogCapture log;
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* language : {static_cast<const char*>(nullptr), "", "ko", "no such language"}) {
        updateUILanguage(language);
    }
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

std::atomic<int> imeCalls{0};

TEST(UiExports, ImeStepWithoutALayer_NothingHappens) {
    const DebugLogCapture log;
    imeCalls = 0;
    registerImeEventCallback([](auto...) { ++imeCalls; });
    registerImeCompositionBoundsCallback([](auto...) { ++imeCalls; });
    const std::u16string text = u"한";
    const uint32_t repeat = 2;
    for (uint32_t kind = 0; kind < 4; ++kind) {
        setImeProcess(kind, &text, &repeat, nullptr);
        setImeProcess(kind, nullptr, nullptr, nullptr);
    }
    registerImeEventCallback(nullptr);
    registerImeCompositionBoundsCallback(nullptr);
    EXPECT_EQ(imeCalls, 0);
    EXPECT_EQ(text, u"한");
    EXPECT_EQ(repeat, 2u);
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(UiExports, EventsWithoutALayerOrWindow_NothingHappens) {
    const DebugLogCapture log;
    processSteamDeckKeyboardClose();
    sendGameControllerCustomMsgData("{}");
    sendGameControllerStatus("{}");
    sendUIRemoteInputEvent("mouse", "down", "left", -1, 1 << 30);
    setUISteamOverlayActiveStatus(true);
    setUISteamOverlayActiveStatus(false);
    activeFocusMainWindow();
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(UiExports, GraphicsHookMissing_OffWithoutAMessage) {
    const DebugLogCapture log;
    InitUIGraphicsHook();
    EXPECT_EQ(GetModuleHandleW(L"ZEMOGraphicsHook.dll"), nullptr) << "this test expects that no hook module lies here";
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(UiExports, LocalHtmlPath_BesideTheLibraryWithForwardSlashes) {
    wchar_t path[MAX_PATH] = {};
    ASSERT_NE(GetModuleFileNameW(GetModuleHandleW(L"ZEMOUIFramework.dll"), path, MAX_PATH), 0u);
    std::filesystem::path expected = std::filesystem::path(path).parent_path() / L"resources" / L"html";
    const std::wstring html = getLocalHTMLResourcePath().wstring();
    EXPECT_EQ(html.find(L'\\'), std::wstring::npos);
    std::wstring expectedText = expected.wstring();
    std::ranges::replace(expectedText, L'\\', L'/');
    EXPECT_EQ(html, expectedText);
    EXPECT_TRUE(std::filesystem::is_directory(html)) << "its page tree lies there";
}

TEST(UiExports, Factories_GiveANewObjectEachTime) {
    const auto view = createWebViewDefault();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view.use_count(), 1);
    EXPECT_NE(createWebViewDefault(), view);
    const auto dialog = createFileSelectViewDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog.use_count(), 1);
}

struct ShownAndClosed : ZEMOViewDelegate {
    int shown = 0;
    int closed = 0;
    void viewDidShow(IZEMOView*) override { ++shown; }
    void viewDidClose(IZEMOView*) override { ++closed; }
};

bool isOwnWindowGoneIn(DWORD milliseconds) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    while (findViewWindow() && GetTickCount64() < end) Sleep(5);
    return !findViewWindow();
}

// The engine is not there, so neither is a browser; the view itself goes through its states.
TEST(UiExports, ViewShownWithoutAnEngine_NoPageAndNoCrash) {
    for (const int mode : {0, 1}) {
        const auto observer = std::make_shared<ShownAndClosed>();
        auto view = createWebViewDefault();
        view->setViewDelegate(observer);
        view->setDisplayMode(mode);
        view->setSize(std::numeric_limits<float>::quiet_NaN(), 3e38f);  // nobody's size, and no reason to crash
        view->setSize(64, 48);
        view->loadPage("start");
        view->show();
        EXPECT_FALSE(view->canGoBack());
        view->loadUrl("https://x", {});
        view->evaluateJavascript("1", [](std::string, std::string) {});
        view->goBack();
        view->close();
        EXPECT_EQ(observer->shown, 1);
        EXPECT_EQ(observer->closed, 1);
        EXPECT_EQ(findViewWindow() != nullptr, mode == 1) << "an own window stays after close";
        view.reset();
        EXPECT_TRUE(isOwnWindowGoneIn(20'000)) << "nobody else would close it";
    }
}

}  // namespace
}  // namespace ZEMO::Test
