#include "render/pixel_scale.h"

#include <cmath>
#include <limits>

namespace ZEMO::UI {

namespace {

int floorToInt(float value) { return truncateToInt(std::floor(value)); }

}  // namespace

int truncateToInt(float value) {
    constexpr float kBeyond = 2147483648.0f;
    if (std::isnan(value)) return 0;
    if (value >= kBeyond) return std::numeric_limits<int>::max();
    return value > -kBeyond ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

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
