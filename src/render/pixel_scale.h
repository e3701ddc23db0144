#pragma once

#include <utility>

#include "core/geometry.h"

// Device pixels (windows, messages, surfaces) against logical pixels (the engine). Every conversion floors, in 32-bit
// float arithmetic. `scale` is device pixels for each logical pixel, above 0.
namespace ZEMO::UI {

/// Toward zero; a value beyond an int takes the nearest end of its range, one that is no number is 0. All conversions
/// here end so: sizes come from callers and pages.
int truncateToInt(float value);

int deviceToLogical(int value, float scale);
std::pair<int, int> deviceToLogicalPair(int a, int b, float scale);
void deviceToLogicalPoint(Point& point, float scale);
int logicalToDevice(int value, float scale);
void logicalToDeviceRect(Rect& out, const Rect& in, float scale);

}  // namespace ZEMO::UI
