// Each test has a process of its own: mode, renderer and the first question to a module are the process's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "render/hook/cef_render_hook.h"
#include "render/hook/graphics_hooker.h"
#include "render/rendering_mode.h"
#include "support/debug_log.h"
#include "support/recording_hook.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kUnknown = 4;
const char* const kAsked = "GetRenderModeHandler";

class RenderHook : public testing::Test {
protected:
    /// A view whose module knows `mode` from the start.
    CefRenderHook attached(int mode, uint32_t sleepTime = 0) {
        recording.answer({mode});
        CefRenderHook hook(module, sleepTime);
        return hook;
    }
    bool paint(CefRenderHook& hook, PaintElementType type, bool close, const RectList& rects) {
        return hook.paint(close, nullptr, type, rects, pixels.data(), 3, 2);
    }

    HMODULE module = loadRecordingHook();
    HookRecording& recording = recordingOf(module);
    std::array<uint32_t, 6> pixels{1, 2, 3, 4, 5, 6};
    DebugLogCapture log;
};

struct ModeCase {
    int mode;
    const char* line;      ///< in the log; null for none
    const char* exported;  ///< what hands out the renderer; null for none
};

class RenderHookMode : public RenderHook, public testing::WithParamInterface<ModeCase> {};

}  // namespace

TEST_F(RenderHook, NoModule_InactiveAndTheGameCountsAsOpenGL) {
    CefRenderHook hook(nullptr, 5);
    EXPECT_FALSE(hook.isActive());
    EXPECT_EQ(getRenderingMode(), RenderingMode::OpenGL);
    EXPECT_TRUE(log.contains("RenderingMode: OpenGL\n")) << log.dump();
    EXPECT_FALSE(hook.needsRepaint());
    EXPECT_FALSE(paint(hook, PET_VIEW, true, {}));
}

TEST_F(RenderHook, FirstViewWithoutModule_LaterModuleIsNeverAsked) {
    CefRenderHook first(nullptr, 0);
    CefRenderHook second(module, 0);
    second.tick(0);
    EXPECT_TRUE(second.isActive());
    EXPECT_FALSE(second.needsRepaint());
    EXPECT_THAT(recording.texts(), IsEmpty());
}

TEST_F(RenderHook, ApiNotKnownYet_AskedOnceInEachCycleAndFramesAreSkipped) {
    CefRenderHook hook = attached(kUnknown);
    EXPECT_THAT(recording.texts(), ElementsAre(kAsked));
    hook.tick(0);
    hook.tick(0);
    EXPECT_THAT(recording.texts(), ElementsAre(kAsked, kAsked, kAsked));
    EXPECT_TRUE(hook.isActive());
    EXPECT_FALSE(hook.needsRepaint());
    EXPECT_FALSE(paint(hook, PET_VIEW, true, {{0, 0, 3, 2}}));
    hook.onResized();
    hook.onPopupShow(true);
    hook.onPopupRect({1, 2, 3, 4});
    ZEMOGraphicsHooker::instance().onGameWindowDestroyed(WM_DESTROY, 0, 0);
    EXPECT_EQ(recording.texts().size(), 3u);
    EXPECT_EQ(getRenderingMode(), RenderingMode::Unknown);
    EXPECT_EQ(log.count("RenderingMode"), 0u);
}

TEST_F(RenderHook, NextViewBeforeTheApiIsKnown_ConstructorAsksNoSecondTime) {
    CefRenderHook first = attached(kUnknown);
    CefRenderHook second(module, 0);
    EXPECT_THAT(recording.texts(), ElementsAre(kAsked));
    recording.answer({0});
    second.tick(0);
    EXPECT_TRUE(first.needsRepaint());
}

TEST_P(RenderHookMode, Answered_LoggedStoredAndItsRendererTaken) {
    const ModeCase& expected = GetParam();
    CefRenderHook hook = attached(expected.mode);
    std::vector<std::string> calls{kAsked, kAsked};
    if (expected.exported) calls.emplace_back(expected.exported);
    EXPECT_EQ(recording.texts(), calls);
    EXPECT_EQ(static_cast<int>(getRenderingMode()), expected.mode);
    EXPECT_EQ(log.count("RenderingMode"), expected.line ? 1u : 0u);
    EXPECT_TRUE(!expected.line || log.contains(expected.line)) << log.dump();
    EXPECT_EQ(hook.needsRepaint(), expected.exported != nullptr);
    hook.tick(0);  // it is not asked any more
    EXPECT_EQ(recording.texts(), calls);
}

INSTANTIATE_TEST_SUITE_P(All, RenderHookMode,
                         testing::Values(ModeCase{0, "RenderingMode: D3D11\n", "GetD3D11RenderHookRenderer"},
                                         ModeCase{1, "RenderingMode: D3D12\n", "GetD3D12RenderHookRenderer"},
                                         ModeCase{2, "RenderingMode: OpenGL\n", "GetOpenGLRenderHookRenderer"},
                                         ModeCase{3, "RenderingMode: Vulkan\n", nullptr}, ModeCase{7, nullptr, nullptr},
                                         ModeCase{-1, nullptr, nullptr}));

TEST_F(RenderHook, Vulkan_PageDoesNotAppear) {
    CefRenderHook hook = attached(3);
    recording.forget();
    EXPECT_FALSE(paint(hook, PET_VIEW, false, {{0, 0, 3, 2}}));
    hook.tick(0);
    EXPECT_THAT(recording.texts(), IsEmpty());
}

TEST_F(RenderHook, TwoAnswersDiffer_SecondOneCounts) {
    recording.answer({0, 2});
    CefRenderHook hook(module, 0);
    EXPECT_EQ(getRenderingMode(), RenderingMode::OpenGL);
    EXPECT_THAT(recording.texts(), ElementsAre(kAsked, kAsked, "GetOpenGLRenderHookRenderer"));
}

TEST_F(RenderHook, SecondAnswerIsUnknown_LoggedAndAskedAgain) {
    recording.answer({0, kUnknown, 1});
    CefRenderHook hook(module, 0);
    EXPECT_TRUE(log.contains("RenderingMode: Unknown\n")) << log.dump();
    hook.tick(0);
    EXPECT_EQ(getRenderingMode(), RenderingMode::D3D12);
    EXPECT_TRUE(hook.needsRepaint());
}

TEST_F(RenderHook, RendererIsNull_LikeNone) {
    recording.hasRenderer = false;
    CefRenderHook hook = attached(2, 30);
    EXPECT_THAT(recording.texts(), ElementsAre(kAsked, kAsked, "GetOpenGLRenderHookRenderer"));
    EXPECT_FALSE(hook.needsRepaint());
    EXPECT_FALSE(paint(hook, PET_VIEW, false, {}));
    hook.onViewClosed();
    EXPECT_EQ(recording.texts().size(), 3u);
    EXPECT_EQ(log.count("html view is close\n"), 1u);
}

TEST_F(RenderHook, OpenGLWithSleepTime_ToldOnceBeforeTheFirstFrame) {
    CefRenderHook hook = attached(2, 30);
    EXPECT_THAT(recording.texts(), ElementsAre(kAsked, kAsked, "GetOpenGLRenderHookRenderer", "setSleepTime 30"));
    hook.tick(30);
    EXPECT_EQ(recording.count("setSleepTime"), 1u);
}

TEST_F(RenderHook, OpenGLWithSleepTimeZero_NotTold) {
    attached(2, 0);
    EXPECT_EQ(recording.count("setSleepTime"), 0u);
}

TEST_F(RenderHook, DirectXWithSleepTime_NotTold) {
    attached(0, 30);
    EXPECT_EQ(recording.count("setSleepTime"), 0u);
}

TEST_F(RenderHook, ApiKnownLater_SleepTimeIsThatOfTheCycle) {
    CefRenderHook hook = attached(kUnknown, 11);
    recording.answer({2});
    hook.tick(12);
    EXPECT_EQ(recording.count("setSleepTime 12"), 1u);
}

TEST_F(RenderHook, SecondView_SharesTheRendererAndItsSleepTimeIsIgnored) {
    CefRenderHook first = attached(2, 30);
    recording.forget();
    CefRenderHook second(module, 50);
    second.tick(50);
    EXPECT_THAT(recording.texts(), IsEmpty());
    paint(second, PET_VIEW, false, {});
    EXPECT_EQ(recording.count("onPaint view"), 1u);
}

TEST_F(RenderHook, Frame_PreparedActivatedPaintedInThatOrderUncopied) {
    CefRenderHook hook = attached(0);
    recording.forget();
    EXPECT_FALSE(paint(hook, PET_VIEW, true, {{0, 1, 2, 1}, {2, 0, 1, 2}}));
    EXPECT_THAT(recording.texts(), ElementsAre("prepareFrame true view (0,1 2x1)(2,0 1x2)", "setFrameActive true",
                                               "onPaint view (0,1 2x1)(2,0 1x2) 3x2"));
    EXPECT_EQ(recording.lastBuffer, pixels.data());
}

TEST_F(RenderHook, PopupFrame_SameCallsAndNoFurtherPaintIsAskedFor) {
    CefRenderHook hook = attached(0);
    hook.onPopupRect({1, 1, 4, 3});
    recording.forget();
    EXPECT_FALSE(paint(hook, PET_POPUP, false, {{0, 0, 3, 2}}));  // no browser here that could be asked
    EXPECT_THAT(recording.texts(), ElementsAre("prepareFrame false popup (0,0 3x2)", "setFrameActive true",
                                               "onPaint popup (0,0 3x2) 3x2"));
}

TEST_F(RenderHook, PopupOpensAndCloses_RectangleByEdgesThenClearedBeforeHidden) {
    CefRenderHook hook = attached(0);
    recording.forget();
    hook.onPopupShow(true);
    hook.onPopupRect({10, 20, 110, 70});
    hook.onPopupShow(false);
    EXPECT_THAT(recording.texts(), ElementsAre("popup setVisible true", "popup setRect 10 20 110 70", "popup clear",
                                               "popup setVisible false"));
}

TEST_F(RenderHook, ModuleWithoutPopups_PopupCallsGoNowhere) {
    recording.hasPopup = false;
    CefRenderHook hook = attached(0);
    recording.forget();
    hook.onPopupShow(true);
    hook.onPopupRect({1, 2, 3, 4});
    hook.onPopupShow(false);
    EXPECT_THAT(recording.texts(), IsEmpty());
    EXPECT_TRUE(hook.needsRepaint());
    EXPECT_FALSE(paint(hook, PET_VIEW, false, {}));
}

TEST_F(RenderHook, NeedsRepaint_StopsWhileAPopupIsOpen) {
    CefRenderHook hook = attached(0);
    EXPECT_TRUE(hook.needsRepaint());
    hook.onPopupRect({1, 2, 3, 4});
    EXPECT_FALSE(hook.needsRepaint());
    hook.onPopupShow(false);
    EXPECT_TRUE(hook.needsRepaint());
}

TEST_F(RenderHook, ViewClosed_FrameInactiveAndLogged) {
    CefRenderHook hook = attached(1);
    recording.forget();
    hook.onViewClosed();
    EXPECT_THAT(recording.texts(), ElementsAre("setFrameActive false"));
    EXPECT_EQ(log.count("html view is close\n"), 1u);
}

TEST_F(RenderHook, Resized_ToldAndClearFrameIsNot) {
    CefRenderHook hook = attached(1);
    recording.forget();
    hook.onResized();
    hook.clearFrame();
    EXPECT_THAT(recording.texts(), ElementsAre("setNeedResize true"));
}

TEST_F(RenderHook, GameWindowDestroyed_MessageGoesOnAsItCame) {
    attached(0);
    recording.forget();
    ZEMOGraphicsHooker::instance().onGameWindowDestroyed(WM_DESTROY, 7, -9);
    EXPECT_THAT(recording.texts(), ElementsAre("onGameWindowDestroyed 2 7 -9"));
}

TEST_F(RenderHook, ViewGone_HookerAndRendererStay) {
    {
        CefRenderHook hook = attached(0);
    }
    EXPECT_TRUE(ZEMOGraphicsHooker::instance().getRenderer());
}

TEST_F(RenderHook, ModuleWithoutExports_LoggedOnceAndNothingIsDrawn) {
    const HMODULE empty = LoadLibraryW((programDirectory() / L"test_helpers" / L"ZEMOGraphicsHook.dll").c_str());
    ASSERT_TRUE(empty);
    CefRenderHook hook(empty, 0);
    hook.tick(0);
    hook.tick(0);
    EXPECT_TRUE(hook.isActive());
    EXPECT_FALSE(paint(hook, PET_VIEW, false, {}));
    EXPECT_EQ(log.count("does not export GetRenderModeHandler"), 1u) << log.dump();
}

TEST_F(RenderHook, FourRenderThreadsAtOnce_RendererIsTakenOnceWhileFramesPass) {
    CefRenderHook hook = attached(kUnknown, 0);
    std::atomic<bool> done{false};
    std::jthread engine([&] {
        while (!done) paint(hook, PET_VIEW, false, {});
    });
    {
        std::vector<std::jthread> cycles;
        for (int i = 0; i < 4; ++i) {
            cycles.emplace_back([&] {
                for (int n = 0; n < 500; ++n) hook.tick(9);
            });
        }
        recording.answer({2});
    }
    hook.tick(9);
    while (recording.count("onPaint") == 0) std::this_thread::yield();
    done = true;
    EXPECT_EQ(recording.count("GetOpenGLRenderHookRenderer"), 1u);
    EXPECT_EQ(recording.count("setSleepTime 9"), 1u);
    EXPECT_EQ(log.count("RenderingMode: OpenGL\n"), 1u);
}

}  // namespace ZEMO::Test
