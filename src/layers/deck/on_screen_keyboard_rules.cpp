#include "layers/deck/on_screen_keyboard_rules.h"

#include "render/pixel_scale.h"

namespace ZEMO::UI {
namespace {

constexpr double kUpperPart = 0.45;
constexpr float kKeyboardPart = 0.35f;

float keyboardHeight(uint32_t screenHeight) { return static_cast<float>(screenHeight) * kKeyboardPart; }

int32_t wholePixels(uint32_t value) { return truncateToInt(static_cast<float>(value)); }

}  // namespace

bool keyboardBelongsAtBottom(int screenHeight, int touchY) { return screenHeight * kUpperPart > touchY; }

Rect startingKeyboardPlace(bool atBottom, const ScreenMetrics& metrics) {
    const float top = static_cast<float>(metrics.deviceHeight) - keyboardHeight(metrics.deviceHeight);
    return {0, atBottom ? truncateToInt(top) : 0, wholePixels(metrics.logicalWidth),
            truncateToInt(keyboardHeight(metrics.logicalHeight))};
}

Rect openKeyboardPlace(bool atBottom, const ScreenMetrics& metrics) {
    const int32_t height = truncateToInt(keyboardHeight(metrics.deviceHeight));
    return {0, atBottom ? wholePixels(metrics.deviceHeight) - height : 0, wholePixels(metrics.deviceWidth), height};
}

std::array<KeyboardSetting, 6> keyboardSettings(const Point& position, const Size& size) {
    return {{{"WindowLeft", static_cast<uint32_t>(position.x)},
             {"WindowTop", static_cast<uint32_t>(position.y)},
             {"WindowWidth", static_cast<uint32_t>(size.width)},
             {"WindowHeight", static_cast<uint32_t>(size.height)},
             {"ShowNumPad", 0},
             {"ShowClearKey", 0}}};
}

}  // namespace ZEMO::UI
