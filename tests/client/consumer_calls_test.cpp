#include <gtest/gtest.h>

#include <format>
#include <thread>

#include "client/engine_task.h"
#include "client/page_browser.h"
#include "engine/client/cef_handler.h"
#include "include/cef_browser.h"
#include "layers/layer_manager.h"
#include "render/display_scale.h"
#include "support/debug_log.h"
#include "support/wrapped_browser.h"

// Which calls a consumer of the frames and a local renderer get from the browser client, and in which order. Both are
// stand-ins here, and so is the browser where its own calls count: the real ones say nothing of most of these calls.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// What the stand-ins were told, in order, by all threads.
class Calls {
public:
    void add(std::string call) {
        const std::lock_guard lock(mutex);
        list.push_back(std::move(call));
    }
    std::vector<std::string> take() {
        const std::lock_guard lock(mutex);
        return std::exchange(list, {});
    }
    std::atomic<int> ticks{0}, paints{0}, viewRects{0};
    std::atomic<bool> wantsRepaint{false}, paintDone{true};
    std::atomic<DWORD> renderThread{0};
    // The renderer's answers.
    std::atomic<bool> popupEmpty{false}, resizes{false};
    CefRect popup;
    std::atomic<bool> resizedDuringRender{false};
    std::function<void()> resizeAgain;  ///< set before the flag
    std::atomic<int> rendersToResize{0}, rendersAtRest{0};

private:
    std::mutex mutex;
    std::vector<std::string> list;
};
using SharedCalls = std::shared_ptr<Calls>;

class StandInConsumer final : public CefRenderImpl {
public:
    explicit StandInConsumer(SharedCalls record) : calls(std::move(record)) {}
    void tick(uint32_t) override {
        calls->renderThread = GetCurrentThreadId();
        ++calls->ticks;
    }
    bool isActive() override { return true; }
    bool needsRepaint() override { return calls->wantsRepaint; }
    void onViewClosed() override { calls->add("onViewClosed"); }
    void clearFrame() override { calls->add("clearFrame"); }
    bool paint(bool drawCloseButton, CefRefPtr<CefBrowser>, PaintElementType type, const RectList&, const void*,
               int width, int height) override {
        calls->add(std::format("paint {} {} {}x{}", drawCloseButton, static_cast<int>(type), width, height));
        return calls->paintDone;
    }
    void onResized() override { calls->add("onResized"); }
    void onPopupShow(bool show) override { calls->add(std::format("onPopupShow {}", show)); }
    void onPopupRect(const Rect16& r) override {
        calls->add(std::format("onPopupRect {} {} {} {}", r.left, r.top, r.right, r.bottom));
    }

private:
    SharedCalls calls;
};

class StandInRenderer final : public IOsrRenderer {
public:
    explicit StandInRenderer(SharedCalls record) : calls(std::move(record)) {}
    void onPaint(PaintElementType type, const RectList&, const void*, int width, int height) override {
        calls->add(std::format("renderer.onPaint {} {}x{}", static_cast<int>(type), width, height));
    }
    void onPopupShow(CefRefPtr<CefBrowser>, bool show) override {
        calls->add(std::format("renderer.onPopupShow {}", show));
    }
    void onPopupSize(CefRefPtr<CefBrowser>, const CefRect& r) override {
        calls->add(std::format("renderer.onPopupSize {} {} {} {}", r.x, r.y, r.width, r.height));
    }
    void render(bool* needResize) override {
        if (calls->resizedDuringRender.exchange(false)) calls->resizeAgain();
        ++(*needResize ? calls->rendersToResize : calls->rendersAtRest);
        if (calls->resizes) *needResize = false;
    }
    void getPopupRect(CefRect* out) override { *out = calls->popup; }
    void clearPopupRects() override { calls->add("renderer.clearPopupRects"); }
    bool isPopupRectEmpty() override { return calls->popupEmpty; }
    void onViewHidden() override { calls->add("onViewHidden"); }

private:
    SharedCalls calls;
};

class RecordedClient final : public CefHandler {
public:
    RecordedClient(HWND window, WindowStyle style, bool closeButton, SharedCalls record)
        : CefHandler(window, style, closeButton, 0, [&](float) { return std::make_unique<StandInConsumer>(record); }),
          calls(record) {
        setLocalRenderer(std::make_shared<StandInRenderer>(record));
    }
    void GetViewRect(CefRefPtr<CefBrowser> source, CefRect& rect) override {
        ++calls->viewRects;
        CefHandler::GetViewRect(source, rect);
    }
    void OnPaint(CefRefPtr<CefBrowser> source, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override {
        ++calls->paints;
        CefHandler::OnPaint(source, type, dirtyRects, buffer, width, height);
    }

private:
    SharedCalls calls;
};

/// A browser that notes which paints it is asked for.
CefRefPtr<CefBrowser> recordingBrowser(const SharedCalls& record) {
    static SharedCalls calls;
    static cef_browser_host_t host;
    static cef_browser_t browser;
    const auto makeCounted = [](cef_base_ref_counted_t& base, size_t size) {
        base.size = size;
        base.add_ref = [](cef_base_ref_counted_t*) {};
        base.release = [](cef_base_ref_counted_t*) { return 0; };
        base.has_one_ref = [](cef_base_ref_counted_t*) { return 0; };
        base.has_at_least_one_ref = [](cef_base_ref_counted_t*) { return 1; };
    };
    calls = record;
    makeCounted(host.base, sizeof host);
    makeCounted(browser.base, sizeof browser);
    host.invalidate = [](cef_browser_host_t*, cef_paint_element_type_t type) {
        calls->add(std::format("Invalidate {}", static_cast<int>(type)));
    };
    browser.get_host = [](cef_browser_t*) { return &host; };
    return wrapBrowser(&browser);
}

/// Keeps the manager's count of layers above 0.
class IdleLayer final : public ILayer {
public:
    bool handleMessage(LRESULT*, HWND, UINT, WPARAM, LPARAM) override { return false; }
    void setVisible(bool, bool) override {}
    void sendImeCommand(uint32_t, const std::u16string*, const uint32_t*) override {}
    void blurActiveElement() override {}
    void setSteamOverlayActive(bool) override {}
    void onSize(const RECT&, int, int) override {}
    void onMaximizeRestore() override {}
    void onDestroy() override {}
    void onKillFocus() override {}
    void onClose() override {}
};

using Names = std::vector<std::string>;

/// A client on the game's window without a browser; the engine is not started.
class ConsumerCalls : public ::testing::Test {
protected:
    CefRefPtr<RecordedClient> make(WindowStyle style = WindowStyle::Layer, bool closeButton = false) {
        return new RecordedClient(game.window, style, closeButton, calls);
    }
    static Names paintOf(const CefRefPtr<RecordedClient>& client, const SharedCalls& calls, int width = 2,
                         int height = 2) {
        const uint32_t pixels[4]{};
        client->OnPaint(nullptr, PET_VIEW, {}, pixels, width, height);
        return calls->take();
    }
    /// Whether the system owes the game's window a picture.
    bool repaintIsDue() const { return GetUpdateRect(game.window, nullptr, FALSE) != FALSE; }

    GameHost game{{.startLibrary = false}};
    SharedCalls calls = std::make_shared<Calls>();
};

}  // namespace

TEST_F(ConsumerCalls, LayerHidden_ViewClosedUnlessTheHooksFrameIsKept) {
    const auto client = make();
    client->setVisible(false, false);
    EXPECT_EQ(calls->take(), (Names{"onViewClosed", "onViewHidden"}));
    client->setVisible(false, true);
    EXPECT_EQ(calls->take(), (Names{"onViewHidden"}));
    client->close();
}

TEST_F(ConsumerCalls, OwnWindowHidden_OnlyTheRendererHears) {
    const auto client = make(WindowStyle::Window);
    client->setVisible(false, false);
    EXPECT_EQ(calls->take(), (Names{"onViewHidden"}));
    client->close();
}

TEST_F(ConsumerCalls, Shown_NobodyIsTold) {
    const auto client = make();
    client->setVisible(true, false);
    EXPECT_EQ(calls->take(), Names{});
    client->close();
}

TEST_F(ConsumerCalls, HiddenAndClosed_WindowIsPaintedAnewEachTime) {
    const auto client = make();
    ValidateRect(game.window, nullptr);
    ASSERT_FALSE(repaintIsDue());
    client->setVisible(false, true);
    EXPECT_TRUE(repaintIsDue());
    ValidateRect(game.window, nullptr);
    client->close();
    EXPECT_TRUE(repaintIsDue());
}

TEST_F(ConsumerCalls, HiddenAndClosedWithoutAWindow_NoOtherWindowIsRepainted) {
    const CefRefPtr<RecordedClient> client = new RecordedClient(nullptr, WindowStyle::Layer, false, calls);
    int undisturbed = 0;
    for (int i = 0; i < 5; ++i) {  // a window of another test may lay this one bare meanwhile
        ValidateRect(game.window, nullptr);
        client->setVisible(false, true);
        client->close();
        undisturbed += !repaintIsDue();
    }
    EXPECT_GT(undisturbed, 0);
}

TEST_F(ConsumerCalls, LastLayerClosed_ViewClosedThenHiddenThenCleared) {
    DebugLogCapture log;
    const auto client = make();
    client->close();
    EXPECT_EQ(calls->take(), (Names{"onViewClosed", "onViewHidden", "clearFrame"}));
    EXPECT_TRUE(log.contains("html view is closed\n"));
}

TEST_F(ConsumerCalls, ClosedWithItsWindow_ViewClosedIsLeftOut) {
    const auto client = make();
    client->markClosing();
    client->close();
    EXPECT_EQ(calls->take(), (Names{"onViewHidden", "clearFrame"}));
}

TEST_F(ConsumerCalls, ClosedWithAnotherLayerLeft_ViewClosedIsLeftOut) {
    const auto other = std::make_shared<IdleLayer>();
    ZEMOMultiLayerManager::instance().addLayer(other);
    const auto client = make();
    client->close();
    EXPECT_EQ(calls->take(), (Names{"onViewHidden", "clearFrame"}));
    ZEMOMultiLayerManager::instance().removeLayer(other);
}

TEST_F(ConsumerCalls, OwnWindowClosed_OnlyTheRendererHears) {
    const auto client = make(WindowStyle::Window);
    client->close();
    EXPECT_EQ(calls->take(), (Names{"onViewHidden"}));
}

TEST_F(ConsumerCalls, WindowResized_ConsumerHears) {
    const auto client = make();
    client->onWindowResized();
    EXPECT_EQ(calls->take(), (Names{"onResized"}));
    client->close();
}

TEST_F(ConsumerCalls, PopupPlaced_EdgesForTheConsumerAndSizeForTheRenderer) {
    const auto client = make();
    client->OnPopupSize(nullptr, CefRect(11, 21, 30, 41));
    EXPECT_EQ(calls->take(), (Names{"onPopupRect 11 21 41 62", "renderer.onPopupSize 11 21 30 41"}));
    client->close();
}

TEST(ConsumerCallsScaled, PopupPlaced_EachFieldIsScaledByItself_Scale150) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    GameHost game({.startLibrary = false});
    ASSERT_FLOAT_EQ(getWindowScale(game.window), 1.5f) << "the session's scale";
    const auto calls = std::make_shared<Calls>();
    const CefRefPtr<RecordedClient> client = new RecordedClient(game.window, WindowStyle::Layer, false, calls);
    client->OnPopupSize(nullptr, CefRect(11, 21, 31, 41));
    // 16.5, 31.5, 46.5 and 61.5, each rounded down before the edges are added up.
    EXPECT_EQ(calls->take(), (Names{"onPopupRect 16 31 62 92", "renderer.onPopupSize 16 31 46 61"}));
    client->close();
}

TEST_F(ConsumerCalls, PopupPlacedInAnOwnWindow_OnlyTheRendererHears) {
    const auto client = make(WindowStyle::Window);
    client->OnPopupSize(nullptr, CefRect(11, 21, 30, 41));
    EXPECT_EQ(calls->take(), (Names{"renderer.onPopupSize 11 21 30 41"}));
    client->close();
}

TEST_F(ConsumerCalls, PopupShownAndHidden_RectangleClearedAndThePageAskedForBeforeTheRendererHears) {
    for (const auto style : {WindowStyle::Layer, WindowStyle::Window}) {
        const auto client = make(style);
        const CefRefPtr<CefBrowser> browser = recordingBrowser(calls);
        client->OnPopupShow(browser, true);
        EXPECT_EQ(calls->take(), style == WindowStyle::Layer ? (Names{"onPopupShow true", "renderer.onPopupShow true"})
                                                             : (Names{"renderer.onPopupShow true"}));
        client->OnPopupShow(browser, false);
        Names hidden{"renderer.clearPopupRects", "Invalidate 0", "renderer.onPopupShow false"};
        if (style == WindowStyle::Layer) hidden.insert(hidden.begin(), "onPopupShow false");
        EXPECT_EQ(calls->take(), hidden);
        client->close();
        calls->take();
    }
}

TEST_F(ConsumerCalls, ViewPaintedWithAPopupOpen_PopupIsAskedFor) {
    const auto client = make(WindowStyle::Window);
    const CefRefPtr<CefBrowser> browser = recordingBrowser(calls);
    const uint32_t pixels[4]{};
    const auto paint = [&](auto type, CefRect popup) {
        calls->popup = popup;
        client->OnPaint(browser, type, {}, pixels, 2, 2);
        return calls->take();
    };
    EXPECT_EQ(paint(PET_VIEW, {5, 5, 1, 1}), (Names{"renderer.onPaint 0 2x2", "Invalidate 1"}));
    EXPECT_EQ(paint(PET_POPUP, {5, 5, 1, 1}), (Names{"renderer.onPaint 1 2x2"}));
    EXPECT_EQ(paint(PET_VIEW, {5, 5, 0, 1}), (Names{"renderer.onPaint 0 2x2"}));
    EXPECT_EQ(paint(PET_VIEW, {5, 5, 1, 0}), (Names{"renderer.onPaint 0 2x2"}));
    client->close();
}

TEST_F(ConsumerCalls, WindowResized_RendererIsToldUntilItHasResized) {
    const auto client = make(WindowStyle::Window);
    ASSERT_TRUE(game.waitFor("a cycle", [&] { return calls->rendersAtRest > 0; }));
    EXPECT_EQ(calls->rendersToResize, 0);
    client->onWindowResized();
    ASSERT_TRUE(game.waitFor("the flag in every cycle", [&] { return calls->rendersToResize > 3; }));
    const int atRest = calls->rendersAtRest;
    calls->resizes = true;
    ASSERT_TRUE(game.waitFor("the flag to go", [&] { return calls->rendersAtRest > atRest + 1; }));
    client->close();
}

// A size that comes while the renderer is taking the one before must not get lost.
TEST_F(ConsumerCalls, WindowResizedDuringRender_NextCycleIsToldToo) {
    const auto client = make(WindowStyle::Window);
    ASSERT_TRUE(game.waitFor("a cycle", [&] { return calls->rendersAtRest > 0; }));
    calls->resizes = true;
    calls->resizeAgain = [&] { client->onWindowResized(); };
    calls->resizedDuringRender = true;
    EXPECT_TRUE(game.waitFor("the flag of the cycle after", [&] { return calls->rendersToResize > 0; }));
    client->close();
}

TEST_F(ConsumerCalls, FrameOfALayer_RendererGetsItOnlyWhenTheConsumerLeavesIt) {
    const auto client = make();
    EXPECT_EQ(paintOf(client, calls), (Names{"paint false 0 2x2"}));
    calls->paintDone = false;
    EXPECT_EQ(paintOf(client, calls), (Names{"paint false 0 2x2", "renderer.onPaint 0 2x2"}));
    client->close();
}

TEST_F(ConsumerCalls, FrameBelowTwoPixels_NotForTheRenderer) {
    const auto client = make();
    calls->paintDone = false;
    EXPECT_EQ(paintOf(client, calls, 1, 2), (Names{"paint false 0 1x2"}));
    EXPECT_EQ(paintOf(client, calls, 2, 1), (Names{"paint false 0 2x1"}));
    client->close();
}

TEST_F(ConsumerCalls, FrameOfAnOwnWindow_NotForTheConsumer) {
    const auto client = make(WindowStyle::Window);
    EXPECT_EQ(paintOf(client, calls), (Names{"renderer.onPaint 0 2x2"}));
    client->close();
}

TEST_F(ConsumerCalls, FrameOfAHiddenView_Dropped) {
    const auto client = make();
    client->setVisible(false, true);
    calls->take();
    EXPECT_EQ(paintOf(client, calls), Names{});
    client->setVisible(true, true);
    EXPECT_EQ(paintOf(client, calls), (Names{"paint false 0 2x2"}));
    client->close();
}

TEST_F(ConsumerCalls, CloseButton_DrawnOnceItIsShownAndOnlyWhenThereIsOne) {
    const auto with = make(WindowStyle::Layer, true);
    EXPECT_EQ(paintOf(with, calls), (Names{"paint false 0 2x2"})) << "no page has completed yet";
    with->showCloseButton();
    EXPECT_EQ(paintOf(with, calls), (Names{"paint true 0 2x2"}));
    const auto without = make();
    without->showCloseButton();
    EXPECT_EQ(paintOf(without, calls), (Names{"paint false 0 2x2"}));
    with->close();
    without->close();
}

TEST_F(ConsumerCalls, RenderThread_OneCycleInAHundredMilliseconds) {
    constexpr int kCycles = 15;
    const auto client = make();
    // What the same waits take a thread of the test's own on this machine just now.
    std::chrono::steady_clock::duration own{};
    std::thread clock([&] {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kCycles; ++i) Sleep(100);
        own = std::chrono::steady_clock::now() - start;
    });
    const auto tick = [&] {
        const int now = calls->ticks;
        EXPECT_TRUE(game.waitFor("a cycle", [&] { return calls->ticks > now; }));
        return std::pair(std::chrono::steady_clock::now(), calls->ticks.load());
    };
    const auto [start, first] = tick();
    clock.join();
    const auto [end, last] = tick();
    client->close();
    // Each is seen up to one wait of the game's loop late.
    const auto perCycle = (end - start) / std::max(1, last - first);
    EXPECT_GE(perCycle, 95ms);
    EXPECT_LE(perCycle, own / kCycles * 5 / 4);
}

TEST_F(ConsumerCalls, WindowGoing_RenderThreadEndsWithinACycle) {
    const auto client = make();
    ASSERT_TRUE(game.waitFor("the render thread", [&] { return calls->ticks >= 2; }));
    const ZEMO::Core::UniqueKernelHandle thread(OpenThread(SYNCHRONIZE, FALSE, calls->renderThread));
    ASSERT_TRUE(thread);
    ASSERT_EQ(WaitForSingleObject(thread.get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    client->markClosing();
    const int before = calls->ticks;
    EXPECT_EQ(WaitForSingleObject(thread.get(), 10'000), WAIT_OBJECT_0) << "it goes on without an end";
    EXPECT_LE(calls->ticks, before + 1) << "the cycle that was starting is the last one";
    client->close();
}

TEST(ConsumerCallsWithAPage, Hidden_NeitherNewSizeNorFrameIsAskedFor) {
    GameHost game;
    const auto calls = std::make_shared<Calls>();
    const CefRefPtr<RecordedClient> client = new RecordedClient(game.window, WindowStyle::Layer, false, calls);
    createBrowser(game.window, client, "data:text/html,x");
    calls->wantsRepaint = true;  // every cycle of the render thread asks the engine
    // The engine asks for the size when it is told of a new one, and paints when it is asked to.
    const auto goesOn = [&](const std::atomic<int>& count) {
        const int now = count;
        return game.waitFor("refreshes", [&] { return count > now + 3; });
    };
    ASSERT_TRUE(goesOn(calls->paints));
    ASSERT_TRUE(goesOn(calls->viewRects));

    client->setVisible(false, true);
    // What was asked for before that may still come. Then nothing does: five cycles in a row.
    constexpr int kQuietCycles = 5;
    const auto becomesQuiet = [&] {
        int since = calls->ticks;
        int viewRects = calls->viewRects;
        int paints = calls->paints;
        return game.waitFor("the quiet", [&] {
            if (viewRects != calls->viewRects || paints != calls->paints) {
                since = calls->ticks;
                viewRects = calls->viewRects;
                paints = calls->paints;
            }
            return calls->ticks > since + kQuietCycles;
        });
    };
    ASSERT_TRUE(becomesQuiet()) << "the engine goes on asking for the size or painting";
    const int viewRects = calls->viewRects;
    client->onWindowResized();
    ASSERT_TRUE(runOnEngine(game, [] {}));  // what that had asked for would lie in front of this
    EXPECT_EQ(calls->viewRects, viewRects);

    client->setVisible(true, true);
    EXPECT_TRUE(goesOn(calls->viewRects));
    EXPECT_TRUE(goesOn(calls->paints));
    client->close();
}

}  // namespace ZEMO::Test
