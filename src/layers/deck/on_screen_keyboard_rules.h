#pragma once

#include <array>
#include <cstdint>

#include "core/geometry.h"

// Where the system's on-screen keyboard stands, and what it reads as it starts. No system call: any thread.
namespace ZEMO::UI {

/// The primary screen, in the engine's pixels and in those of windows.
struct ScreenMetrics {
    uint32_t logicalWidth = 0;
    uint32_t logicalHeight = 0;
    uint32_t deviceWidth = 0;
    uint32_t deviceHeight = 0;
};

/// Whether a keyboard for a touch at `touchY` (device pixels of the screen) belongs at the bottom, out of the way of
/// what was touched: below the upper 45 % of the screen, that line included, it belongs at the top.
bool keyboardBelongsAtBottom(int screenHeight, int touchY);

/// The place that a keyboard takes when it starts: as wide as the screen, 35 % of its height. Its position is in device
/// pixels, its size in logical ones.
Rect startingKeyboardPlace(bool atBottom, const ScreenMetrics& metrics);

/// The place that a keyboard which stands already moves to, all in device pixels. Its edge may lie a pixel beside that
/// of startingKeyboardPlace, because the height is cut to whole pixels first.
Rect openKeyboardPlace(bool atBottom, const ScreenMetrics& metrics);

/// One value of the keyboard's registry key, a REG_DWORD.
struct KeyboardSetting {
    const char* name;
    uint32_t value;
};

/// In the order in which they are written.
std::array<KeyboardSetting, 6> keyboardSettings(const Point& position, const Size& size);

}  // namespace ZEMO::UI
