#include <gtest/gtest.h>

#include <future>

#include "client/client_view.h"
#include "client/engine_task.h"
#include "core/process_messages.h"
#include "core/process_state.h"
#include "engine/cef_module.h"
#include "engine/client/script/javascript_processor.h"
#include "engine/engine_thread.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"
#include "layers/layer_manager.h"
#include "support/debug_log.h"
#include "support/http_server.h"
#include "support/own_window.h"
#include "support/shared_message.h"

// The callbacks of the browser client, made with the engine's real objects on the engine's real thread.
namespace ZEMO::Test {
namespace {

struct ImeEvent {
    int kind, a, b;
    friend bool operator==(const ImeEvent&, const ImeEvent&) = default;
};
std::vector<ImeEvent>& imeEvents() {
    static std::vector<ImeEvent> events;
    return events;
}
void recordImeEvent(int kind, int, int a, int b) { imeEvents().push_back({kind, a, b}); }

/// A real browser on a loaded page, and messages as a page's process would send them.
class Callbacks : public ::testing::Test {
protected:
    Callbacks() : view(game, "data:text/html,x") {
        ready = game.waitFor("the page", [&] { return view.events->has("completed"); });
        view.events->forget();
        browser = view.adapter->getBrowser();
    }
    ~Callbacks() override {
        registerImeEventCallback(nullptr);
        imeEvents().clear();
    }
    void SetUp() override { ASSERT_TRUE(ready); }

    bool receive(const char* name, const std::function<void(CefRefPtr<CefListValue>)>& fill) {
        CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(name);
        fill(message->GetArgumentList());
        return deliver(message);
    }
    bool deliver(const CefRefPtr<CefProcessMessage>& message) {
        bool answer = false;
        runOnEngine(game, [&] {
            answer = view.adapter->OnProcessMessageReceived(browser, browser->GetMainFrame(), PID_RENDERER, message);
        });
        return answer;
    }
    /// What was posted to the game's window under this number since the last call. One post ends the wait.
    std::vector<GameMessage> posted(UINT id) {
        std::vector<GameMessage> found;
        game.waitFor("the posted message", [&] {
            std::erase_if(game.fetchedMessages, [&](const GameMessage& message) {
                if (message.id == id) found.push_back(message);
                return message.id == id;
            });
            return !found.empty();
        });
        return found;
    }

    GameHost game;
    ClientView view;
    CefRefPtr<CefBrowser> browser;
    bool ready = false;
};

}  // namespace

TEST_F(Callbacks, EvaluationAnswer_CallsTheWaitingFunctionWithElementsTwoAndThree) {
    std::vector<std::string> got;
    const auto processor = view.adapter->getJavascriptProcessor();
    processor->flushQueuedEvaluations();
    // A script that the page itself never answers.
    processor->evaluate("{id}", "new Promise(() => {})",
                        [&](std::string first, std::string second) { got = {first, second}; });
    EXPECT_TRUE(receive("evaluateJavascript", [](auto list) {
        list->SetString(0, "{id}");
        list->SetString(1, "ignored");
        list->SetString(2, "결과");
        list->SetString(3, "오류");
    }));
    EXPECT_EQ(got, (std::vector<std::string>{"결과", "오류"}));
}

TEST_F(Callbacks, EvaluationAnswer_UnknownIdOrNoArguments_Ignored) {
    EXPECT_TRUE(receive("evaluateJavascript", [](auto list) { list->SetString(0, "{none}"); }));
    EXPECT_TRUE(receive("evaluateJavascript", [](auto) {}));
}

TEST_F(Callbacks, MessageWithoutAListOfArguments_TakenWithoutEffect) {
    registerImeEventCallback(&recordImeEvent);
    for (const char* name : {Core::kEvaluateJavascript, Core::kBindObjectAsync, Core::kImePasswordFieldFocus}) {
        const CefRefPtr<CefProcessMessage> message = makeSharedMessage(name);
        ASSERT_TRUE(message) << name;
        ASSERT_FALSE(message->GetArgumentList()) << name;
        EXPECT_TRUE(deliver(message)) << name;
    }
    EXPECT_FALSE(ZEMO::UI::isPasswordFieldFocused());
    EXPECT_TRUE(imeEvents().empty());
}

TEST_F(Callbacks, BindObject_CallbackGetsTheStoredMessageOnlyWhenBothAreThere) {
    const auto processor = view.adapter->getJavascriptProcessor();
    std::vector<std::string> got;
    processor->addObjectCallback("gift", [&](std::string message) { got.push_back(message); });
    const auto invoke = [&] { return receive("BindObjectAsync", [](auto list) { list->SetString(0, "gift"); }); };
    EXPECT_TRUE(invoke());
    EXPECT_TRUE(got.empty()) << "no message is stored yet";
    processor->addObjectMessage("gift", "first");
    processor->addObjectMessage("gift", "second");
    processor->addObjectCallback("gift", [](std::string) { ADD_FAILURE() << "the first registration stays"; });
    EXPECT_TRUE(invoke());
    EXPECT_EQ(got, std::vector<std::string>{"first"});
}

TEST_F(Callbacks, MessageNames_ComparedExactly) {
    for (const char* name : {"evaluatejavascript", "BindObjectasync", "imePasswordFieldFocus ", "other"}) {
        EXPECT_FALSE(receive(name, [](auto) {})) << name;
    }
}

TEST_F(Callbacks, PasswordFieldFocus_FlagWindowMessageAndImeEvent) {
    registerImeEventCallback(&recordImeEvent);
    for (const bool focused : {true, false}) {
        imeEvents().clear();
        EXPECT_TRUE(receive("imePasswordFieldFocus", [&](auto list) { list->SetBool(0, focused); }));
        EXPECT_EQ(ZEMO::UI::isPasswordFieldFocused(), focused);
        EXPECT_EQ(imeEvents(), (std::vector<ImeEvent>{{3, focused ? 1 : 0, 0}}));
        // The window's thread turns the system's text input off for the field, and on again after it.
        EXPECT_EQ(posted(1229), (std::vector<GameMessage>{{1229, focused ? 0u : 1u, 0}})) << "focused: " << focused;
    }
    registerImeEventCallback(nullptr);
    EXPECT_TRUE(receive("imePasswordFieldFocus", [](auto list) { list->SetBool(0, true); }));
    ZEMO::UI::setPasswordFieldFocused(false);
}

TEST_F(Callbacks, TextSelection_ImeEventOneWithItsRange) {
    registerImeEventCallback(&recordImeEvent);
    runOnEngine(game, [&] { view.adapter->OnTextSelectionChanged(browser, "abc", CefRange(3, 8)); });
    EXPECT_EQ(imeEvents(), (std::vector<ImeEvent>{{1, 3, 8}}));
}

TEST_F(Callbacks, LoadErrors_AbortedIsSilentCacheMissLoadsAgainOthersAreReported) {
    HttpServer server;
    server.serveHtml("/again", solidPage("#123"));
    const auto error = [&](cef_errorcode_t code) {
        runOnEngine(game, [&] {
            view.adapter->OnLoadError(browser, browser->GetMainFrame(), code, "text", server.url("/again"));
        });
    };
    error(ERR_ABORTED);
    EXPECT_TRUE(view.events->events().empty());
    error(ERR_CACHE_MISS);
    EXPECT_TRUE(game.waitFor("the second try", [&] { return server.requestCount("/again") == 1; }));
    EXPECT_TRUE(game.waitFor("its completion", [&] { return view.events->has("completed"); }));
    EXPECT_FALSE(view.events->has("failed -400"));
    error(ERR_FAILED);
    EXPECT_TRUE(view.events->has("failed -2"));
}

TEST_F(Callbacks, ProgramExits_BrowserIsGoneAndNoCallbackOfTheGameComes) {
    browser = nullptr;
    ZEMO::UI::CefModule::stopAtExit();
    EXPECT_FALSE(view.adapter->getBrowser());
    EXPECT_TRUE(view.events->events().empty()) << "closing at the exit is no event of the page";
    ZEMO::UI::engineThreadId = GetCurrentThreadId();  // the engine's is held at the exit: this one stands in for it
    view.adapter->OnLoadStart(nullptr, nullptr, TT_LINK);
    view.adapter->OnLoadError(nullptr, nullptr, ERR_FAILED, "text", "http://127.0.0.1/");
    EXPECT_TRUE(view.events->events().empty());
    EXPECT_FALSE(view.adapter->OnProcessMessageReceived(nullptr, nullptr, PID_RENDERER, nullptr));
    game.frames.forgetFrames();
    const auto late = game.makeView("data:text/html,x", *view.events);
    late->show();  // a thread of the game that does not know of the exit
    game.pass(300ms);
    EXPECT_EQ(game.frames.frameCount(), 0u);
    EXPECT_TRUE(view.events->events().empty());
}

TEST(CallbacksAtExit, ViewInAnOwnWindow_WindowStaysAndNobodyIsToldOfAClose) {
    struct Closed : ZEMO::UI::ZEMOViewDelegate {
        void viewDidShow(ZEMO::UI::IZEMOView*) override {}
        void viewDidClose(ZEMO::UI::IZEMOView*) override { ++count; }
        std::atomic<int> count{0};
    };
    GameHost game;
    NavigationRecorder events;
    const auto closed = std::make_shared<Closed>();
    auto view = game.makeView("data:text/html,x", events);
    view->setDisplayMode(1);
    view->setSize(300, 200);
    view->setViewDelegate(closed);
    view->show();
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    ZEMO::UI::CefModule::stopAtExit();
    game.pass(300ms);
    EXPECT_TRUE(IsWindow(own));
    EXPECT_EQ(closed->count, 0);
}

TEST_F(Callbacks, KeyboardRequested_GamesKeyboardByTypeOnceUntilItCloses) {
    std::vector<int> asked;
    auto& manager = ZEMO::UI::ZEMOMultiLayerManager::instance();
    const auto request = [&](cef_text_input_mode_t mode) {
        runOnEngine(game, [&] { view.adapter->OnVirtualKeyboardRequested(browser, mode); });
    };
    request(CEF_TEXT_INPUT_MODE_DEFAULT);  // no callback is set
    EXPECT_FALSE(manager.getSteamDeckKeyboardShown());
    ZEMO::UI::setUIShowSteamDeckKeyboardCallback([&](int type) { asked.push_back(type); });
    request(CEF_TEXT_INPUT_MODE_NONE);
    EXPECT_TRUE(asked.empty());
    struct Case {
        cef_text_input_mode_t mode;
        int type;
    };
    for (const Case& each : {Case{CEF_TEXT_INPUT_MODE_EMAIL, 2}, Case{CEF_TEXT_INPUT_MODE_NUMERIC, 3},
                             Case{CEF_TEXT_INPUT_MODE_DEFAULT, 0}, Case{CEF_TEXT_INPUT_MODE_TEL, 0}}) {
        asked.clear();
        request(each.mode);
        request(each.mode);  // it is shown already
        EXPECT_EQ(asked, std::vector<int>{each.type}) << each.mode;
        EXPECT_TRUE(manager.getSteamDeckKeyboardShown());
        request(CEF_TEXT_INPUT_MODE_NONE);
        EXPECT_TRUE(manager.getSteamDeckKeyboardShown()) << "only the game says that its keyboard is gone";
        ZEMO::UI::processSteamDeckKeyboardClose();
        EXPECT_FALSE(manager.getSteamDeckKeyboardShown());
    }
    ZEMO::UI::setUIShowSteamDeckKeyboardCallback(nullptr);
}

TEST_F(Callbacks, DelegateGone_EventsAreLoggedGoNowhereAndEveryNavigationIsCancelled) {
    DebugLogCapture log;
    view.events.reset();
    runOnEngine(game, [&] {
        view.adapter->navigationStarting();
        view.adapter->navigationFailed(-2);
        view.adapter->navigationCompleted();
        EXPECT_TRUE(view.adapter->navigationRequested("http://anything/"));
    });
    for (const char* line : {"navigationStarting\n", "navigationFailed: -2\n", "navigationCompleted\n"}) {
        EXPECT_TRUE(log.contains(line)) << line;
    }
    view.events = std::make_shared<NavigationRecorder>();
}

TEST_F(Callbacks, CreatedOffTheEngineThread_Ignored) {
    CefRefPtr<ZEMO::UI::CefAdapter> other =
        new ZEMO::UI::CefAdapter({}, game.window, ZEMO::UI::WindowStyle::Layer, false, nullptr, 0, nullptr);
    other->OnAfterCreated(browser);
    EXPECT_EQ(other->getBrowser(), nullptr);
    other->close();
}

TEST_F(Callbacks, WindowGone_NoScreenInfoAndOneByOne) {
    const HWND gone = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    CefRefPtr<ZEMO::UI::CefAdapter> other =
        new ZEMO::UI::CefAdapter({}, gone, ZEMO::UI::WindowStyle::Layer, false, nullptr, 0, nullptr);
    DestroyWindow(gone);
    runOnEngine(game, [&] {
        CefRect rect;
        other->GetViewRect(browser, rect);
        EXPECT_EQ(rect, CefRect(0, 0, 1, 1));
        CefScreenInfo info;
        EXPECT_FALSE(other->GetScreenInfo(browser, info));
        EXPECT_FALSE(other->OnCursorChange(browser, LoadCursorW(nullptr, IDC_HAND), CT_HAND, {}));
    });
    other->close();
}

TEST_F(Callbacks, CursorOfALayerWithoutAConsumer_BecomesTheClassCursor) {
    const auto before = GetClassLongPtrW(game.window, GCLP_HCURSOR);
    const HCURSOR hand = LoadCursorW(nullptr, IDC_HAND);
    ASSERT_NE(reinterpret_cast<HCURSOR>(before), hand);
    CefRefPtr<ZEMO::UI::CefAdapter> other =
        new ZEMO::UI::CefAdapter({}, game.window, ZEMO::UI::WindowStyle::Layer, false, nullptr, 0, nullptr);
    game.fetchedMessages.clear();
    runOnEngine(game, [&] {
        EXPECT_TRUE(other->OnCursorChange(browser, hand, CT_HAND, {}));
        EXPECT_EQ(GetCursor(), hand);
    });
    EXPECT_EQ(reinterpret_cast<HCURSOR>(GetClassLongPtrW(game.window, GCLP_HCURSOR)), hand);
    // A posted message would lie in front of this one.
    PostMessageW(game.window, WM_APP, 0, 0);
    EXPECT_EQ(posted(WM_APP).size(), 1u);
    for (const GameMessage& message : game.fetchedMessages) {
        EXPECT_FALSE(message.id == WM_SETCURSOR && message.wParam == 1124);
    }
    SetClassLongPtrW(game.window, GCLP_HCURSOR, before);
    other->close();
}

TEST_F(Callbacks, HookModuleAndPresentCallback_TheHookGetsTheFrames) {
    // Any module's handle will do: what is drawn through it is not looked at here.
    CefRefPtr<ZEMO::UI::CefAdapter> other =
        new ZEMO::UI::CefAdapter({}, game.window, ZEMO::UI::WindowStyle::Layer, false, GetModuleHandleW(nullptr), 0,
                                 [](auto...) { ADD_FAILURE() << "the hook comes before the present callback"; });
    const auto before = GetClassLongPtrW(game.window, GCLP_HCURSOR);
    game.fetchedMessages.clear();
    const HCURSOR hand = LoadCursorW(nullptr, IDC_HAND);
    runOnEngine(game, [&] {
        const uint32_t pixel = 0;
        other->OnPaint(browser, PET_VIEW, {}, &pixel, 1, 1);
        EXPECT_TRUE(other->OnCursorChange(browser, hand, CT_HAND, {}));
    });
    EXPECT_EQ(posted(WM_SETCURSOR), (std::vector<GameMessage>{{WM_SETCURSOR, 1124, reinterpret_cast<LPARAM>(hand)}}))
        << "a layer with a hook has an active consumer";
    EXPECT_EQ(GetClassLongPtrW(game.window, GCLP_HCURSOR), before);
    other->close();
}

TEST_F(Callbacks, ViewRectOfAnEmptyClientArea_OneByOne) {
    const HWND empty = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    RECT client{};
    ASSERT_TRUE(GetClientRect(empty, &client));
    ASSERT_EQ(client.right, 0);
    ASSERT_EQ(client.bottom, 0);
    CefRefPtr<ZEMO::UI::CefAdapter> other =
        new ZEMO::UI::CefAdapter({}, empty, ZEMO::UI::WindowStyle::Layer, false, nullptr, 0, nullptr);
    CefRect rect;
    runOnEngine(game, [&] { other->GetViewRect(browser, rect); });
    EXPECT_EQ(rect, CefRect(0, 0, 1, 1));
    other->close();
    DestroyWindow(empty);
}

TEST_F(Callbacks, ScreenInfo_ViewsRectangleAndScale) {
    CefScreenInfo info;
    info.depth = 99;
    ASSERT_TRUE(runOnEngine(game, [&] { EXPECT_TRUE(view.adapter->GetScreenInfo(browser, info)); }));
    EXPECT_FLOAT_EQ(info.device_scale_factor, 1.0f);
    EXPECT_EQ(CefRect(info.rect.x, info.rect.y, info.rect.width, info.rect.height), CefRect(0, 0, 320, 200));
    EXPECT_EQ(
        CefRect(info.available_rect.x, info.available_rect.y, info.available_rect.width, info.available_rect.height),
        CefRect(0, 0, 320, 200));
    EXPECT_EQ(info.depth, 99) << "the other fields stay as they came";
}

TEST(ScreenInfo, LogicalPixelsOfTheViewAndItsScale_Scale150) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    GameHost game;
    ClientView view(game, "data:text/html,x");
    CefScreenInfo info;
    ASSERT_TRUE(runOnEngine(game, [&] { EXPECT_TRUE(view.adapter->GetScreenInfo(nullptr, info)); }));
    EXPECT_FLOAT_EQ(info.device_scale_factor, 1.5f);
    // 320 x 200 device pixels, rounded down.
    EXPECT_EQ(CefRect(info.rect.x, info.rect.y, info.rect.width, info.rect.height), CefRect(0, 0, 213, 133));
    EXPECT_EQ(
        CefRect(info.available_rect.x, info.available_rect.y, info.available_rect.width, info.available_rect.height),
        CefRect(0, 0, 213, 133));
}

TEST_F(Callbacks, Closed_BrowserIsOutOfReachAndFramesEnd) {
    view.adapter->close();
    EXPECT_EQ(view.adapter->getBrowser(), nullptr);
    EXPECT_TRUE(game.frames.lastFrame().cleared);
    runOnEngine(game, [&] {
        const uint32_t pixel = 0;
        view.adapter->OnPaint(browser, PET_VIEW, {}, &pixel, 1, 1);
    });
    EXPECT_TRUE(game.frames.lastFrame().cleared) << "a late paint must not reach the game";
}

TEST_F(Callbacks, WindowGoing_NoFurtherFrameIsTaken) {
    size_t before = 0;
    size_t open = 0;
    size_t going = 0;
    // All in one task: the engine's own paints come on this thread too, so none is under way.
    ASSERT_TRUE(runOnEngine(game, [&] {
        const uint32_t pixel = 0;
        before = game.frames.frameCount();
        view.adapter->OnPaint(browser, PET_VIEW, {}, &pixel, 1, 1);
        open = game.frames.frameCount();
        view.adapter->markClosing();
        view.adapter->OnPaint(browser, PET_VIEW, {}, &pixel, 1, 1);
        going = game.frames.frameCount();
    }));
    EXPECT_EQ(open, before + 1) << "a frame of an open window is taken";
    EXPECT_EQ(going, open);
}

}  // namespace ZEMO::Test
