#include "page_surface.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

namespace demo {
namespace {

/// A frame in which each pixel is `value`.
std::vector<std::uint32_t> frameOf(int width, int height, std::uint32_t value) {
    return std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height, value);
}

std::uint32_t pixelOf(const PageImage& image, int x, int y) {
    std::uint32_t value = 0;
    std::memcpy(&value, image.pixels.data() + (static_cast<std::size_t>(y) * image.width + x) * 4, 4);
    return value;
}

class PageSurfaceTest : public testing::Test {
protected:
    /// A surface that has shown a whole 8 x 6 frame of ones.
    PageSurfaceTest() {
        surface.present(frameOf(8, 6, 1).data(), 8, 6, {0, 0, 8, 6});
        surface.take(image);
    }

    PageSurface surface;
    PageImage image;
};

TEST(PageSurface, NothingPresented_NothingToShow) {
    PageSurface surface;
    PageImage image;
    EXPECT_FALSE(surface.take(image).isVisible);
    EXPECT_EQ(image.width, 0);
}

TEST(PageSurface, FirstFrame_TakenWholeWhateverItsRectangle) {
    PageSurface surface;
    PageImage image;
    surface.present(frameOf(8, 6, 7).data(), 8, 6, {0, 0, 0, 0});
    const auto update = surface.take(image);
    EXPECT_TRUE(update.isVisible);
    EXPECT_TRUE(update.isNewSize);
    EXPECT_EQ(update.changed, (PixelRect{0, 0, 8, 6}));
    EXPECT_EQ(pixelOf(image, 7, 5), 7u);
}

TEST_F(PageSurfaceTest, ChangedRectangle_OnlyItIsCopied) {
    surface.present(frameOf(8, 6, 2).data(), 8, 6, {2, 1, 3, 2});
    const auto update = surface.take(image);
    EXPECT_FALSE(update.isNewSize);
    EXPECT_EQ(update.changed, (PixelRect{2, 1, 3, 2}));
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x) {
            EXPECT_EQ(pixelOf(image, x, y), x >= 2 && x < 5 && y >= 1 && y < 3 ? 2u : 1u) << x << "," << y;
        }
    }
}

TEST_F(PageSurfaceTest, TwoFramesBetweenTwoTakes_UnionIsReported) {
    surface.present(frameOf(8, 6, 2).data(), 8, 6, {0, 0, 1, 1});
    surface.present(frameOf(8, 6, 3).data(), 8, 6, {6, 4, 2, 1});
    EXPECT_EQ(surface.take(image).changed, (PixelRect{0, 0, 8, 5}));
    EXPECT_EQ(pixelOf(image, 0, 0), 2u);
    EXPECT_EQ(pixelOf(image, 7, 4), 3u);
    EXPECT_EQ(pixelOf(image, 3, 2), 1u);
}

TEST_F(PageSurfaceTest, EmptyRectangle_NothingToUpload) {
    surface.present(frameOf(8, 6, 2).data(), 8, 6, {0, 0, 0, 0});
    EXPECT_TRUE(surface.take(image).changed.isEmpty());
    EXPECT_EQ(pixelOf(image, 3, 3), 1u);
    EXPECT_EQ(surface.figures().unchangedFrames, 1u);
}

TEST_F(PageSurfaceTest, RectangleBeyondTheFrame_IsClipped) {
    surface.present(frameOf(8, 6, 2).data(), 8, 6, {-3, 4, 50, 50});
    EXPECT_EQ(surface.take(image).changed, (PixelRect{0, 4, 8, 2}));
}

TEST_F(PageSurfaceTest, NewSize_WholeFrameIsTaken) {
    surface.present(frameOf(5, 9, 4).data(), 5, 9, {1, 1, 1, 1});
    const auto update = surface.take(image);
    EXPECT_TRUE(update.isNewSize);
    EXPECT_EQ(update.changed, (PixelRect{0, 0, 5, 9}));
    EXPECT_EQ(image.pixels.size(), 5u * 9 * 4);
}

TEST_F(PageSurfaceTest, NullFrame_HidesUntilTheNextWhichIsTakenWhole) {
    surface.present(nullptr, 0, 0, {});
    EXPECT_FALSE(surface.take(image).isVisible);
    surface.present(frameOf(8, 6, 9).data(), 8, 6, {0, 0, 0, 0});
    const auto update = surface.take(image);
    EXPECT_TRUE(update.isVisible);
    EXPECT_EQ(update.changed, (PixelRect{0, 0, 8, 6}));
    EXPECT_EQ(pixelOf(image, 0, 0), 9u);
}

TEST_F(PageSurfaceTest, AnotherView_ItsFrameIsTakenWhole) {
    surface.expectAnotherView();
    surface.present(frameOf(8, 6, 5).data(), 8, 6, {0, 0, 0, 0});
    EXPECT_EQ(surface.take(image).changed, (PixelRect{0, 0, 8, 6}));
    EXPECT_EQ(pixelOf(image, 4, 4), 5u);
}

TEST(PageSurface, FramesFromAnotherThread_ArriveWholeAndInOrder) {
    // Large enough that a copy without the lock would be caught half done.
    constexpr int kWidth = 400, kHeight = 400;
    constexpr std::uint32_t kLast = 600;
    PageSurface surface;
    PageImage image;
    std::atomic<bool> isDone = false;
    std::thread engine([&] {
        for (std::uint32_t value = 1; value <= kLast; ++value) {
            surface.present(frameOf(kWidth, kHeight, value).data(), kWidth, kHeight, {0, 0, kWidth, kHeight});
        }
        isDone = true;
    });
    std::uint32_t newest = 0;
    int torn = 0;
    for (bool isLast = false; !isLast;) {
        isLast = isDone;
        if (!surface.take(image).isVisible) continue;
        const std::uint32_t first = pixelOf(image, 0, 0);
        for (int y = 0; y < kHeight; ++y) torn += pixelOf(image, y, y) != first ? 1 : 0;
        EXPECT_GE(first, newest);
        newest = first;
    }
    engine.join();
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(newest, kLast);
}

}  // namespace
}  // namespace demo
