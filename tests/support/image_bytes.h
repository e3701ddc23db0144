#pragma once

#include <cstdint>
#include <functional>
#include <vector>

// Small picture files made byte by byte, so that a test can break them where it wants.
namespace ZEMO::Test {

using Bytes = std::vector<uint8_t>;

/// 0xAARRGGBB of a pixel.
using Painter = std::function<uint32_t(int x, int y)>;

/// A PNG of 8 bits RGBA; the data is stored, not compressed.
Bytes makePng(int width, int height, const Painter& paint);

/// One image of an icon or cursor file. For a cursor the hot spot is kept in the directory entry.
struct CursorImage {
    int width = 32;
    int height = 32;
    Painter paint;
    int hotX = 0;
    int hotY = 0;
};

/// type: 1 icon, 2 cursor. 32 bits a pixel, mask all 0.
Bytes makeCursorFile(int type, const std::vector<CursorImage>& images);

}  // namespace ZEMO::Test
