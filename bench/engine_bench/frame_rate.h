#pragma once

namespace ZEMO::Bench {

/// Frames a second of an animated page whose whole picture changes, in the library's present callback and in the bare
/// engine's OnPaint, in runs that alternate. Prints the rows; the result is the program's.
int measureFrameRate(int width, int height);

}  // namespace ZEMO::Bench
