#pragma once

#include <windows.h>

#include <GL/gl.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "support/import_replaced.h"

namespace ZEMO::Test {

/// Rows from top to bottom, 0xFFRRGGBB.
struct ShownPicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int x, int y) const {
        return x < 0 || y < 0 || x >= width || y >= height ? 0 : pixels[static_cast<size_t>(y) * width + x];
    }
};

/// What the code under test shows in windows with OpenGL: each picture is read back from the context, as large as the
/// window's client area, before it goes on to the screen. One at a time; any thread.
class ShownPictures {
public:
    ShownPictures() {
        const std::lock_guard lock(access());
        current() = this;
        replaced.emplace("SwapBuffers", &swap);
    }
    ~ShownPictures() {
        replaced.reset();
        const std::lock_guard lock(access());
        current() = nullptr;
    }
    ShownPictures(const ShownPictures&) = delete;
    ShownPictures& operator=(const ShownPictures&) = delete;

    size_t count(HWND window) const {
        const std::lock_guard lock(access());
        const auto found = windows.find(window);
        return found == windows.end() ? 0 : found->second.count;
    }
    /// The newest picture of that window.
    ShownPicture last(HWND window) const {
        const std::lock_guard lock(access());
        const auto found = windows.find(window);
        return found == windows.end() ? ShownPicture{} : found->second.picture;
    }
    /// Called with the context current before each picture goes to the screen; may still be under way on the way out.
    void setOnShow(std::function<void(HWND)> call) {
        const std::lock_guard lock(access());
        onShow = std::move(call);
    }

private:
    struct Shown {
        size_t count = 0;
        ShownPicture picture;
    };
    static std::mutex& access() {
        static std::mutex mutex;
        return mutex;
    }
    static ShownPictures*& current() {
        static ShownPictures* pictures = nullptr;
        return pictures;
    }
    static ShownPicture read(HWND window) {
        constexpr GLenum kBgra = 0x80E1;
        RECT client{};
        GetClientRect(window, &client);
        ShownPicture picture{client.right, client.bottom, {}};
        picture.pixels.resize(static_cast<size_t>(picture.width) * picture.height);
        if (picture.pixels.empty()) return picture;
        glReadBuffer(GL_BACK);
        glReadPixels(0, 0, picture.width, picture.height, kBgra, GL_UNSIGNED_BYTE, picture.pixels.data());
        for (int y = 0; y < picture.height / 2; ++y) {  // OpenGL counts rows from the bottom
            const auto row = [&](int index) { return picture.pixels.begin() + std::ptrdiff_t{index} * picture.width; };
            std::swap_ranges(row(y), row(y + 1), row(picture.height - 1 - y));
        }
        for (uint32_t& pixel : picture.pixels) pixel |= 0xFF000000;
        return picture;
    }
    static BOOL WINAPI swap(HDC device) {
        const HWND window = WindowFromDC(device);
        ShownPicture picture = read(window);
        std::function<void(HWND)> onShow;
        {
            const std::lock_guard lock(access());
            if (current()) onShow = current()->onShow;
        }
        if (onShow) onShow(window);
        {
            const std::lock_guard lock(access());
            if (current()) {
                Shown& shown = current()->windows[window];
                ++shown.count;
                shown.picture = std::move(picture);
            }
        }
        return systemFunction<BOOL WINAPI(HDC)>(L"gdi32.dll", "SwapBuffers")(device);
    }

    std::function<void(HWND)> onShow;
    std::optional<ImportReplaced> replaced;
    std::map<HWND, Shown> windows;
};

/// A window's client area as the screen has it.
inline ShownPicture pictureOnScreen(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    POINT corner{};
    ClientToScreen(window, &corner);
    ShownPicture picture{client.right, client.bottom, {}};
    picture.pixels.resize(static_cast<size_t>(picture.width) * picture.height);
    if (picture.pixels.empty()) return picture;
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    if (const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0)) {
        const HGDIOBJ before = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, picture.width, picture.height, screen, corner.x, corner.y, SRCCOPY);
        GdiFlush();
        std::copy_n(static_cast<const uint32_t*>(bits), picture.pixels.size(), picture.pixels.begin());
        SelectObject(memory, before);
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
    DeleteDC(screen);
    for (uint32_t& pixel : picture.pixels) pixel |= 0xFF000000;
    return picture;
}

/// A premultiplied pixel over the plain background that a local renderer puts under a page.
inline uint32_t overBackground(uint32_t pixel) {
    constexpr uint32_t kBackground = 0xFFEDEEF6;
    const uint32_t alpha = pixel >> 24;
    uint32_t result = 0xFF000000;
    for (const int shift : {0, 8, 16}) {
        const uint32_t under = (kBackground >> shift) & 0xFF;
        result |= std::min(255u, ((pixel >> shift) & 0xFF) + (under * (255 - alpha) + 127) / 255) << shift;
    }
    return result;
}

/// The largest difference of a channel.
inline int channelDistance(uint32_t a, uint32_t b) {
    int distance = 0;
    for (const int shift : {0, 8, 16}) {
        distance =
            std::max(distance, std::abs(static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF)));
    }
    return distance;
}

}  // namespace ZEMO::Test
