// What the Direct3D 11 renderer shows of a page's frames: real device, real window, the target read back as it is
// presented. An opaque pixel must come through as it is; where something lies over something else, the blending unit
// may round a channel by one.
#include <gtest/gtest.h>

#include <cmath>

#include "render/close_image.h"
#include "window/d3d11_window.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

constexpr int kRounding = 1;
constexpr int kIconRounding = 2;  // the sampler rounds as well

void put(Picture& under, const Picture& picture, int left, int top) {
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            uint32_t& pixel = under.pixels[static_cast<size_t>(top + y) * static_cast<size_t>(under.width) +
                                           static_cast<size_t>(left + x)];
            pixel = over(picture.at(x, y), pixel);
        }
    }
}

Picture onBackground(const Picture& page) {
    Picture shown = solid(page.width, page.height, kBehindPage);
    put(shown, page, 0, 0);
    return shown;
}

/// Has the window show `popup` over `page`, and answers what that must look like.
Picture withPopup(D3D11Window& window, Picture page, const Picture& popup, int left, int top) {
    window.paint(page);
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(left, top, popup.width, popup.height));
    window.paint(popup, PET_POPUP);
    window.render();
    put(page, popup, left, top);
    return page;
}

/// The mean of four texels: what the sampler gives for a picture of twice the size.
float halved(const CloseImage& icon, int x, int y, int channel) {
    float sum = 0;
    for (const int offset : {0, 1, icon.width, icon.width + 1}) {
        const int texel = 2 * y * icon.width + 2 * x + offset;
        sum += icon.rgba[static_cast<size_t>(texel) * 4 + static_cast<size_t>(channel)];
    }
    return sum / 4;
}

/// The page with the icon of 36 pixels over it: straight alpha, in the alpha channel as well.
Picture withIcon(Picture page, int left, int top) {
    const CloseImage icon = loadCloseImage();
    for (int y = 0; y < 36; ++y) {
        for (int x = 0; x < 36; ++x) {
            uint32_t& pixel = page.pixels[static_cast<size_t>(top + y) * static_cast<size_t>(page.width) +
                                          static_cast<size_t>(left + x)];
            const float alpha = halved(icon, x, y, 3) / 255;
            uint32_t result = 0;
            for (int c = 0; c < 4; ++c) {
                const int from = c == 3 ? 3 : 2 - c;  // the file has red first
                const float under = static_cast<float>(pixel >> (8 * c) & 0xFF);
                const float value = halved(icon, x, y, from) * alpha + under * (1 - alpha);
                result |= static_cast<uint32_t>(std::lround(value)) << (8 * c);
            }
            pixel = result;
        }
    }
    return page;
}

TEST(D3D11Pictures, OpaquePageOfTheWindowsSize_SamePixels) {
    D3D11Window window(321, 203);
    const Picture page = noise(321, 203, 0xFF);
    window.paint(page);
    window.render();
    EXPECT_EQ(window.differences(page), "");
}

TEST(D3D11Pictures, NoFrameYet_BackgroundColour) {
    D3D11Window window(320, 200);
    window.render();
    EXPECT_EQ(window.differences(solid(320, 200, kBehindPage)), "");
}

TEST(D3D11Pictures, HalfTransparentPage_OverTheBackgroundColour) {
    D3D11Window window(320, 200);
    for (const uint8_t alpha : std::initializer_list<uint8_t>{0x00, 0x01, 0x40, 0x80, 0xFE}) {
        const Picture page = noise(320, 200, alpha);
        window.paint(page);
        window.render();
        EXPECT_EQ(window.differences(onBackground(page), kRounding), "") << "alpha " << int{alpha};
    }
}

TEST(D3D11Pictures, TwoPaintsInOneCycle_OnlyTheLaterIsShownAndUploaded) {
    D3D11Window window(320, 200);
    window.paint(noise(320, 200, 0xFF, 1));
    window.paint(noise(320, 200, 0xFF, 2));
    window.render();
    EXPECT_EQ(window.differences(noise(320, 200, 0xFF, 2)), "");
    EXPECT_EQ(window.calls.count("Map "), 1u);
}

TEST(D3D11Pictures, NothingPaintedSince_PictureStaysWithoutAnUpload) {
    D3D11Window window(320, 200);
    window.paint(noise(320, 200, 0xFF));
    window.render();
    window.calls.take();
    window.render();
    EXPECT_EQ(window.differences(noise(320, 200, 0xFF)), "");
    EXPECT_EQ(window.calls.count("Map "), 0u);
}

TEST(D3D11Pictures, WindowResized_StretchedUntilThePageFollowsThenSamePixels) {
    D3D11Window window(320, 200);
    window.paint(solid(320, 200, 0xFF336699));
    window.render();
    window.resize(410, 301);
    EXPECT_FALSE(window.render(true)) << "the resize is done";
    EXPECT_EQ(window.differences(solid(410, 301, 0xFF336699)), "");
    const Picture page = noise(410, 301, 0xFF);
    window.paint(page);
    window.render();
    EXPECT_EQ(window.differences(page), "");
}

TEST(D3D11Pictures, PageSmallerThanTheWindow_FillsIt) {
    D3D11Window window(320, 200);
    Picture page = solid(160, 100, 0xFF0000FF);
    for (int y = 0; y < 100; ++y) {
        for (int x = 80; x < 160; ++x) page.pixels[static_cast<size_t>(y) * 160 + static_cast<size_t>(x)] = 0xFFFF0000;
    }
    window.paint(page);
    window.render();
    const auto shown = window.calls.presented();
    EXPECT_EQ(shown.bgra(0, 0), 0xFF0000FFu);
    EXPECT_EQ(shown.bgra(157, 199), 0xFF0000FFu);
    EXPECT_EQ(shown.bgra(162, 0), 0xFFFF0000u);
    EXPECT_EQ(shown.bgra(319, 199), 0xFFFF0000u);
}

TEST(D3D11Pictures, Popup_OverThePageAtItsPlaceUntilItIsHidden) {
    D3D11Window window(320, 200);
    const Picture page = noise(320, 200, 0xFF);
    EXPECT_EQ(window.differences(withPopup(window, page, noise(90, 60, 0xFF, 7), 40, 30)), "");
    window.renderer->onPopupShow(nullptr, false);
    window.render();
    EXPECT_EQ(window.differences(page), "");
}

TEST(D3D11Pictures, HalfTransparentPopup_OverThePage) {
    D3D11Window window(320, 200);
    const Picture page = noise(320, 200, 0xFF);
    EXPECT_EQ(window.differences(withPopup(window, page, noise(64, 50, 0x80, 7), 80, 50), kRounding), "");
}

TEST(D3D11Pictures, PopupMoved_ShownAtTheNewPlace) {
    D3D11Window window(320, 200);
    const Picture page = solid(320, 200, 0xFF223344);
    const Picture popup = noise(64, 50, 0xFF, 7);
    window.paint(page);
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(10, 20, 64, 50));
    window.paint(popup, PET_POPUP);
    window.render();
    window.renderer->onPopupSize(nullptr, CefRect(200, 100, 64, 50));
    window.render();
    Picture both = page;
    put(both, popup, 200, 100);
    EXPECT_EQ(window.differences(both), "");
}

TEST(D3D11Pictures, PopupOfZeroWidth_NotDrawnThoughThereIsAFrame) {
    D3D11Window window(320, 200);
    const Picture page = solid(320, 200, 0xFF223344);
    window.paint(page);
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(10, 20, 0, 50));
    window.paint(noise(64, 50, 0xFF), PET_POPUP);
    window.calls.take();
    window.render();
    EXPECT_EQ(window.differences(page), "");
    EXPECT_EQ(window.calls.count("Draw "), 1u);
}

TEST(D3D11Pictures, PopupSizeBeforePopupShow_Lost) {
    D3D11Window window(320, 200);
    const Picture page = solid(320, 200, 0xFF223344);
    window.paint(page);
    window.renderer->onPopupSize(nullptr, CefRect(10, 20, 64, 50));
    window.renderer->onPopupShow(nullptr, true);
    window.paint(noise(64, 50, 0xFF), PET_POPUP);
    window.render();
    EXPECT_EQ(window.differences(page), "");
}

TEST(D3D11Pictures, CloseButton_IconInItsSquareOverThePage) {
    for (const int width : {320, 960}) {  // on both sides of the width that once chose another size
        D3D11Window window(width, 200, true);
        const Picture page = noise(width, 200, 0xFF);
        window.paint(page);
        window.render();
        EXPECT_EQ(window.differences(withIcon(page, width - 56, 20), kIconRounding), "") << width;
    }
}

TEST(D3D11Pictures, CloseButtonWithoutAPage_IconOverTheBackground) {
    D3D11Window window(320, 200, true);
    window.render();
    EXPECT_EQ(window.differences(withIcon(solid(320, 200, kBehindPage), 320 - 56, 20), kIconRounding), "");
}

TEST(D3D11Pictures, CloseButtonAfterAResize_AtTheNewCorner) {
    D3D11Window window(320, 200, true);
    window.render();
    window.resize(500, 260);
    window.render(true);
    EXPECT_EQ(window.differences(withIcon(solid(500, 260, kBehindPage), 500 - 56, 20), kIconRounding), "");
}

TEST(D3D11Pictures, OnTheScreen_SamePixels) {
    D3D11Window window(320, 200);
    const Picture page = solid(320, 200, 0xFF336699);
    window.paint(page);
    const POINT middle = clientToScreen(window.game.handle(), {160, 100});
    const HDC screen = GetDC(nullptr);
    COLORREF seen = 0;
    // The display takes the picture over in its own time.
    for (int attempt = 0; attempt < 100 && seen != RGB(0x33, 0x66, 0x99); ++attempt) {
        window.render();
        Sleep(20);
        seen = GetPixel(screen, middle.x, middle.y);
    }
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(seen, RGB(0x33, 0x66, 0x99));
}

}  // namespace
}  // namespace ZEMO::Test
