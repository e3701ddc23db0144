#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "render/osr_renderer.h"
#include "support/d3d11_calls.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {

/// A frame as the engine paints it: B, G, R, A, premultiplied.
struct Picture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int x, int y) const {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

Picture solid(int width, int height, uint32_t bgra);
/// Every pixel another, of this alpha, premultiplied.
Picture noise(int width, int height, uint8_t alpha, uint32_t seed = 1);

/// The colour behind a page, and a premultiplied pixel over another.
inline constexpr uint32_t kBehindPage = 0xFFEDEEF6;
uint32_t over(uint32_t premultiplied, uint32_t under);

/// A game's window with a renderer of the Direct3D 11 kind on it; this thread is its render and its paint thread.
/// Unmanaged unless a style is given.
class D3D11Window {
public:
    D3D11Window(int width, int height, bool closeButton = false, DWORD style = WS_POPUP);

    /// Through the window's own thread; waits until the client area has the size.
    void resize(int width, int height);
    void paint(const Picture& picture, UI::PaintElementType type = PET_VIEW);
    /// One cycle. Whether a resize is still asked for after it.
    bool render(bool needResize = false);
    /// What was presented last against what must have been: empty when no channel differs by more than `tolerance`.
    std::string differences(const Picture& expected, int tolerance = 0) const;

    D3D11Calls calls;
    GameWindow game;
    std::shared_ptr<UI::IOsrRenderer> renderer;
};

}  // namespace ZEMO::Test
