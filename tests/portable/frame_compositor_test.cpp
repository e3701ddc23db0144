#include "render/frame_compositor.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "portable/frame_consumer.h"
#include "render/pixel_diff.h"

namespace ZEMO::UI {
namespace {

constexpr uint32_t kPage = 0xFF204060;
constexpr uint32_t kList = 0xFFEEDDCC;

struct View {
    explicit View(int w = 100, int h = 80) : width(w), height(h), page(static_cast<size_t>(w) * h, kPage) {}

    Consumer consumer;
    int width;
    int height;
    Pixels page;
    FrameCompositor compositor{consumer.sink()};

    uint32_t& pixel(int x, int y) { return page.at(static_cast<size_t>(y) * width + x); }
    void fill(const Rect& rect, uint32_t colour) {
        for (int y = rect.y; y < rect.y + rect.height; ++y) {
            for (int x = rect.x; x < rect.x + rect.width; ++x) pixel(x, y) = colour;
        }
    }
    Rect paint(bool drawClose = false) {
        compositor.paintView(drawClose, page.data(), width, height);
        return consumer.last().dirty;
    }
    void paintPopup(int w, int h, bool drawClose = false, uint32_t colour = kList) {
        const Pixels list(static_cast<size_t>(w) * h, colour);
        compositor.paintPopup(drawClose, list.data(), w, h);
    }
    void openPopup(int left, int top, int w, int h) {
        compositor.onPopupShow(true);
        compositor.onPopupRect({left, top, left + w, top + h});
    }
    /// One opaque white texel: the square shows as plain white.
    void useWhiteClose(int size, int margin) {
        compositor.setCloseImage(std::vector<uint8_t>(4, 255), 1, 1);
        compositor.setCloseMetrics(size, margin);
    }
};

}  // namespace

TEST(PixelDiff, AnyRunWithAnyDifference_AsPixelByPixel) {
    std::mt19937 random(7);
    for (size_t count = 0; count <= 70; ++count) {
        for (int round = 0; round < 60; ++round) {
            // blocks of the exact size, so that a read outside is seen
            const auto a = std::make_unique<uint8_t[]>(count * 4);
            const auto b = std::make_unique<uint8_t[]>(count * 4);
            for (size_t i = 0; i < count * 4; ++i) a[i] = b[i] = static_cast<uint8_t>(random());
            for (unsigned changes = count ? random() % 4 : 0; changes > 0; --changes) b[random() % (count * 4)] ^= 0x40;
            const auto differs = [&](size_t i) { return std::memcmp(a.get() + i * 4, b.get() + i * 4, 4) != 0; };

            size_t first = 0;
            while (first < count && !differs(first)) ++first;
            ASSERT_EQ(equalPixels(a.get(), b.get(), count), first) << "of " << count;

            const size_t from = random() % (count + 1);
            size_t end = from;
            for (size_t i = from; i < count; ++i) {
                if (differs(i)) end = i + 1;
            }
            ASSERT_EQ(endOfDifference(a.get(), b.get(), from, count), end) << "of " << count << " from " << from;
        }
    }
}

TEST(FrameCompositor, FirstFrame_PresentsWhole) {
    View view;
    EXPECT_EQ(view.paint(), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.consumer.last().pixels, view.page);
}

TEST(FrameCompositor, UnchangedFrame_StillPresentsWithEmptyDirty) {
    View view;
    view.paint();
    EXPECT_EQ(view.paint(), (Rect{0, 0, 0, 0}));
    EXPECT_EQ(view.consumer.calls.size(), 2u);
    EXPECT_EQ(view.consumer.last().pixels, view.page);
    EXPECT_EQ(view.consumer.last().width, 100);
    EXPECT_EQ(view.consumer.last().height, 80);
}

TEST(FrameCompositor, SizeChanged_PresentsWhole) {
    View view;
    view.paint();
    const Pixels smaller(50 * 40, kPage);
    view.compositor.paintView(false, smaller.data(), 50, 40);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{0, 0, 50, 40}));
    // as many pixels, another shape
    view.compositor.paintView(false, smaller.data(), 40, 50);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{0, 0, 40, 50}));
    view.compositor.paintView(false, smaller.data(), 40, 50);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{}));
}

TEST(FrameCompositor, ForcedFullFrame_NextFrameIsWholeAndOnlyThat) {
    View view;
    view.paint();
    view.compositor.forceFullFrame();
    EXPECT_EQ(view.paint(), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.paint(), (Rect{}));
}

TEST(FrameCompositor, ForcedFullFrameMeetsSizeChange_StaysPendingForTheNextFrame) {
    View view;
    view.compositor.forceFullFrame();
    EXPECT_EQ(view.paint(), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.paint(), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.paint(), (Rect{}));
}

TEST(FrameCompositor, OnePixelChanged_DirtyIsThatPixelAtEveryPlace) {
    for (const int width : {1, 3, 15, 16, 17, 33, 70}) {
        View view(width, 5);
        view.paint();
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < width; ++x) {
                view.pixel(x, y) ^= 0x01000000;  // alpha alone counts
                ASSERT_EQ(view.paint(), (Rect{x, y, 1, 1})) << "width " << width;
                ASSERT_EQ(view.consumer.copy, view.page);
            }
        }
    }
}

TEST(FrameCompositor, ScatteredChanges_DirtyIsTheSmallestRectangle) {
    View view;
    view.paint();
    view.pixel(40, 10) = 1;
    view.pixel(60, 20) = 2;
    view.pixel(7, 33) = 3;
    view.pixel(50, 70) = 4;
    EXPECT_EQ(view.paint(), (Rect{7, 10, 54, 61}));
    EXPECT_EQ(view.consumer.copy, view.page);
}

TEST(FrameCompositor, NoBufferOrNoSize_Ignored) {
    View view;
    view.compositor.paintView(false, nullptr, 100, 80);
    view.compositor.paintView(false, view.page.data(), 0, 80);
    view.compositor.paintView(false, view.page.data(), 100, -1);
    EXPECT_TRUE(view.consumer.calls.empty());
}

TEST(FrameCompositor, PopupPaintBeforeAnyView_PresentsNothingAndIsComposedLater) {
    View view;
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    EXPECT_TRUE(view.consumer.calls.empty());
    EXPECT_EQ(view.paint(), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.consumer.at(10, 20), kList);
    EXPECT_EQ(view.consumer.at(14, 23), kList);
    EXPECT_EQ(view.consumer.at(15, 23), kPage);
}

TEST(FrameCompositor, PopupOpensOverAPlainView_WaitsForTheViewThenPresentsWhole) {
    View view;
    view.paint();
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    EXPECT_EQ(view.consumer.calls.size(), 1u);
    EXPECT_EQ(view.paint(), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.consumer.at(12, 22), kList);
    EXPECT_EQ(view.paint(), (Rect{}));
}

TEST(FrameCompositor, PopupRepaintsWhileComposed_PresentsOnlyItsRectangle) {
    View view;
    view.paint();
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    view.paint();
    view.paintPopup(5, 4, false, 0xFF111111);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{10, 20, 5, 4}));
    EXPECT_EQ(view.consumer.at(12, 22), 0xFF111111u);
    EXPECT_EQ(view.consumer.copy, view.consumer.last().pixels);
}

TEST(FrameCompositor, PopupMoves_OldPlaceRestoredAndBothReported) {
    View view;
    view.paint();
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    view.paint();
    view.compositor.onPopupRect({30, 40, 35, 44});
    EXPECT_EQ(view.paint(), (Rect{10, 20, 25, 24}));
    EXPECT_EQ(view.consumer.at(10, 20), kPage);
    EXPECT_EQ(view.consumer.at(30, 40), kList);
}

TEST(FrameCompositor, PopupClosesUnderACloseButton_OldAreaRestoredAndReported) {
    View view;
    view.useWhiteClose(8, 4);
    view.paint(true);
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    EXPECT_EQ(view.paint(true), (Rect{10, 20, 5, 4}));
    view.compositor.onPopupShow(false);
    EXPECT_EQ(view.paint(true), (Rect{10, 20, 5, 4}));
    EXPECT_EQ(view.consumer.at(12, 22), kPage);
    EXPECT_EQ(view.paint(true), (Rect{}));
}

TEST(FrameCompositor, PopupClosesOnAPlainView_OldAreaReportedOnce) {
    View view;
    view.paint();
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    view.paint();
    view.compositor.onPopupShow(false);
    EXPECT_TRUE(contains(view.paint(), {10, 20, 5, 4}));
    EXPECT_EQ(view.consumer.copy, view.page);
    EXPECT_EQ(view.paint(), (Rect{}));
}

TEST(FrameCompositor, PageChangesUnderThePopup_PopupStaysOnTop) {
    View view;
    view.paint();
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    view.paint();
    view.fill({8, 18, 4, 4}, 7);
    EXPECT_EQ(view.paint(), (Rect{8, 18, 4, 4}));
    EXPECT_EQ(view.consumer.at(8, 18), 7u);
    EXPECT_EQ(view.consumer.at(10, 20), kList);
}

TEST(FrameCompositor, PopupLeftOfTheView_NotDrawnButItsAreaReported) {
    View view;
    view.useWhiteClose(8, 4);
    view.paint(true);
    view.openPopup(-2, 20, 6, 4);
    view.paintPopup(6, 4, true);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{0, 20, 6, 4}));
    for (int y = 20; y < 24; ++y) {
        for (int x = 0; x < 6; ++x) EXPECT_EQ(view.consumer.at(x, y), kPage);
    }
    EXPECT_EQ(view.paint(true), (Rect{0, 20, 6, 4}));
    EXPECT_EQ(view.consumer.at(0, 20), kPage);
}

TEST(FrameCompositor, PopupAboveAndPastTheRightAndBottomEdges_IsCut) {
    View view;
    view.paint();
    view.openPopup(96, -1, 10, 3);
    view.paintPopup(10, 3);
    view.paint();
    EXPECT_EQ(view.consumer.at(96, 0), kList);
    EXPECT_EQ(view.consumer.at(99, 1), kList);
    EXPECT_EQ(view.consumer.at(99, 2), kPage);
    EXPECT_EQ(view.consumer.at(95, 0), kPage);
    EXPECT_EQ(view.consumer.at(0, 1), kPage);

    view.compositor.onPopupRect({50, 78, 60, 81});
    view.paint();
    EXPECT_EQ(view.consumer.at(50, 79), kList);
    EXPECT_EQ(view.consumer.at(50, 77), kPage);
}

TEST(FrameCompositor, PopupLargerThanTheView_FillsIt) {
    View view(8, 6);
    view.openPopup(0, 0, 50, 40);
    view.paintPopup(50, 40);
    view.paint();
    EXPECT_EQ(view.consumer.last().pixels, Pixels(8 * 6, kList));
}

TEST(FrameCompositor, PopupRepaintWithoutASize_PresentsEmptyDirty) {
    View view;
    view.paint();
    view.openPopup(10, 20, 5, 4);
    view.paintPopup(5, 4);
    view.paint();
    const uint32_t pixel = 0;
    view.compositor.paintPopup(false, &pixel, 0, 4);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{}));
    view.compositor.paintPopup(false, &pixel, -3, -3);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{}));
    EXPECT_TRUE(contains(view.paint(), {10, 20, 5, 4}));
    EXPECT_EQ(view.consumer.last().pixels, view.page);
}

TEST(FrameCompositor, PopupRectanglesAtTheEndsOfInt_NoOverflowNoPixels) {
    const int ends[] = {INT_MIN, INT_MIN + 1, -1, 0, 99, 100, INT_MAX - 1, INT_MAX};
    for (const bool drawClose : {false, true}) {
        for (const int left : ends) {
            for (const int top : ends) {
                View view;
                view.useWhiteClose(8, 4);
                view.paint(drawClose);
                view.compositor.onPopupShow(true);
                view.compositor.onPopupRect({left, top, INT_MAX, INT_MIN});
                view.paintPopup(3, 3, drawClose);
                view.paint(drawClose);
                view.paintPopup(3, 3, drawClose);
                view.compositor.onPopupRect({top, left, INT_MIN, INT_MAX});
                view.paint(drawClose);
                view.compositor.onPopupShow(false);
                view.paint(drawClose);
                for (const Presented& call : view.consumer.calls) {
                    ASSERT_TRUE(contains({0, 0, 100, 80}, call.dirty)) << left << " " << top;
                    ASSERT_GE(call.dirty.width, 0);
                    ASSERT_GE(call.dirty.height, 0);
                }
                ASSERT_EQ(view.consumer.copy, view.consumer.last().pixels) << left << " " << top;
            }
        }
    }
}

TEST(FrameCompositor, CloseButtonAppears_DrawnOnceAndWholeFramePresented) {
    View view;
    view.useWhiteClose(8, 4);
    view.paint();
    EXPECT_EQ(view.paint(true), (Rect{0, 0, 100, 80}));
    EXPECT_EQ(view.consumer.at(88, 4), 0xFFFFFFFFu);
    EXPECT_EQ(view.consumer.at(95, 11), 0xFFFFFFFFu);
    EXPECT_EQ(view.consumer.at(87, 4), kPage);
    EXPECT_EQ(view.consumer.at(96, 11), kPage);
    EXPECT_EQ(view.consumer.at(88, 12), kPage);
    EXPECT_EQ(view.paint(true), (Rect{}));
}

TEST(FrameCompositor, OnlyPixelsUnderTheButtonChange_ButtonRedrawnAndWholeSquareReported) {
    View view;
    view.compositor.setCloseImage({255, 255, 255, 128}, 1, 1);
    view.compositor.setCloseMetrics(8, 4);
    view.paint(true);
    const uint32_t before = view.consumer.at(90, 6);
    view.pixel(90, 6) = 0xFF000000;
    EXPECT_EQ(view.paint(true), (Rect{88, 4, 8, 8}));
    EXPECT_NE(view.consumer.at(90, 6), before);
    EXPECT_NE(view.consumer.at(90, 6), 0xFF000000u);
    EXPECT_EQ(view.consumer.at(91, 6), before);
    EXPECT_EQ(view.consumer.copy, view.consumer.last().pixels);
}

TEST(FrameCompositor, ChangeAwayFromTheButton_DirtyStaysSmall) {
    View view;
    view.useWhiteClose(8, 4);
    view.paint(true);
    view.pixel(3, 70) = 1;
    EXPECT_EQ(view.paint(true), (Rect{3, 70, 1, 1}));
    view.pixel(87, 4) = 1;  // its neighbour pixel
    EXPECT_EQ(view.paint(true), (Rect{87, 4, 1, 1}));
}

TEST(FrameCompositor, ButtonDisappears_SquareRestoredAndReported) {
    View view;
    view.useWhiteClose(8, 4);
    view.paint(true);
    EXPECT_TRUE(contains(view.paint(false), {88, 4, 8, 8}));
    EXPECT_EQ(view.consumer.copy, view.page);
    EXPECT_EQ(view.paint(false), (Rect{}));
}

TEST(FrameCompositor, PopupRepaintUnderTheButton_ButtonDrawnAndUnionReported) {
    View view;
    view.useWhiteClose(8, 4);
    view.openPopup(80, 2, 10, 4);
    view.paintPopup(10, 4);
    view.paint(true);
    EXPECT_EQ(view.consumer.at(88, 4), 0xFFFFFFFFu);
    view.paintPopup(10, 4, true, 0xFF333333);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{80, 2, 16, 10}));
    EXPECT_EQ(view.consumer.at(88, 4), 0xFFFFFFFFu);
    EXPECT_EQ(view.consumer.at(87, 4), 0xFF333333u);
}

TEST(FrameCompositor, NoCloseImage_SquareNotDrawnPageUntouched) {
    View view;
    view.compositor.setCloseMetrics(8, 4);
    view.compositor.setCloseImage(std::vector<uint8_t>(7, 255), 1, 2);  // too short for its size
    view.paint(true);
    EXPECT_EQ(view.consumer.last().pixels, view.page);
}

TEST(FrameCompositor, ViewSmallerThanTheButton_ButtonCut) {
    View view(6, 6);
    view.useWhiteClose(8, 1);
    view.paint(true);
    EXPECT_EQ(view.consumer.at(0, 0), kPage);
    EXPECT_EQ(view.consumer.at(0, 1), 0xFFFFFFFFu);
    EXPECT_EQ(view.consumer.at(4, 5), 0xFFFFFFFFu);
    EXPECT_EQ(view.consumer.at(5, 5), kPage);
}

TEST(FrameCompositor, CloseMetricsAtTheEndsOfInt_NoOverflow) {
    const int ends[] = {INT_MIN, -5, 0, 5, 99, INT_MAX};
    for (const int size : {INT_MIN, 0, 1, 200, INT_MAX}) {
        for (const int margin : ends) {
            View view(20, 20);
            view.useWhiteClose(size, margin);
            view.paint(true);
            view.pixel(3, 3) = 1;
            view.paint(true);
            ASSERT_EQ(view.consumer.copy, view.consumer.last().pixels);
        }
    }
}

// One row worked out by hand: two texels over four pixels lie at -0.25, 0.25, 0.75, 1.25. The first position is below
// the first texel, where the weight comes out as 0.75 of the second texel.
TEST(FrameCompositor, CloseImageScaledUp_BilinearWeightsByHand) {
    View view(4, 4);
    view.page.assign(16, 0xFF000000);
    view.compositor.setCloseImage({100, 40, 0, 255, 200, 80, 0, 255}, 2, 1);
    view.compositor.setCloseMetrics(4, 0);
    view.paint(true);
    const uint8_t expected[4][2] = {{175, 70}, {125, 50}, {175, 70}, {200, 80}};
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(view.consumer.at(x, 0) & 0xFF, expected[x][0]) << x;  // channel 0 stays channel 0
        EXPECT_EQ(view.consumer.at(x, 0) >> 8 & 0xFF, expected[x][1]) << x;
        EXPECT_EQ(view.consumer.at(x, 0) >> 24, 255u);
    }
}

TEST(FrameCompositor, HalfTransparentIcon_BlendTruncates) {
    View view(2, 2);
    view.page.assign(4, 0x00030201);
    view.compositor.setCloseImage({255, 255, 255, 51}, 1, 1);  // alpha 0.2: 1 * 0.8 + 51 = 51.8
    view.compositor.setCloseMetrics(2, 0);
    view.paint(true);
    EXPECT_EQ(view.consumer.at(0, 0), 0xFF353433u);
}

TEST(FrameCompositor, ClearFrame_PresentsNullAndZerosThenComposesAnew) {
    View view;
    view.useWhiteClose(8, 4);
    view.paint(true);
    view.compositor.clearFrame();
    EXPECT_TRUE(view.consumer.last().null);
    EXPECT_EQ(view.consumer.last().width, 0);
    EXPECT_EQ(view.consumer.last().height, 0);
    EXPECT_EQ(view.consumer.last().dirty, (Rect{}));
    EXPECT_EQ(view.paint(true), (Rect{0, 0, 100, 80}));
}

TEST(FrameCompositor, ClearFrameWithoutASink_Throws) {
    FrameCompositor compositor{nullptr};
    EXPECT_THROW(compositor.clearFrame(), std::bad_function_call);
}

TEST(FrameCompositor, BuffersInBlocksOfTheExactSize_NothingReadBeyond) {
    FrameCompositor compositor{[](const void*, int, int, int, int, int, int) {}};
    for (int width = 1; width < 40; ++width) {
        for (int height = 1; height < 4; ++height) {
            const size_t count = static_cast<size_t>(width) * height;
            const auto frame = std::make_unique<uint32_t[]>(count);
            compositor.paintView(false, frame.get(), width, height);
            compositor.paintView(false, frame.get(), width, height);
            frame[count - 1] = 1;
            compositor.paintView(false, frame.get(), width, height);
            compositor.paintPopup(false, frame.get(), width, height);
        }
    }
}

}  // namespace ZEMO::UI
