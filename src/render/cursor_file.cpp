#include "render/cursor_file.h"

#include <cstddef>

namespace ZEMO::UI {

namespace {

constexpr size_t kHeaderSize = 6;
constexpr size_t kEntrySize = 16;

int word(std::span<const uint8_t> file, size_t offset) { return file[offset] | file[offset + 1] << 8; }

}  // namespace

bool cursorDirectoryIsValid(std::span<const uint8_t> file, int requestedSize, int expectedType) {
    if (file.size() < kHeaderSize) return false;
    const int reserved = word(file, 0);
    const int type = word(file, 2);
    const int count = word(file, 4);
    if (reserved != 0 || type != expectedType || count == 0) return false;

    size_t offset = kHeaderSize;
    for (int i = 0; i < count; ++i, offset += kEntrySize) {
        if (offset + kEntrySize > file.size()) return false;
        const int width = file[offset];
        const int height = file[offset + 1];
        const bool largest = width == 0 && height == 0;  // how the format writes 256
        if (requestedSize == 0 || largest || requestedSize == width || requestedSize == height) return true;
    }
    return false;
}

}  // namespace ZEMO::UI
