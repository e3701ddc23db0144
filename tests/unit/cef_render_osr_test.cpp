#include "render/cef_render_osr.h"

#include <gtest/gtest.h>

#include <chrono>

#include "portable/frame_consumer.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace {

constexpr int64_t kMs = 1'000'000;
constexpr int64_t kS = 1'000'000'000;
constexpr int kWidth = 200;
constexpr int kHeight = 120;

using Test::ImportReplaced;

int64_t fakeNow = 0;

BOOL WINAPI fakeCounter(LARGE_INTEGER* count) { return count->QuadPart = fakeNow, TRUE; }
BOOL WINAPI fakeFrequency(LARGE_INTEGER* frequency) { return frequency->QuadPart = kS, TRUE; }

/// The counter behind the steady clock as only the test moves it, in nanoseconds, at 0.
class FakeClock {
public:
    FakeClock() { fakeNow = 0; }

private:
    ImportReplaced counter{"QueryPerformanceCounter", &fakeCounter};
    ImportReplaced frequency{"QueryPerformanceFrequency", &fakeFrequency};
};

/// A view that was made at time 0.
class RenderOsr : public testing::Test {
protected:
    bool paint(CefRenderOSR& painted, PaintElementType type = PET_VIEW, bool drawCloseButton = false) {
        return painted.paint(drawCloseButton, nullptr, type, {}, page.data(), kWidth, kHeight);
    }
    /// The answer at a moment.
    static bool asksAt(CefRenderOSR& painted, int64_t time) {
        fakeNow = time;
        return painted.needsRepaint();
    }
    /// The rectangle that the next paint of the same page reports, painted at a moment.
    Rect dirtyOfSamePageAt(CefRenderOSR& painted, int64_t time) {
        fakeNow = time;
        paint(painted);
        return consumer.last().dirty;
    }
    /// Shown once, and the first refresh asked for.
    void begin(CefRenderOSR& painted) {
        paint(painted);
        EXPECT_TRUE(painted.needsRepaint());
    }

    const FakeClock clock;  // before the view
    Pixels page = Pixels(static_cast<size_t>(kWidth) * kHeight, 0xFF336699);
    Consumer consumer;
    CefRenderOSR osr{consumer.sink(), 1.0f, false};
};

constexpr Rect kWhole{0, 0, kWidth, kHeight};
constexpr Rect kNothing{};

}  // namespace

TEST_F(RenderOsr, ClockOfTheTest_IsTheSteadyOneInNanoseconds) {
    for (const int64_t moment : {int64_t{0}, int64_t{1}, 100 * kMs - 1, 5 * kS + 1}) {
        fakeNow = moment;
        EXPECT_EQ(std::chrono::steady_clock::now().time_since_epoch(), std::chrono::nanoseconds(moment));
    }
}

TEST_F(RenderOsr, NewView_AsksOnceAtOnce) {
    EXPECT_TRUE(osr.needsRepaint());
    EXPECT_FALSE(osr.needsRepaint());
}

TEST_F(RenderOsr, NoCallback_IsInactiveAndNeverAsks) {
    CefRenderOSR without({}, 1.0f, true);
    EXPECT_FALSE(without.isActive());
    EXPECT_FALSE(asksAt(without, 0));
    EXPECT_FALSE(asksAt(without, 10 * kS));
    EXPECT_TRUE(osr.isActive());
}

TEST_F(RenderOsr, NothingPainted_AsksAfter100Milliseconds) {
    begin(osr);
    EXPECT_FALSE(asksAt(osr, 100 * kMs - 1));
    EXPECT_TRUE(asksAt(osr, 100 * kMs));
}

TEST_F(RenderOsr, QuietPage_AsksAgainWithEveryQuestion) {
    begin(osr);
    EXPECT_TRUE(asksAt(osr, 200 * kMs));
    EXPECT_TRUE(asksAt(osr, 200 * kMs));
    EXPECT_TRUE(asksAt(osr, 300 * kMs));
}

TEST_F(RenderOsr, EachKindOfPaint_BeginsTheQuietTimeAnew) {
    begin(osr);
    int64_t time = 0;
    for (const int type : {int{PET_VIEW}, int{PET_POPUP}, 7}) {
        time += 500 * kMs;
        fakeNow = time;
        paint(osr, static_cast<PaintElementType>(type));
        EXPECT_FALSE(asksAt(osr, time + 100 * kMs - 1)) << type;
        EXPECT_TRUE(asksAt(osr, time + 100 * kMs)) << type;
    }
}

TEST_F(RenderOsr, QuietForLessThanTwoSeconds_NoWholeFrame) {
    begin(osr);
    EXPECT_TRUE(asksAt(osr, 2 * kS - 1));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 2 * kS - 1), kNothing);
}

TEST_F(RenderOsr, QuietForTwoSeconds_NextPaintPresentsTheWholeFrameOnce) {
    begin(osr);
    EXPECT_TRUE(asksAt(osr, 2 * kS));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 2 * kS), kWhole);
    EXPECT_EQ(dirtyOfSamePageAt(osr, 2 * kS), kNothing);
}

TEST_F(RenderOsr, AfterAForcedFrame_TwoSecondsPassBeforeTheNext) {
    begin(osr);
    EXPECT_TRUE(asksAt(osr, 3 * kS));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 3 * kS), kWhole);
    EXPECT_TRUE(asksAt(osr, 5 * kS - 1));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 5 * kS - 1), kNothing);
    EXPECT_TRUE(asksAt(osr, 5 * kS + 200 * kMs));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 5 * kS + 200 * kMs), kWhole);
}

TEST_F(RenderOsr, PageThatPaintsByItself_ForcesNothingHoweverLong) {
    begin(osr);
    fakeNow = 10 * kS;
    paint(osr);
    EXPECT_FALSE(asksAt(osr, 10 * kS + 50 * kMs));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 10 * kS + 50 * kMs), kNothing);
}

TEST_F(RenderOsr, FirstQuestionAfterALongTime_AsksButForcesNothing) {
    paint(osr);
    EXPECT_TRUE(asksAt(osr, 10 * kS));
    EXPECT_EQ(dirtyOfSamePageAt(osr, 10 * kS), kNothing);
}

TEST_F(RenderOsr, FrameCleared_PresentsNothingToShow) {
    begin(osr);
    osr.clearFrame();
    EXPECT_TRUE(consumer.last().null);
    EXPECT_EQ(consumer.last().width, 0);
    EXPECT_EQ(consumer.last().height, 0);
    EXPECT_EQ(consumer.last().dirty, kNothing);
}

TEST_F(RenderOsr, FrameCleared_AsksAtOnceAgainAndOnce) {
    begin(osr);
    EXPECT_FALSE(osr.needsRepaint());
    osr.clearFrame();
    EXPECT_TRUE(osr.needsRepaint());
    EXPECT_FALSE(osr.needsRepaint());
}

TEST_F(RenderOsr, EveryPaint_IsDealtWith) {
    EXPECT_TRUE(paint(osr, PET_VIEW));
    EXPECT_EQ(consumer.calls.size(), 1u);
    EXPECT_TRUE(paint(osr, PET_POPUP));
    EXPECT_TRUE(paint(osr, static_cast<PaintElementType>(7)));
}

TEST_F(RenderOsr, UnknownPaintType_PresentsNothingAndLeavesTheFrameAlone) {
    begin(osr);
    const size_t before = consumer.calls.size();
    page.assign(page.size(), 0xFF000000);
    paint(osr, static_cast<PaintElementType>(2));
    EXPECT_EQ(consumer.calls.size(), before);
    page.assign(page.size(), 0xFF336699);
    EXPECT_EQ(dirtyOfSamePageAt(osr, 0), kNothing);
}

TEST_F(RenderOsr, PopupCalls_ReachTheCompositor) {
    osr.onPopupShow(true);
    osr.onPopupRect({30, 40, 0, 0});
    const Pixels list(100, 0xFF00FF00);
    osr.paint(false, nullptr, PET_POPUP, {}, list.data(), 10, 10);
    paint(osr);
    EXPECT_EQ(consumer.at(30, 40), 0xFF00FF00u);
    EXPECT_EQ(consumer.at(29, 40), 0xFF336699u);
    osr.onPopupShow(false);
    paint(osr);
    EXPECT_EQ(consumer.at(30, 40), 0xFF336699u);
}

TEST_F(RenderOsr, TickCloseAndResize_PresentNothing) {
    begin(osr);
    const size_t before = consumer.calls.size();
    osr.tick(5);
    osr.onViewClosed();
    osr.onResized();
    EXPECT_EQ(consumer.calls.size(), before);
}

// A pixel changed under the icon reports the icon's whole square, which tells its size and place.
TEST_F(RenderOsr, CloseIcon_SquareOf36WithAMarginOf20AtEachScale) {
    const struct {
        float scale;
        Rect square;
    } cases[] = {
        {1.0f, {144, 20, 36, 36}}, {1.25f, {130, 25, 45, 45}}, {1.5f, {116, 30, 54, 54}}, {2.0f, {88, 40, 72, 72}}};
    for (const auto& one : cases) {
        CefRenderOSR withIcon(consumer.sink(), one.scale, true);
        page.assign(page.size(), 0xFF336699);
        paint(withIcon, PET_VIEW, true);
        page.at(static_cast<size_t>(one.square.y + 10) * kWidth + one.square.x + 10) = 0xFFFFFFFF;
        paint(withIcon, PET_VIEW, true);
        EXPECT_EQ(consumer.last().dirty, one.square)
            << one.scale << ": " << consumer.last().dirty.x << "," << consumer.last().dirty.width;
        // Drawn at all: somewhere in the square the picture is not the page.
        bool drawn = false;
        for (int y = one.square.y; y < one.square.y + one.square.height; ++y) {
            for (int x = one.square.x; x < one.square.x + one.square.width; ++x) {
                drawn = drawn || consumer.at(x, y) != page.at(static_cast<size_t>(y) * kWidth + x);
            }
        }
        EXPECT_TRUE(drawn) << one.scale;
    }
}

TEST_F(RenderOsr, ViewWithoutCloseButton_DrawsNoIconEvenWhenTold) {
    paint(osr, PET_VIEW, true);
    EXPECT_EQ(consumer.last().pixels, page);
    page.at(30 * kWidth + 154) = 0xFFFFFFFF;
    paint(osr, PET_VIEW, true);
    EXPECT_EQ(consumer.last().dirty, (Rect{154, 30, 1, 1}));
}

TEST_F(RenderOsr, CloseButtonNotYetShown_DrawsNoIcon) {
    CefRenderOSR withIcon(consumer.sink(), 1.0f, true);
    paint(withIcon, PET_VIEW, false);
    EXPECT_EQ(consumer.last().pixels, page);
    withIcon.onPopupShow(true);
    withIcon.onPopupRect({150, 30, 160, 40});  // where the icon would be
    const Pixels popup(100, page[0]);
    withIcon.paint(false, nullptr, PET_POPUP, {}, popup.data(), 10, 10);
    paint(withIcon, PET_VIEW, false);
    withIcon.paint(false, nullptr, PET_POPUP, {}, popup.data(), 10, 10);
    EXPECT_EQ(consumer.last().dirty, (Rect{150, 30, 10, 10}));
    EXPECT_EQ(consumer.last().pixels, page);
}

TEST_F(RenderOsr, ShownAgain_NextFrameIsWholeOnce) {
    begin(osr);
    EXPECT_EQ(dirtyOfSamePageAt(osr, 10 * kMs), kNothing);
    osr.onShow();
    EXPECT_EQ(dirtyOfSamePageAt(osr, 20 * kMs), kWhole);
    EXPECT_EQ(dirtyOfSamePageAt(osr, 30 * kMs), kNothing);
}

}  // namespace ZEMO::UI
