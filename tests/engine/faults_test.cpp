#include <gtest/gtest.h>
#include <zemo/ready_content.h>

#include <filesystem>
#include <format>

#include "engine/game_host.h"
#include "engine/helper_game.h"
#include "support/debug_log.h"
#include "support/http_server.h"

// What goes wrong around a page, provoked for real.
namespace ZEMO::Test {
namespace fs = std::filesystem;
namespace {

/// What the end of a view may take on a loaded machine, whatever its page is doing.
constexpr ULONGLONG kCloseMs = 5000;

DWORD pageProcess() {
    for (const DWORD child : childProcesses()) {
        if (childType(child) == "renderer") return child;
    }
    return 0;
}

/// Renames a file of the library's folder for as long as it lives.
class HiddenFile {
public:
    explicit HiddenFile(const wchar_t* name) : file(programDirectory() / name), hidden(file.wstring() + L".hidden") {
        fs::rename(file, hidden);
    }
    ~HiddenFile() {
        std::error_code ignored;
        fs::rename(hidden, file, ignored);
    }

private:
    fs::path file, hidden;
};

/// Every operation of a view but show and close.
void useWithoutPage(UI::IZEMOWebView& view, const std::shared_ptr<int>& answers) {
    const auto post = std::make_shared<UI::ZEMOPostContent>("http://localhost/a", "body");
    const auto count = [answers](auto...) { ++*answers; };
    view.loadPage("start");
    view.loadContent(post);
    view.loadUrl("http://localhost/a", {post});
    view.loadHtml("<p>\xED\x95\x9C</p>", "http://localhost/");
    view.setContentItems({post});
    view.evaluateJavascript("1", count);
    view.addJavascriptCallback("name", count);
    EXPECT_TRUE(view.bindObject("name", "message").starts_with("window.BindObjectAsync"));
    view.goBack();
    view.goForward();
    EXPECT_FALSE(view.canGoBack());
    EXPECT_FALSE(view.canGoForward());
    EXPECT_FALSE(view.deleteCookies(""));
    view.setSize(200, 100);
}

void sendEveryInput() {
    for (const char* action : {"Move", "Down", "Up"}) UI::sendUIRemoteInputEvent("Click", action, "", 10, 10);
    UI::sendUIRemoteInputEvent("Wheel", "Down", "", 10, 10);
    UI::sendUIRemoteInputEvent("Key", "Down", "0x0D", 0, 0);
    UI::sendUIRemoteInputEvent("Message", "", "text", 0, 0);
    UI::sendGameControllerStatus("{}");
    UI::sendGameControllerCustomMsgData("{}");
    UI::processSteamDeckKeyboardClose();
    UI::activeFocusMainWindow();
    const std::u16string text = u"text";
    for (const uint32_t kind : {0u, 1u, 2u}) setImeProcess(kind, &text, nullptr, nullptr);
}

}  // namespace

TEST(Faults, PageProcessKilledTwentyTimes_PageComesBackAndFailureIsReported) {
    HttpServer server;
    server.serveHtml("/", solidPage("#334455"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF334455u; }));
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    DWORD before = 0;
    for (size_t kill = 1; kill <= 20; ++kill) {
        DWORD victim = 0;
        ASSERT_TRUE(game.waitFor("a page process", [&] { return (victim = pageProcess()) != 0 && victim != before; }));
        before = victim;
        ASSERT_TRUE(killProcess(victim)) << kill;
        ASSERT_TRUE(game.waitFor("the failure", [&] { return events.count("failed -600") == kill; })) << kill;
        ASSERT_TRUE(game.waitFor("the page again", [&] { return server.requestCount("/") == kill + 1; })) << kill;
        ASSERT_TRUE(game.waitFor("its completion", [&] { return events.count("completed") >= kill + 1; })) << kill;
    }
    game.frames.forgetFrames();
    EXPECT_TRUE(game.waitFor("a whole frame of the page", [&] {
        for (const Frame& frame : game.frames.frames()) {
            if (frame.wholeFrame()) return game.frames.pixel(9, 9) == 0xFF334455u;
        }
        return false;
    }));
    EXPECT_EQ(events.count("failed -600"), 20u);
}

TEST(Faults, ChildProgramMissing_NothingHangs) {
    const HiddenFile hidden(L"cefsubprocess\\cef.subprocess.exe");
    DebugLogCapture log;
    GameHost game;
    EXPECT_TRUE(log.contains("cef child program is missing: "));
    EXPECT_TRUE(log.contains("cef is not started; no view will show a page\n"));
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->show();
    game.pass(2s);
    EXPECT_EQ(events.count("completed"), 0u);
    const ULONGLONG before = GetTickCount64();
    view->close();
    view.reset();
    EXPECT_LT(GetTickCount64() - before, kCloseMs) << "closing must not wait for a page that never came";
}

TEST(Faults, NoMainWindow_PageIsPaintedAtTheDesktopsSize) {
    HttpServer server;
    server.serveHtml("/", solidPage("#556677"));
    GameHost game({.mainWindow = false});
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF556677u; }));
    EXPECT_EQ(game.frames.lastFrame().width, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(game.frames.lastFrame().height, GetSystemMetrics(SM_CYSCREEN));
}

TEST(Faults, PagesThatDoNotExist_FailuresAreReported) {
    HttpServer server;
    server.serveHtml("/", solidPage("#010203"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("http://127.0.0.1:1/", events);  // nobody listens on port 1
    view->show();
    EXPECT_TRUE(game.waitFor("a refused connection", [&] {
        return events.has("failed -102") || events.has("failed -312");
    })) << "ERR_CONNECTION_REFUSED or ERR_UNSAFE_PORT";
    view->loadPage("no such page");
    EXPECT_TRUE(game.waitFor("a missing file", [&] { return events.has("failed -6"); })) << "ERR_FILE_NOT_FOUND";
    view->loadContent(addressItem(server.url("/nowhere")));
    EXPECT_TRUE(game.waitFor("the server's own answer", [&] { return server.requestCount("/nowhere") == 1; }));
    view->loadContent(addressItem(server.url("/")));
    EXPECT_TRUE(game.waitFor("a good page after them", [&] { return game.frames.pixel(9, 9) == 0xFF010203u; }));
}

TEST(Faults, NavigationAbortedByANewerOne_NoFailure) {
    HttpServer server;
    server.serve("/slow", {.body = "late", .delayMs = 20'000});
    server.serveHtml("/", solidPage("#0a0b0c"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the first page", [&] { return events.has("completed"); }));
    view->loadContent(addressItem(server.url("/slow")));
    ASSERT_TRUE(game.waitFor("the slow request", [&] { return server.requestCount("/slow") == 1; }));
    view->loadContent(addressItem(server.url("/?second")));
    ASSERT_TRUE(game.waitFor("the second page", [&] { return events.count("completed") >= 2; }));
    for (const std::string& event : events.events()) EXPECT_FALSE(event.starts_with("failed")) << event;
}

TEST(Faults, PageThatNeverEnds_CloseReturnsAtOnce) {
    HttpServer server;
    server.serve("/", {.body = "<!doctype html><body>...", .neverEnds = true});
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the request", [&] { return server.requestCount("/") == 1; }));
    game.pass(300ms);
    const ULONGLONG before = GetTickCount64();
    view->close();
    view.reset();
    EXPECT_LT(GetTickCount64() - before, kCloseMs);
    EXPECT_TRUE(game.waitFor("the end of frames", [&] { return game.frames.lastFrame().cleared; }));
}

TEST(Faults, ScriptThatNeverEnds_CloseReturnsAtOnce) {
    HttpServer server;
    server.serveHtml("/", "<!doctype html><script>for(;;){}</script>");
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the request", [&] { return server.requestCount("/") == 1; }));
    game.pass(500ms);
    const ULONGLONG before = GetTickCount64();
    view->close();
    view.reset();
    EXPECT_LT(GetTickCount64() - before, kCloseMs);
    EXPECT_TRUE(game.waitFor("the end of frames", [&] { return game.frames.lastFrame().cleared; }));
}

class NeededFile : public ::testing::TestWithParam<const wchar_t*> {};

TEST_P(NeededFile, Missing_EngineIsNotStartedAndTheGameLives) {
    // In a process of its own, so that an engine that ends it is seen.
    const HiddenFile hidden(GetParam());
    HelperGame game(programDirectory() / L"ZEMOUIFramework.dll", L"return 1000", programDirectory());
    EXPECT_TRUE(game.waitForLine("leaving", 30s)) << game.output();
    EXPECT_TRUE(game.waitForEnd(10s)) << game.output();
    EXPECT_EQ(game.exitCode(), 7u) << game.output();
    const std::string name = fs::path(GetParam()).string();
    EXPECT_NE(game.output().find("log: engine file is missing: " + name + "\n"), std::string::npos) << game.output();
    EXPECT_NE(game.output().find("cef is not started; no view will show a page"), std::string::npos) << game.output();
    EXPECT_EQ(game.output().find("fatal"), std::string::npos) << game.output();
    EXPECT_EQ(game.output().find("cef is initialized"), std::string::npos) << game.output();
}

INSTANTIATE_TEST_SUITE_P(Faults, NeededFile,
                         ::testing::Values(L"chrome_elf.dll", L"icudtl.dat", L"v8_context_snapshot.bin",
                                           L"cefsubprocess\\locales\\en-US.pak"),
                         [](const auto& info) {
                             std::string name = fs::path(info.param).stem().string();
                             std::erase_if(name, [](char c) { return !isalnum(static_cast<unsigned char>(c)); });
                             return name;
                         });

TEST(Faults, ResourcesMissing_LogNamesThemAndPagesAreShown) {
    const HiddenFile hidden(L"resources.pak");
    DebugLogCapture log;
    GameHost game;
    EXPECT_TRUE(log.contains("engine file is missing: resources.pak\n")) << log.dump();
    EXPECT_TRUE(log.contains("cef is initialized.")) << log.dump();
    NavigationRecorder events;
    // An attribute: the engine's own style sheet is missing as well, and what hides a style element's text is in there.
    auto view = game.makeView("data:text/html,<html style='background:rgb(51,68,85)'>", events);
    view->show();
    EXPECT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF334455u; }));
}

TEST(Faults, StaleCacheInUse_CleanUpIsLoggedAndTheStartGoesOn) {
    const fs::path stale = programDirectory() / L"cache99999999";  // of a process that never was
    fs::create_directories(stale);
    const HANDLE held = CreateFileW((stale / L"data").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    {
        DebugLogCapture log;
        GameHost game;
        EXPECT_TRUE(log.contains("cache cleanup failed: ")) << log.dump();
        EXPECT_TRUE(log.contains("remove_all")) << log.dump();
        EXPECT_FALSE(log.contains("cache cleanup failed: %s")) << log.dump();
        NavigationRecorder events;
        auto view = game.makeView("data:text/html,x", events);
        view->show();
        EXPECT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    }
    CloseHandle(held);
    std::error_code ignored;
    fs::remove_all(stale, ignored);
}

TEST(Faults, EngineLibraryMissing_LibraryStartsWithoutPagesAndSaysWhy) {
    const HiddenFile hidden(L"libcef.dll");
    DebugLogCapture log;
    GameHost game;
    EXPECT_TRUE(log.contains("cef could not be loaded"));
    EXPECT_TRUE(log.contains("cef is not started; no view will show a page\n"));
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->show();
    game.pass(500ms);
    EXPECT_TRUE(log.contains("engine file is missing: libcef.dll\n")) << log.dump();
    EXPECT_EQ(game.frames.frameCount(), 0u);
    EXPECT_FALSE(view->canGoBack());
    view->loadHtml("<p>text</p>", "");
    view->close();
    view->show();
    view.reset();
    const auto second = UI::createWebViewDefault();  // its text is what it starts with
    second->loadHtml("<p>text</p>", "");
    second->show();
    second->close();
}

// Each engine function answers 0, null or an empty text then.
TEST(Faults, EngineLibraryMissing_EveryOperationIsHarmless) {
    const HiddenFile hidden(L"libcef.dll");
    GameHost game;
    for (const int mode : {0, 1}) {
        SCOPED_TRACE(mode);
        NavigationRecorder events;
        const auto answers = std::make_shared<int>(0);
        auto view = game.makeView("http://localhost/", events);
        view->setDisplayMode(mode);
        view->setCloseButtonEnabled(true);
        useWithoutPage(*view, answers);
        view->show();
        useWithoutPage(*view, answers);
        sendEveryInput();
        game.resizeClient(300 + mode, 200);
        game.pass(200ms);
        view->close();
        useWithoutPage(*view, answers);
        view.reset();
        EXPECT_EQ(*answers, 0);
        EXPECT_TRUE(events.events().empty()) << events.events().front();
    }
}

}  // namespace ZEMO::Test
