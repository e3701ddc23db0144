#pragma once

#include "page_surface.h"

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace demo {

struct Colour {
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 255;
    friend bool operator==(const Colour&, const Colour&) = default;
};

/// Bytes B, G, R, A, straight alpha, rows from top to bottom.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    /// All zero outside.
    Colour at(int x, int y) const;
};

/// The page as the callback delivered it. The game blends premultiplied colours; picture files hold straight ones.
Picture pictureOfPage(const PageImage& image);
/// The back buffer, before it is swapped. Needs a current OpenGL context.
Picture pictureOfBackBuffer(int width, int height);
/// A window's client area as the display shows it, with whatever lies over it.
Picture pictureOfDisplay(HWND window);

/// Makes the directory if it is missing. Throws std::runtime_error when the file can't be written.
void writePng(const std::filesystem::path& file, const Picture& picture);

/// A colour of the page image itself, premultiplied.
Colour colourOf(const PageImage& image, int x, int y);

}  // namespace demo
