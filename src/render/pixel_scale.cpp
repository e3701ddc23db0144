#include "render/pixel_scale.h"

#include <cmath>

namespace ZEMO::UI {

int deviceToLogical(int value, float scale) { return static_cast<int>(std::floor(static_cast<float>(value) / scale)); }

std::pair<int, int> deviceToLogicalPair(int a, int b, float scale) {
    return {deviceToLogical(a, scale), deviceToLogical(b, scale)};
}

void deviceToLogicalPoint(Point& point, float scale) {
    point = {deviceToLogical(point.x, scale), deviceToLogical(point.y, scale)};
}

int logicalToDevice(int value, float scale) { return static_cast<int>(std::floor(static_cast<float>(value) * scale)); }

void logicalToDeviceRect(Rect& out, const Rect& in, float scale) {
    out = {logicalToDevice(in.x, scale), logicalToDevice(in.y, scale), logicalToDevice(in.width, scale),
           logicalToDevice(in.height, scale)};
}

}  // namespace ZEMO::UI
