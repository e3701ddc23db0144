#pragma once

#include <cstdint>

namespace ZEMO {

/// Edges instead of sizes: right and bottom are exclusive.
struct Rect16 {
    int32_t left = 0;    ///< inclusive
    int32_t top = 0;     ///< inclusive
    int32_t right = 0;   ///< exclusive
    int32_t bottom = 0;  ///< exclusive
    /// Edge by edge.
    friend bool operator==(const Rect16&, const Rect16&) = default;
};

}  // namespace ZEMO
