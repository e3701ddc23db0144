#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "api/zemo_web_view_window.h"
#include "client/engine_task.h"
#include "core/process_messages.h"
#include "engine/game_host.h"
#include "include/cef_browser.h"
#include "include/cef_client.h"
#include "include/cef_values.h"
#include "support/http_server.h"
#include "support/import_replaced.h"

// The object that a game holds, with the real engine behind it: its own rules, not those of its layer.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

class ShowRecorder : public ZEMOViewDelegate {
public:
    void viewDidShow(IZEMOView*) override {
        ++shown;
        if (onShow) onShow();
    }
    void viewDidClose(IZEMOView*) override { ++closed; }
    int shown = 0, closed = 0;
    std::function<void()> onShow;
};

// A page's process tells nobody else the number of a request: here each has the same.
HRESULT WINAPI knownNumber(GUID* guid) {
    *guid = {0x12345678, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}};
    return S_OK;
}
constexpr char kKnownRequest[] = "{12345678-9ABC-def0-0102-030405060708}";

/// The answer of the page to that request, as it comes in the newest browser.
void answerKnownRequest(GameHost& game) {
    ASSERT_TRUE(runOnEngine(game, [] {
        CefRefPtr<CefBrowser> newest;
        for (int id = 1; id <= 64; ++id) {
            if (const auto browser = CefBrowserHost::GetBrowserByIdentifier(id)) newest = browser;
        }
        ASSERT_TRUE(newest);
        CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(Core::kEvaluateJavascript);
        message->GetArgumentList()->SetString(Core::kEvaluateId, kKnownRequest);
        message->GetArgumentList()->SetString(Core::kEvaluateResult, "42");
        newest->GetHost()->GetClient()->OnProcessMessageReceived(newest, newest->GetMainFrame(), PID_RENDERER, message);
    }));
}

}  // namespace

TEST(Facade, ScriptsResultWhileTheViewIsClosed_CallbackHearsNothingUntilItIsShownAgain) {
    const ImportReplaced numbers("CoCreateGuid", &knownNumber);
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    int results = 0;  // written inside answerKnownRequest's wait only: the page itself never answers
    view->evaluateJavascript("new Promise(() => {})",
                             [&](const std::string& result, const std::string&) { results += result == "42"; });
    answerKnownRequest(game);
    EXPECT_EQ(results, 1);
    view->close();
    answerKnownRequest(game);
    EXPECT_EQ(results, 1);
    view->show();
    answerKnownRequest(game);
    EXPECT_EQ(results, 2);
}

TEST(Facade, NotMadeByItsFactory_ShowThrowsBadWeakPtr) {
    const auto view = std::make_unique<ZEMOWebViewWindow>();
    EXPECT_THROW(view->show(), std::bad_weak_ptr);
}

TEST(Facade, OpenViewDropped_ViewDidCloseIsNotCalled) {
    GameHost game;
    const auto delegate = std::make_shared<ShowRecorder>();
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,x", events);
    view->setViewDelegate(delegate);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    ASSERT_EQ(delegate->shown, 1);
    view.reset();
    EXPECT_EQ(delegate->closed, 0);
}

TEST(Facade, PresentCallbackChangedAfterTheFirstShow_LayerKeepsItsOwn) {
    HttpServer server;
    server.serveHtml("/a", solidPage("#a1a1a1"));
    server.serveHtml("/b", solidPage("#b2b2b2"));
    GameHost game;
    FrameRecorder later;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/a"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFFA1A1A1u; }));
    setUIOsrFramePresentCallback(later.callback());
    view->close();
    view->show();
    view->loadContent(addressItem(server.url("/b")));
    EXPECT_TRUE(game.waitFor("the next page", [&] { return game.frames.pixel(9, 9) == 0xFFB2B2B2u; }));
    EXPECT_EQ(later.frameCount(), 0u);
    view.reset();
    setUIOsrFramePresentCallback(nullptr);
    EXPECT_EQ(later.frameCount(), 0u);
}

TEST(Facade, CloseButtonAskedForAfterTheFirstShow_ThereIsNone) {
    HttpServer server;
    server.serveHtml("/a", solidPage("#a1a1a1"));
    server.serveHtml("/b", solidPage("#b2b2b2"));
    GameHost game({.clientWidth = 400, .clientHeight = 300});
    NavigationRecorder events;
    const auto buttonPixel = [&] { return game.frames.pixel(362, 38); };  // the middle of the button
    {
        auto view = game.makeView(server.url("/a"), events);
        view->show();
        ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFFA1A1A1u; }));
        ASSERT_TRUE(game.waitFor("completion", [&] { return events.count("completed") == 1; }));
        view->setCloseButtonEnabled(true);
        view->close();
        view->show();
        view->loadContent(addressItem(server.url("/b")));
        ASSERT_TRUE(game.waitFor("the next page", [&] { return game.frames.pixel(9, 9) == 0xFFB2B2B2u; }));
        ASSERT_TRUE(game.waitFor("completion", [&] { return events.count("completed") == 2; }));
        game.pass(500ms);
        EXPECT_EQ(buttonPixel(), 0xFFB2B2B2u);
    }
    auto asked = game.makeView(server.url("/b"), events);
    asked->setCloseButtonEnabled(true);
    asked->show();
    EXPECT_TRUE(game.waitFor("the button of a view that was asked in time",
                             [&] { return game.frames.pixel(9, 9) == 0xFFB2B2B2u && buttonPixel() != 0xFFB2B2B2u; }));
}

TEST(Facade, ViewDidShow_ComesAfterTheLoadWasStarted) {
    HttpServer server;
    server.serveHtml("/first", solidPage("#a1a1a1"));
    server.serveHtml("/told", solidPage("#b2b2b2"));
    GameHost game;
    const auto delegate = std::make_shared<ShowRecorder>();
    NavigationRecorder events;
    auto view = game.makeView(server.url("/first"), events);
    view->setViewDelegate(delegate);
    // Before the load was started, this would take its place.
    delegate->onShow = [&] { view->loadContent(addressItem(server.url("/told"))); };
    view->show();
    ASSERT_EQ(delegate->shown, 1);
    ASSERT_TRUE(game.waitFor("a navigation", [&] { return !events.events().empty(); }));
    EXPECT_EQ(events.events().front(), "requested " + server.url("/first"));
}

TEST(Facade, NavigationStarting_MainWindowIsRepainted) {
    GameHost game;
    NavigationRecorder events;
    const auto view = std::make_shared<ZEMOWebViewWindow>();  // never shown: nothing else paints
    const auto paints = [&] { return std::ranges::count(game.gameMessages, UINT{WM_PAINT}, &GameMessage::id); };
    // Windows of other tests come and go on the same desktop, and lay parts of this one bare.
    bool quiet = false;
    for (int i = 0; i < 40 && !quiet; ++i) {
        game.gameMessages.clear();
        game.pass(300ms);
        quiet = paints() == 0;
    }
    ASSERT_TRUE(quiet) << "a window that is painted all the time";
    view->navigationStarting(view);
    EXPECT_TRUE(game.waitFor("WM_PAINT", [&] { return paints() > 0; }, 5s));
}

}  // namespace ZEMO::Test
