#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hook/hook_stage.h"
#include "support/debug_log.h"
#include "support/http_server.h"

// Real pages on the hook road, with a module that writes down what it is told.
namespace ZEMO::Test {
namespace {

class HookRoad : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(module);
        server.serveHtml("/", solidPage("#112233"));
        view = game.makeView(server.url("/"), events);
    }
    bool paintsArrive() {
        return game.waitFor("a frame at the module", [&] {
            const std::lock_guard lock(recording.mutex);
            return !recording.view.empty() && recording.view[0] == 0xFF112233u;
        });
    }
    bool hears(const std::string& call) {
        return game.waitFor(call.c_str(), [&] { return recording.count(call) > 0; });
    }

    GameHost game{hookGame()};
    HMODULE module = useHookModule(L"test_helpers\\recording_hook");
    HookRecording& recording = recordingOf(module);
    HttpServer server;
    NavigationRecorder events;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
};

}  // namespace

TEST_F(HookRoad, ApiUnknown_PageLoadsBlankThenAppearsWithTheAnswer) {
    view->show();
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    ASSERT_TRUE(game.waitFor("more questions", [&] { return recording.count("GetRenderModeHandler") > 8; }));
    EXPECT_EQ(recording.count("prepareFrame"), 0u);
    recording.answer({2});
    ASSERT_TRUE(paintsArrive());
    const std::vector<std::string> calls = recording.texts();
    const auto first = std::ranges::find(calls, "GetOpenGLRenderHookRenderer");
    ASSERT_GT(calls.end() - first, 3);
    EXPECT_TRUE(first[1].starts_with("prepareFrame false view (")) << first[1];
    EXPECT_EQ(first[2], "setFrameActive true");
    EXPECT_TRUE(first[3].starts_with("onPaint view (")) << first[3];
    EXPECT_TRUE(first[3].ends_with(") 320x200")) << first[3];
    const size_t asked = recording.count("GetRenderModeHandler");
    game.pass(500ms);
    EXPECT_EQ(recording.count("GetRenderModeHandler"), asked);
    EXPECT_GT(recording.count("onPaint view"), 3u) << "a quiet page is refreshed in each cycle";
}

TEST_F(HookRoad, Vulkan_PageDoesNotAppear) {
    DebugLogCapture log;
    recording.answer({3});
    view->show();
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    const size_t asked = recording.count("GetRenderModeHandler");
    game.pass(500ms);
    EXPECT_EQ(recording.count("GetRenderModeHandler"), asked);
    EXPECT_EQ(recording.texts().size(), asked) << "nothing but questions";
    EXPECT_EQ(log.count("RenderingMode: Vulkan\n"), 1u);
}

TEST_F(HookRoad, LifeOfAView_SleepTimeCloseButtonResizeAndClose) {
    ZEMO::UI::setOpenGLSleepTime(7);
    recording.answer({2});
    view->setCloseButtonEnabled(true);
    view->show();
    EXPECT_TRUE(hears("setSleepTime 7"));
    EXPECT_TRUE(hears("prepareFrame true view"));
    game.resizeClient(400, 240);
    EXPECT_TRUE(hears("setNeedResize true"));
    EXPECT_TRUE(game.waitFor("the larger frame", [&] {
        const std::lock_guard lock(recording.mutex);
        return recording.viewWidth == 400 && recording.viewHeight == 240;
    }));
    recording.forget();
    view->close();
    view.reset();
    EXPECT_TRUE(hears("setFrameActive false"));
    const auto calls = recording.texts();
    EXPECT_TRUE(calls.back() == "setFrameActive false") << calls.back();
    EXPECT_EQ(recording.count("setSleepTime"), 0u);
}

TEST_F(HookRoad, GameWindowDestroyed_ModuleHearsTheMessage) {
    recording.answer({0});
    view->show();
    ASSERT_TRUE(paintsArrive());
    view->close();
    view.reset();
    DestroyWindow(game.window);
    EXPECT_EQ(recording.count("onGameWindowDestroyed 2 0 0"), 1u);
}

}  // namespace ZEMO::Test
