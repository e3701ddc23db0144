#pragma once

#include <cstdint>

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

/// Edges instead of sizes: right and bottom are exclusive.
struct Rect16 {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    friend bool operator==(const Rect16&, const Rect16&) = default;
};

}  // namespace ZEMO
