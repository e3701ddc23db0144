#pragma once

#include <cstdint>

#include "zemo/rect16.h"

// Plain integer shapes shared by the rooms. Whether a value is in device or in logical pixels stands where it is used.
namespace ZEMO {

struct Point {
    int32_t x = 0;
    int32_t y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    int32_t width = 0;
    int32_t height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace ZEMO
