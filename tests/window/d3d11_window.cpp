#include "window/d3d11_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <format>

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

int channel(uint32_t pixel, int index) { return static_cast<int>(pixel >> (8 * index) & 0xFF); }

void setClientSize(HWND window, int width, int height) {
    RECT outer{0, 0, width, height};
    AdjustWindowRect(&outer, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), FALSE);
    SetWindowPos(window, nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

Picture solid(int width, int height, uint32_t bgra) {
    return {width, height, std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height), bgra)};
}

Picture noise(int width, int height, uint8_t alpha, uint32_t seed) {
    Picture picture = solid(width, height, 0);
    for (uint32_t& pixel : picture.pixels) {
        seed = seed * 1664525u + 1013904223u;
        const uint32_t color = seed >> 8;
        pixel = static_cast<uint32_t>(alpha) << 24;
        for (int i = 0; i < 3; ++i) pixel |= static_cast<uint32_t>(channel(color, i)) * alpha / 255u << (8 * i);
    }
    return picture;
}

uint32_t over(uint32_t premultiplied, uint32_t under) {
    const float rest = 1 - static_cast<float>(channel(premultiplied, 3)) / 255;
    uint32_t result = 0;
    for (int i = 0; i < 4; ++i) {
        const float sum =
            static_cast<float>(channel(premultiplied, i)) + static_cast<float>(channel(under, i)) * rest + 0.5f;
        result |= static_cast<uint32_t>(std::min(255, static_cast<int>(sum))) << (8 * i);
    }
    return result;
}

D3D11Window::D3D11Window(int width, int height, bool closeButton, DWORD style) : game({100, 80, 900, 680}, style) {
    if (style == WS_POPUP) game.showUnmanaged();
    resize(width, height);
    renderer = createOsrRenderer(kRendererD3D11, game.handle(), closeButton);
}

void D3D11Window::resize(int width, int height) {
    // A window manager answers in its own time, and sometimes with a size from before.
    for (int attempt = 0; attempt < 100; ++attempt) {
        game.onThread([&] { setClientSize(game.handle(), width, height); });
        const RECT client = game.client();
        if (client.right == width && client.bottom == height) return;
        Sleep(20);
    }
    ADD_FAILURE() << "the window did not take the size " << width << "x" << height;
}

void D3D11Window::paint(const Picture& picture, PaintElementType type) {
    renderer->onPaint(type, {}, picture.pixels.data(), picture.width, picture.height);
}

bool D3D11Window::render(bool needResize) {
    renderer->render(&needResize);
    return needResize;
}

std::string D3D11Window::differences(const Picture& expected, int tolerance) const {
    const PresentedPicture shown = calls.presented();
    if (shown.width != expected.width || shown.height != expected.height) {
        return std::format("{}x{} in place of {}x{}", shown.width, shown.height, expected.width, expected.height);
    }
    size_t count = 0;
    std::string first;
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x) {
            int worst = 0;
            for (int i = 0; i < 4; ++i) {
                worst = std::max(worst, std::abs(channel(shown.bgra(x, y), i) - channel(expected.at(x, y), i)));
            }
            if (worst <= tolerance) continue;
            if (count++ == 0) {
                first = std::format("({}, {}) is {:08X} in place of {:08X}", x, y, shown.bgra(x, y), expected.at(x, y));
            }
        }
    }
    return count == 0 ? "" : std::format("{} pixels differ; {}", count, first);
}

}  // namespace ZEMO::Test
