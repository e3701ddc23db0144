#pragma once

#include <cstdint>
#include <span>

namespace ZEMO::UI {

/// Type word of the header that icon and cursor files share.
inline constexpr int kIconFileType = 1;
inline constexpr int kCursorFileType = 2;

/// Whether `file` begins with the header and directory of an icon or cursor file (`expectedType`) that offers an image
/// of `requestedSize` pixels; 0 takes any size. Looks at the directory only, never past the end of `file`: what the
/// entries point at is the system loader's to judge.
bool cursorDirectoryIsValid(std::span<const uint8_t> file, int requestedSize, int expectedType);

}  // namespace ZEMO::UI
