#include "render/frame_compositor.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "render/pixel_diff.h"

namespace ZEMO::UI {
namespace {

using Pixels = std::vector<uint32_t>;

struct Presented {
    bool null = false;
    int width = 0;
    int height = 0;
    Rect dirty;
    Pixels pixels;
};

/// Takes what the compositor presents, and keeps a copy the way a game does: only the dirty rectangle is uploaded.
struct Consumer {
    std::vector<Presented> calls;
    Pixels copy;
    int width = 0;
    int height = 0;

    FrameCompositor::Present sink() {
        return [this](const void* pixels, int w, int h, int x, int y, int dw, int dh) {
            Presented call{pixels == nullptr, w, h, {x, y, dw, dh}, {}};
            if (pixels) {
                call.pixels.resize(static_cast<size_t>(w) * h);
                std::memcpy(call.pixels.data(), pixels, call.pixels.size() * 4);
                if (w != width || h != height) copy.assign(call.pixels.size(), 0xDEADBEEF);
                width = w;
                height = h;
                for (int row = y; row < y + dh; ++row) {
                    for (int column = x; column < x + dw; ++column) {
                        copy.at(static_cast<size_t>(row) * w + column) =
                            call.pixels.at(static_cast<size_t>(row) * w + column);
                    }
                }
            }
            calls.push_back(std::move(call));
        };
    }

    const Presented& last() const { return calls.back(); }
    uint32_t at(int x, int y) const { return calls.back().pixels.at(static_cast<size_t>(y) * calls.back().width + x); }
};

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

bool contains(const Rect& outer, const Rect& inner) {
    return outer.x <= inner.x && outer.y <= inner.y && outer.x + outer.width >= inner.x + inner.width &&
           outer.y + outer.height >= inner.y + inner.height;
}

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

// ---- random frames against a plain model --------------------------------------------------------------------------

namespace {

/// Edges, exclusive at right and bottom, wide enough for any sum of two ints.
struct Edges {
    long long l = 0, t = 0, r = 0, b = 0;
    bool has(long long x, long long y) const { return l <= x && x < r && t <= y && y < b; }
    bool none() const { return r <= l || b <= t; }
    bool meets(const Edges& o) const { return !none() && !o.none() && l < o.r && o.l < r && t < o.b && o.t < b; }
    friend bool operator==(const Edges&, const Edges&) = default;
};

/// The compositor told a second time, pixel by pixel and without care for speed: for every pixel of the frame, in which
/// areas does it lie, and what is drawn there last.
class Model {
public:
    struct Out {
        Pixels pixels;
        Edges prescribed;   // the rectangle to report when popup and icon never met
        bool exact = true;  // false when more may be reported, so that the consumer's copy stays right
    };

    std::vector<uint8_t> icon;
    int iconWidth = 0, iconHeight = 0, closeSize = 0, closeMargin = 0;
    bool open = false;
    int popupLeft = 0, popupTop = 0;
    bool force = false;

    void show(bool visible) {
        open = visible;
        if (!visible) list.clear();
    }

    Out paintView(bool drawClose, const Pixels& frame, int w, int h) {
        const bool resized = w != width || h != height;
        Edges dirty;
        const Edges whole{0, 0, w, h};
        if (resized) {
            dirty = whole;
            composing = false;
        } else if (std::exchange(force, false)) {
            dirty = whole;
        } else {
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    if (page[static_cast<size_t>(y) * w + x] == frame[static_cast<size_t>(y) * w + x]) continue;
                    if (dirty.none()) dirty = {x, y, x + 1, y + 1};
                    dirty = {std::min<long long>(dirty.l, x), dirty.t, std::max<long long>(dirty.r, x + 1), y + 1};
                }
            }
        }
        width = w;
        height = h;
        page = frame;
        const bool popupUsed = open && !list.empty();
        if (!popupUsed && !drawClose) {
            Out out{page, dirty, !overlaysShown};
            composing = overlaysShown = false;
            lastPopup = {};
            lastPopup.l = lastPopup.r = keptX;
            lastPopup.t = lastPopup.b = keptY;
            lastCloseSize = 0;
            met = false;
            return out;
        }
        const Edges popup = popupUsed ? popupArea() : Edges{};
        const int size = drawClose && closeSize > 0 ? closeSize : 0;
        const int closeX = size > 0 ? w - closeMargin - size : 0;
        const Edges close{closeX, closeMargin, closeX + size, closeMargin + size};
        const Edges oldClose{lastCloseX, lastCloseY, lastCloseX + lastCloseSize, lastCloseY + lastCloseSize};
        const bool popupNew = !(popup == lastPopup);
        const bool closeNew = closeX != lastCloseX || closeMargin != lastCloseY || size != lastCloseSize;
        const bool popupAgain = popupUsed && (popupNew || dirty.meets(popup));
        const bool closeAgain = drawClose && (closeNew || popupAgain || dirty.meets(close));
        const bool scratch = !composing;

        met = met || popup.meets(close) || lastPopup.meets(close) || popup.meets(oldClose) || lastPopup.meets(oldClose);
        Out out{{}, scratch ? whole : dirty, !met};
        if (closeAgain && !closeNew && !scratch && dirty.meets(close)) out.exact = false;
        if (strayed && popupAgain && !popupNew) out.exact = false;
        if (popupAgain) strayed = false;
        if (scratch) picture = page;
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const size_t i = static_cast<size_t>(y) * w + x;
                const bool restored = scratch || dirty.has(x, y) || (popupNew && lastPopup.has(x, y)) ||
                                      (closeNew && oldClose.has(x, y)) || (popupAgain && popup.has(x, y)) ||
                                      (closeAgain && close.has(x, y));
                if (restored) picture[i] = page[i];
                if (popupUsed && (scratch || popupAgain)) drawPopupPixel(x, y, popup);
                if (drawClose && (scratch || closeAgain)) drawClosePixel(x, y);
            }
        }
        if (popupNew) grow(out.prescribed, lastPopup), grow(out.prescribed, popup);
        if (closeNew) grow(out.prescribed, oldClose), grow(out.prescribed, close);
        composing = overlaysShown = true;
        lastPopup = popup;
        keptX = popup.l;
        keptY = popup.t;
        lastCloseX = closeX;
        lastCloseY = closeMargin;
        lastCloseSize = size;
        out.pixels = picture;
        return out;
    }

    std::optional<Out> paintPopup(bool drawClose, const Pixels& frame, int w, int h) {
        list = frame;
        listWidth = w;
        listHeight = h;
        if (page.empty() || !composing) return std::nullopt;
        const Edges popup = popupArea();
        if (!(popup == lastPopup)) strayed = true;
        Out out{{}, clip(popup), true};
        if (popup.none()) out.prescribed = {};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (popup.has(x, y))
                    picture[static_cast<size_t>(y) * width + x] = page[static_cast<size_t>(y) * width + x];
                drawPopupPixel(x, y, popup);
            }
        }
        const Edges close{width - closeMargin - closeSize, closeMargin, width - closeMargin, closeMargin + closeSize};
        if (out.prescribed.meets(close)) met = true;
        if (drawClose && closeSize > 0 && out.prescribed.meets(close)) {
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) drawClosePixel(x, y);
            }
            grow(out.prescribed, close);
        }
        out.pixels = picture;
        return out;
    }

private:
    Edges popupArea() const {
        return {popupLeft, popupTop, static_cast<long long>(popupLeft) + listWidth,
                static_cast<long long>(popupTop) + listHeight};
    }
    Edges clip(Edges e) const {
        const long long w = e.r - e.l, h = e.b - e.t;
        e.l = std::max(0ll, e.l);
        e.t = std::max(0ll, e.t);
        e.r = e.l + std::min(w, width - e.l);
        e.b = e.t + std::min(h, height - e.t);
        return e.none() ? Edges{} : e;
    }
    void grow(Edges& e, const Edges& by) const {
        if (by.none()) return;
        e = clip(e.none() ? by
                          : Edges{std::min(e.l, by.l), std::min(e.t, by.t), std::max(e.r, by.r), std::max(e.b, by.b)});
    }
    void drawPopupPixel(int x, int y, const Edges& popup) {
        if (popup.l < 0 || !popup.has(x, y)) return;
        picture[static_cast<size_t>(y) * width + x] =
            list[static_cast<size_t>(y - popup.t) * listWidth + static_cast<size_t>(x - popup.l)];
    }
    void drawClosePixel(int x, int y) {
        const int i = x - (width - closeMargin - closeSize), j = y - closeMargin;
        if (icon.empty() || i < 0 || j < 0 || i >= closeSize || j >= closeSize) return;
        const float sx = (i + 0.5f) * iconWidth / closeSize - 0.5f, sy = (j + 0.5f) * iconHeight / closeSize - 0.5f;
        const int x0 = sx < 0 ? 0 : static_cast<int>(sx), y0 = sy < 0 ? 0 : static_cast<int>(sy);
        const int x1 = std::min(iconWidth - 1, x0 + 1), y1 = std::min(iconHeight - 1, y0 + 1);
        const float fx = sx - std::floor(sx), fy = sy - std::floor(sy);
        const auto texel = [&](int tx, int ty, int c) {
            return static_cast<float>(icon[(static_cast<size_t>(ty) * iconWidth + tx) * 4 + c]);
        };
        const auto sample = [&](int c) {
            const float a = texel(x0, y0, c) * (1 - fx) + texel(x1, y0, c) * fx;
            const float b = texel(x0, y1, c) * (1 - fx) + texel(x1, y1, c) * fx;
            return a * (1 - fy) + b * fy;
        };
        const float alpha = sample(3) / 255;
        uint32_t& pixel = picture[static_cast<size_t>(y) * width + x];
        uint32_t blended = 0xFF000000;
        for (int c = 0; c < 3; ++c) {
            blended |=
                static_cast<uint32_t>(static_cast<float>(pixel >> 8 * c & 0xFF) * (1 - alpha) + sample(c) * alpha)
                << 8 * c;
        }
        pixel = blended;
    }

    int width = 0, height = 0;
    Pixels page, picture, list;
    int listWidth = 0, listHeight = 0;
    bool composing = false;
    bool overlaysShown = false;  // the consumer's copy may hold popup or icon
    bool met = false;            // popup and icon were drawn over each other
    bool strayed = false;        // a popup was drawn away from where the last view frame had it
    Edges lastPopup;
    long long keptX = 0, keptY = 0;
    int lastCloseX = 0, lastCloseY = 0, lastCloseSize = 0;
};

class FrameCompositorRandom : public testing::TestWithParam<unsigned> {};

}  // namespace

TEST_P(FrameCompositorRandom, AnySequence_PixelsAsTheModelAndTheCopyReplayed) {
    constexpr int kFrames = 12'500;
    std::mt19937 random(GetParam());
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    int exact = 0, popups = 0, closes = 0, frames = 0;

    while (frames < kFrames) {  // one view after another
        Consumer consumer;
        FrameCompositor compositor(consumer.sink());
        Model model;
        model.iconWidth = 1 + below(6);
        model.iconHeight = 1 + below(6);
        model.icon.resize(static_cast<size_t>(model.iconWidth) * model.iconHeight * 4);
        for (uint8_t& byte : model.icon) byte = static_cast<uint8_t>(random());
        model.closeSize = below(8) ? 1 + below(9) : 0;
        model.closeMargin = below(6);
        compositor.setCloseImage(model.icon, model.iconWidth, model.iconHeight);
        compositor.setCloseMetrics(model.closeSize, model.closeMargin);

        int width = 0, height = 0;
        Pixels page;
        bool drawClose = false;
        Point places[2];
        Size list{3, 4};
        const auto resize = [&] {
            width = 1 + below(below(8) ? 14 : 40);
            height = 1 + below(below(8) ? 14 : 40);
            page.assign(static_cast<size_t>(width) * height, static_cast<uint32_t>(random()));
        };
        resize();
        const auto check = [&](const std::optional<Model::Out>& expected) {
            if (!expected) {
                ASSERT_TRUE(consumer.calls.empty());
                return;
            }
            ASSERT_EQ(consumer.calls.size(), 1u);
            const Presented& call = consumer.last();
            ASSERT_EQ(call.pixels, expected->pixels);
            ASSERT_EQ(consumer.copy, expected->pixels) << "the dirty rectangle misses a change";
            const Edges& want = expected->prescribed;
            const Rect wanted = want.none()
                                    ? Rect{}
                                    : Rect{static_cast<int>(want.l), static_cast<int>(want.t),
                                           static_cast<int>(want.r - want.l), static_cast<int>(want.b - want.t)};
            if (expected->exact) {
                ++exact;
                ASSERT_EQ(call.dirty, wanted);
            } else if (wanted.width > 0) {
                ASSERT_TRUE(contains(call.dirty, wanted));
            }
            ASSERT_TRUE(contains({0, 0, width, height}, call.dirty));
        };

        for (int step = 0; step < 300; ++step) {
            consumer.calls.clear();
            switch (below(12)) {
                case 0:
                    model.show(true);
                    compositor.onPopupShow(true);
                    [[fallthrough]];
                case 1: {
                    // often back to a place where it was before
                    Point& place = places[below(2)];
                    if (!below(3)) place = {below(width + 12) - 6, below(height + 12) - 6};
                    model.popupLeft = place.x;
                    model.popupTop = place.y;
                    if (!below(20)) (below(2) ? model.popupLeft : model.popupTop) = below(2) ? INT_MAX : INT_MIN;
                    compositor.onPopupRect({model.popupLeft, model.popupTop, 0, 0});
                    break;
                }
                case 2:
                    if (below(2)) break;
                    model.show(false);
                    compositor.onPopupShow(false);
                    break;
                case 3:
                case 4: {
                    if (!below(3)) list = {1 + below(12), 1 + below(12)};
                    const auto [w, h] = list;
                    Pixels listPixels(static_cast<size_t>(w) * h);
                    for (uint32_t& pixel : listPixels) pixel = static_cast<uint32_t>(random());
                    compositor.paintPopup(drawClose, listPixels.data(), w, h);
                    ASSERT_NO_FATAL_FAILURE(check(model.paintPopup(drawClose, listPixels, w, h)))
                        << "popup, step " << step;
                    ++popups;
                    break;
                }
                case 5:
                    if (!below(3)) drawClose = !drawClose;
                    break;
                default: {
                    switch (below(10)) {
                        case 0:
                            if (!below(3)) resize();
                            break;
                        case 1:
                            break;  // the same frame again
                        case 2:
                            for (uint32_t& pixel : page) pixel = static_cast<uint32_t>(random());
                            break;
                        case 3:
                            model.force = true;
                            compositor.forceFullFrame();
                            break;
                        case 4:
                            page[static_cast<size_t>(below(static_cast<int>(page.size())))] ^= 0x80000000u;
                            break;
                        default: {
                            const int x = below(width), y = below(height);
                            const int w = 1 + below(width - x), h = 1 + below(height - y);
                            const auto colour = static_cast<uint32_t>(random());
                            for (int i = 0; i < w * h; ++i)
                                page[static_cast<size_t>(y + i / w) * width + x + i % w] = colour + i % 3;
                        }
                    }
                    compositor.paintView(drawClose, page.data(), width, height);
                    ASSERT_NO_FATAL_FAILURE(check(model.paintView(drawClose, page, width, height)))
                        << "view, step " << step;
                    ++frames;
                    closes += drawClose;
                }
            }
        }
    }
    EXPECT_GT(popups, frames / 10);
    EXPECT_GT(closes, frames / 4);
    EXPECT_GT(exact, frames / 3) << "too few frames were held to the exact rectangle";
    RecordProperty("frames", frames);
    RecordProperty("exact", exact);
}

INSTANTIATE_TEST_SUITE_P(Seeds, FrameCompositorRandom, testing::Range(1u, 9u));  // 8 x 12,500 frames

}  // namespace ZEMO::UI
