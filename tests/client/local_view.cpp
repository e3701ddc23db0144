#include "client/local_view.h"

#include <cmath>
#include <format>
#include <iostream>

#include "client/page_browser.h"
#include "render/close_button_metrics.h"
#include "render/close_image.h"
#include "render/display_scale.h"
#include "render/pixel_scale.h"

namespace ZEMO::Test {
namespace {

using ZEMO::UI::CefAdapter;

class WatchedAdapter final : public CefAdapter {
public:
    WatchedAdapter(ZEMO::UI::WebViewLink link, HWND window, LocalView::Options options,
                   std::shared_ptr<EngineFrames> engineFrames)
        : CefAdapter(std::move(link), window, options.style, options.closeButton, nullptr, 0, nullptr),
          frames(std::move(engineFrames)),
          scale(ZEMO::UI::getWindowScale(window)) {}

    void OnPaint(CefRefPtr<CefBrowser> source, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override {
        frames->paint(type, buffer, width, height);
        CefAdapter::OnPaint(source, type, dirtyRects, buffer, width, height);
    }
    void OnPopupShow(CefRefPtr<CefBrowser> source, bool show) override {
        frames->popupShown(show);
        CefAdapter::OnPopupShow(source, show);
    }
    void OnPopupSize(CefRefPtr<CefBrowser> source, const CefRect& rect) override {
        ZEMO::Rect device;
        ZEMO::UI::logicalToDeviceRect(device, {rect.x, rect.y, rect.width, rect.height}, scale);
        frames->popupPlaced({device.x, device.y, device.width, device.height});
        CefAdapter::OnPopupSize(source, rect);
    }

private:
    std::shared_ptr<EngineFrames> frames;
    float scale;
};

int shift(int channel) { return channel * 8; }

/// The icon as a linear filter takes it for one of `size` columns or rows; its first row is the lowest.
struct Icon {
    ZEMO::UI::CloseImage image = ZEMO::UI::loadCloseImage();

    float texel(int x, int y, int channel) const {
        const int column = (x + image.width) % image.width;
        const int row = (y + image.height) % image.height;
        return image.rgba[(static_cast<size_t>(row) * image.width + column) * 4 + channel];
    }
    float sample(float x, float y, int channel) const {
        const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
        const float right = x - static_cast<float>(left), down = y - static_cast<float>(top);
        const auto row = [&](int at) {
            return texel(left, at, channel) * (1 - right) + texel(left + 1, at, channel) * right;
        };
        return row(top) * (1 - down) + row(top + 1) * down;
    }
    uint32_t over(uint32_t under, int column, int row, int size) const {
        const auto scaled = [&](int at, int length) {
            return (static_cast<float>(at) + 0.5f) * static_cast<float>(length) / static_cast<float>(size) - 0.5f;
        };
        const float x = scaled(column, image.width), y = scaled(size - 1 - row, image.height);
        const float alpha = sample(x, y, 3) / 255;
        uint32_t result = 0xFF000000;
        for (const int channel : {0, 1, 2}) {  // red is the icon's first byte and the picture's third
            const float below = static_cast<float>((under >> shift(2 - channel)) & 0xFF);
            const float mixed = sample(x, y, channel) * alpha + below * (1 - alpha);
            result |= static_cast<uint32_t>(std::lround(mixed)) << shift(2 - channel);
        }
        return result;
    }
};

CefRect iconSquare(int width, float scale) {
    const int size = ZEMO::UI::logicalToDevice(ZEMO::UI::kCloseButtonSizeWide, scale);
    const int margin = ZEMO::UI::logicalToDevice(ZEMO::UI::kCloseButtonMargin, scale);
    return {width - margin - size, margin, size, size};
}

void drawIcon(ShownPicture& picture, const CefRect& square) {
    static const Icon icon;
    for (int y = square.y; y < square.y + square.height && y < picture.height; ++y) {
        for (int x = std::max(square.x, 0); x < square.x + square.width && x < picture.width; ++x) {
            uint32_t& pixel = picture.pixels[static_cast<size_t>(y) * picture.width + x];
            pixel = icon.over(pixel, x - square.x, y - square.y, square.width);
        }
    }
}

}  // namespace

void EngineFrames::paint(CefRenderHandler::PaintElementType type, const void* buffer, int width, int height) {
    const std::lock_guard lock(access);
    Image& image = type == PET_VIEW ? view : popup;
    const auto* pixels = static_cast<const uint32_t*>(buffer);
    image = {width, height, {pixels, pixels + static_cast<size_t>(width) * height}};
    paints += type == PET_VIEW ? 'V' : 'P';
}

void EngineFrames::popupShown(bool shown) {
    const std::lock_guard lock(access);
    popupVisible = shown;
    popup = {};
}

void EngineFrames::popupPlaced(const CefRect& rect) {
    const std::lock_guard lock(access);
    popupRect = rect;
}

ShownPicture EngineFrames::expected() const {
    const std::lock_guard lock(access);
    ShownPicture picture{view.width, view.height, view.pixels};
    if (popupVisible) {
        const int left = std::clamp(popupRect.x, 0, std::max(view.width - popup.width, 0));
        const int top = std::clamp(popupRect.y, 0, std::max(view.height - popup.height, 0));
        for (int y = 0; y < popup.height && top + y < view.height; ++y) {
            const auto row = popup.pixels.begin() + std::ptrdiff_t{y} * popup.width;
            std::copy_n(row, std::min(popup.width, view.width - left),
                        picture.pixels.begin() + std::ptrdiff_t{top + y} * view.width + left);
        }
    }
    for (uint32_t& pixel : picture.pixels) pixel = overBackground(pixel);
    return picture;
}

uint32_t EngineFrames::pixel(int x, int y) const {
    const std::lock_guard lock(access);
    return x < view.width && y < view.height ? view.pixels[static_cast<size_t>(y) * view.width + x] : 0;
}

bool EngineFrames::popupPainted() const {
    const std::lock_guard lock(access);
    return popupVisible && popup.width > 0;
}

size_t EngineFrames::viewPaints() const { return static_cast<size_t>(std::ranges::count(order(), 'V')); }
size_t EngineFrames::popupPaints() const { return static_cast<size_t>(std::ranges::count(order(), 'P')); }

std::string EngineFrames::order() const {
    const std::lock_guard lock(access);
    return paints;
}

LocalView::LocalView(GameHost& host, const std::string& address, Options options)
    : game(host), closeButton(options.closeButton) {
    adapter = new WatchedAdapter({facade, events}, host.window, options, frames);
    createBrowser(host.window, adapter, address);
}

LocalView::~LocalView() { adapter->close(); }

void LocalView::click(int x, int y) { clickPage(browserHost(), x, y); }

// Empty when the window shows what it must.
std::string LocalView::difference() const {
    ShownPicture expected = frames->expected();
    const ShownPicture shown = pictures.last(game.window);
    if (shown.width != expected.width || shown.height != expected.height || shown.pixels.empty()) {
        return std::format("{}x{} instead of {}x{}", shown.width, shown.height, expected.width, expected.height);
    }
    const CefRect square = iconSquare(expected.width, ZEMO::UI::getWindowScale(game.window));
    if (closeButton) drawIcon(expected, square);
    for (size_t i = 0; i < expected.pixels.size(); ++i) {
        const int x = static_cast<int>(i) % shown.width, y = static_cast<int>(i) / shown.width;
        const bool icon = closeButton && square.Contains({x, y});
        const uint32_t alpha = frames->pixel(x, y) >> 24;
        // Blending rounds; in the icon the filter has rounded before.
        const int tolerance = icon ? 2 : alpha != 0 && alpha != 255 ? 1 : 0;
        if (channelDistance(shown.pixels[i], expected.pixels[i]) > tolerance) {
            return std::format("{},{} is {:08x} instead of {:08x}{}", x, y, shown.pixels[i], expected.pixels[i],
                               icon ? " in the icon" : "");
        }
    }
    return {};
}

bool LocalView::waitForPicture(const char* what, const std::function<bool()>& holds) {
    if (game.waitFor(what, [&] { return holds() && difference().empty(); })) return true;
    std::cerr << what << ": " << (holds() ? difference() : "the engine's frame does not show it") << std::endl;
    return false;
}

}  // namespace ZEMO::Test
