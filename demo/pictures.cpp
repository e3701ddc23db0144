#include "pictures.h"

#include "gl.h"
#include "text.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb_image_write.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace demo {

namespace {

Colour colourAt(const std::vector<std::uint8_t>& pixels, int width, int height, int x, int y) {
    if (x < 0 || y < 0 || x >= width || y >= height) return {0, 0, 0, 0};
    const std::uint8_t* p = pixels.data() + (static_cast<std::size_t>(y) * width + x) * 4;
    return {p[2], p[1], p[0], p[3]};
}

void makeOpaque(Picture& picture) {
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4) picture.pixels[i] = 255;
}

Picture blank(int width, int height) {
    return {width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * height * 4)};
}

}  // namespace

Colour Picture::at(int x, int y) const { return colourAt(pixels, width, height, x, y); }

Colour colourOf(const PageImage& image, int x, int y) {
    return colourAt(image.pixels, image.width, image.height, x, y);
}

Picture pictureOfPage(const PageImage& image) {
    Picture picture{image.width, image.height, image.pixels};
    for (std::size_t i = 0; i + 3 < picture.pixels.size(); i += 4) {
        const int alpha = picture.pixels[i + 3];
        if (alpha == 0 || alpha == 255) continue;
        for (std::size_t c = i; c < i + 3; ++c) {
            picture.pixels[c] = static_cast<std::uint8_t>(std::min(255, (picture.pixels[c] * 255 + alpha / 2) / alpha));
        }
    }
    return picture;
}

Picture pictureOfBackBuffer(int width, int height) {
    Picture picture = blank(width, height);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, picture.pixels.data());
    const std::size_t stride = static_cast<std::size_t>(width) * 4;
    for (int y = 0; y < height / 2; ++y) {  // OpenGL counts rows from the bottom
        auto* upper = picture.pixels.data() + y * stride;
        std::swap_ranges(upper, upper + stride, picture.pixels.data() + (height - 1 - y) * stride);
    }
    makeOpaque(picture);
    return picture;
}

Picture pictureOfDisplay(HWND window) {
    struct DcCloser {
        void operator()(HDC dc) const { DeleteDC(dc); }
    };
    using Dc = std::unique_ptr<std::remove_pointer_t<HDC>, DcCloser>;
    struct BitmapCloser {
        void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
    };
    RECT client{};
    GetClientRect(window, &client);
    POINT corner{0, 0};
    ClientToScreen(window, &corner);
    Picture picture = blank(static_cast<int>(client.right), static_cast<int>(client.bottom));
    if (picture.pixels.empty()) return picture;

    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = picture.width;
    info.bmiHeader.biHeight = -picture.height;  // negative: rows from top to bottom
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const Dc screen(CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr));
    const Dc memory(CreateCompatibleDC(screen.get()));
    const std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapCloser> bitmap(
        CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!bitmap) return picture;
    const HGDIOBJ before = SelectObject(memory.get(), bitmap.get());
    // Only what lies on the screen: some systems refuse the whole copy when a part of it lies beside.
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN), top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    const int right = left + GetSystemMetrics(SM_CXVIRTUALSCREEN), bottom = top + GetSystemMetrics(SM_CYVIRTUALSCREEN);
    const PixelRect wanted{static_cast<int>(corner.x) - left, static_cast<int>(corner.y) - top, picture.width,
                           picture.height};
    const PixelRect visible = clip(wanted, right - left, bottom - top);
    BitBlt(memory.get(), visible.x - wanted.x, visible.y - wanted.y, visible.width, visible.height, screen.get(),
           visible.x + left, visible.y + top, SRCCOPY);
    GdiFlush();
    std::memcpy(picture.pixels.data(), bits, picture.pixels.size());
    SelectObject(memory.get(), before);
    makeOpaque(picture);
    return picture;
}

void writePng(const std::filesystem::path& file, const Picture& picture) {
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
    auto rgba = picture.pixels;
    for (std::size_t i = 0; i + 3 < rgba.size(); i += 4) std::swap(rgba[i], rgba[i + 2]);
    std::ofstream stream(file, std::ios::binary);
    const auto write = [](void* context, void* data, int size) {
        static_cast<std::ofstream*>(context)->write(static_cast<const char*>(data), size);
    };
    const bool isEncoded =
        stbi_write_png_to_func(write, &stream, picture.width, picture.height, 4, rgba.data(), 0) != 0;
    stream.close();
    if (!isEncoded || !stream) throw std::runtime_error("cannot write " + toUtf8(file.wstring()));
}

}  // namespace demo
