#include "page_picture.h"

#include <gtest/gtest.h>

#include <chrono>

// What the reference module keeps of the frames that it is handed, without an engine: which frames come when can't be
// asked of that.
namespace ZEMO::Test {
namespace {

using namespace GraphicsHook;
using Pixels = std::vector<uint32_t>;

constexpr uint32_t kColour = 0xFF112233;

class PageFrames : public testing::Test {
protected:
    void take(int width, int height, uint32_t colour) { take(width, height, Pixels(size_t(width) * height, colour)); }
    void take(int width, int height, const Pixels& pixels) {
        const UI::Hook::RectList whole{{0, 0, width, height}};
        picture.takeFrame(UI::Hook::PET_VIEW, &whole, pixels.data(), width, height);
    }
    uint32_t cornerNow() {
        uint32_t colour = 0;
        picture.visit([&](PagePicture::Content& content) {
            colour = content.page.row(content.page.getHeight() - 1)[content.page.getWidth() - 1];
        });
        return colour;
    }

    PagePicture picture;
};

/// A frame in which a page has painted what a view without room shows, and nothing else yet.
Pixels onlyFirstPixels(int width, int height, int side) {
    Pixels pixels(static_cast<size_t>(width) * height);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) pixels[static_cast<size_t>(y) * width + x] = kColour;
    return pixels;
}

}  // namespace

TEST(PagePlane, SizeFallsBeforeAnyoneLooked_ChangeIsOfTheNewSize) {
    const Pixels pixels(100 * 80, kColour);
    Plane plane;
    uint64_t seen = 0;
    plane.take(nullptr, pixels.data(), 100, 80);
    plane.changedSince(seen);
    plane.take(nullptr, pixels.data(), 100, 80);
    plane.take(nullptr, pixels.data(), 50, 40);
    const Box changed = plane.changedSince(seen);
    EXPECT_EQ(changed.right, 50) << "a texture of the new size takes no more";
    EXPECT_EQ(changed.bottom, 40);
    EXPECT_TRUE(plane.changedSince(seen).isEmpty());
}

TEST_F(PageFrames, ViewWithoutRoomAtAnyScale_PictureFromBeforeStays) {
    take(100, 80, kColour);
    for (const int side : {1, 2, 3, 5}) {
        take(side, side, 0xFF000000);
        EXPECT_EQ(cornerNow(), kColour) << side;
    }
    take(60, 40, 0xFF332211);
    EXPECT_EQ(cornerNow(), 0xFF332211);
}

TEST_F(PageFrames, BlankAroundAMinimising_PictureFromBeforeStays) {
    take(100, 80, kColour);
    picture.expectBlankFrames();
    take(100, 80, onlyFirstPixels(100, 80, 1));
    EXPECT_EQ(cornerNow(), kColour) << "on the way down";
    take(1, 1, kColour);
    take(120, 90, 0);
    take(120, 90, onlyFirstPixels(120, 90, 2));
    EXPECT_EQ(cornerNow(), kColour) << "on the way up";
    take(120, 90, 0xFF332211);
    EXPECT_EQ(cornerNow(), 0xFF332211);
}

TEST_F(PageFrames, PartOfAFrameAfterBlankOnes_WholeFrameIsTaken) {
    take(100, 80, kColour);
    picture.expectBlankFrames();
    take(100, 80, 0);
    const UI::Hook::RectList first{{0, 0, 1, 1}};
    const Pixels pixels(100 * 80, 0xFF332211);
    picture.takeFrame(UI::Hook::PET_VIEW, &first, pixels.data(), 100, 80);
    EXPECT_EQ(cornerNow(), 0xFF332211);
}

TEST_F(PageFrames, HiddenSinceTheFrameBegan_ShownByTheNextOneWhole) {
    take(100, 80, kColour);
    picture.beginFrame();
    picture.hide();
    take(100, 80, 0xFF332211);
    EXPECT_FALSE(picture.isShown());
    picture.beginFrame();
    const UI::Hook::RectList first{{0, 0, 1, 1}};
    const Pixels pixels(100 * 80, 0xFF445566);
    picture.takeFrame(UI::Hook::PET_VIEW, &first, pixels.data(), 100, 80);
    EXPECT_TRUE(picture.isShown());
    EXPECT_EQ(cornerNow(), 0xFF445566) << "what the other view left is gone";
}

TEST_F(PageFrames, PageTurnsTransparent_TakenAtOnceUnlessMinimisedJustBefore) {
    take(100, 80, kColour);
    take(100, 80, 0);
    EXPECT_EQ(cornerNow(), 0u);
    take(100, 80, kColour);
    take(1, 1, kColour);
    const auto start = std::chrono::steady_clock::now();
    while (cornerNow() == kColour && std::chrono::steady_clock::now() < start + std::chrono::seconds(30)) {
        take(100, 80, 0);
        Sleep(10);
    }
    EXPECT_EQ(cornerNow(), 0u) << "a page that stays transparent is shown so in the end";
}

}  // namespace ZEMO::Test
