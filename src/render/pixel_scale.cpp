#include "render/pixel_scale.h"

#include <cmath>
#include <limits>

namespace ZEMO::UI {

namespace {

// Sizes come from callers and pages: one beyond an int's range takes the nearest end of it.
int floorToInt(float value) {
    const float whole = std::floor(value);
    if (whole >= 2147483648.0f) return std::numeric_limits<int>::max();
    return whole > -2147483648.0f ? static_cast<int>(whole) : std::numeric_limits<int>::min();
}

}  // namespace

int deviceToLogical(int value, float scale) { return floorToInt(static_cast<float>(value) / scale); }

std::pair<int, int> deviceToLogicalPair(int a, int b, float scale) {
    return {deviceToLogical(a, scale), deviceToLogical(b, scale)};
}

void deviceToLogicalPoint(Point& point, float scale) {
    point = {deviceToLogical(point.x, scale), deviceToLogical(point.y, scale)};
}

int logicalToDevice(int value, float scale) { return floorToInt(static_cast<float>(value) * scale); }

void logicalToDeviceRect(Rect& out, const Rect& in, float scale) {
    out = {logicalToDevice(in.x, scale), logicalToDevice(in.y, scale), logicalToDevice(in.width, scale),
           logicalToDevice(in.height, scale)};
}

}  // namespace ZEMO::UI
