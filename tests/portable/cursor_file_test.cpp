#include "render/cursor_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace ZEMO::UI {
namespace {

using Bytes = std::vector<uint8_t>;
using Sizes = std::vector<std::pair<int, int>>;

Bytes directory(int reserved, int type, int count, const Sizes& entries) {
    Bytes file;
    for (const int value : {reserved, type, count}) {
        file.push_back(static_cast<uint8_t>(value));
        file.push_back(static_cast<uint8_t>(value >> 8));
    }
    for (const auto& [width, height] : entries) {
        file.push_back(static_cast<uint8_t>(width));
        file.push_back(static_cast<uint8_t>(height));
        file.insert(file.end(), 14, 0xFF);  // nothing else of an entry is read: offsets far past the end do no harm
    }
    return file;
}

/// From a block of the exact size, so that a read past the end is seen.
bool valid(const Bytes& file, int requestedSize, int expectedType) {
    const auto exact = std::make_unique<uint8_t[]>(file.size());
    std::copy(file.begin(), file.end(), exact.get());
    return cursorDirectoryIsValid({exact.get(), file.size()}, requestedSize, expectedType);
}

}  // namespace

TEST(CursorFile, DirectoryTable_AcceptedOrRefused) {
    const struct {
        const char* name;
        Bytes file;
        int requestedSize;
        int expectedType;
        bool valid;
    } cases[] = {
        {"empty", {}, 0, 2, false},
        {"five bytes", {0, 0, 2, 0, 1}, 0, 2, false},
        {"header only", directory(0, 2, 1, {}), 0, 2, false},
        {"one entry", directory(0, 2, 1, {{32, 32}}), 0, 2, true},
        {"an icon asked for, an icon given", directory(0, 1, 1, {{32, 32}}), 0, 1, true},
        {"a cursor asked for, an icon given", directory(0, 1, 1, {{32, 32}}), 0, 2, false},
        {"an icon asked for, a cursor given", directory(0, 2, 1, {{32, 32}}), 0, 1, false},
        {"type in the high byte too", directory(0, 0x102, 1, {{32, 32}}), 0, 2, false},
        {"reserved not 0", directory(1, 2, 1, {{32, 32}}), 0, 2, false},
        {"reserved not 0 in the high byte", directory(0x100, 2, 1, {{32, 32}}), 0, 2, false},
        {"count 0", directory(0, 2, 0, {{32, 32}}), 0, 2, false},
        {"count 256", directory(0, 2, 256, {{32, 32}}), 0, 2, true},
        {"any size: the first entry decides, the others need not be there", directory(0, 2, 0xFFFF, {{32, 32}}), 0, 2,
         true},
        {"size in the second entry", directory(0, 2, 2, {{16, 16}, {32, 32}}), 32, 2, true},
        {"size as width alone", directory(0, 2, 1, {{32, 16}}), 32, 2, true},
        {"size as height alone", directory(0, 2, 1, {{16, 32}}), 32, 2, true},
        {"size nowhere", directory(0, 2, 2, {{16, 16}, {48, 48}}), 32, 2, false},
        {"0 by 0 stands for the largest and fits any", directory(0, 2, 1, {{0, 0}}), 32, 2, true},
        {"one side 0 is no such entry", directory(0, 2, 1, {{0, 16}}), 32, 2, false},
        {"256 asked for in numbers has no byte to equal", directory(0, 2, 1, {{255, 255}}), 256, 2, false},
        {"an entry missing before the size was found", directory(0, 2, 3, {{16, 16}, {48, 48}}), 32, 2, false},
        {"count at its largest, entries missing", directory(0, 2, 0xFFFF, {{16, 16}}), 32, 2, false},
        {"negative size", directory(0, 2, 1, {{32, 32}}), -32, 2, false},
    };
    for (const auto& one : cases)
        EXPECT_EQ(valid(one.file, one.requestedSize, one.expectedType), one.valid) << one.name;
    EXPECT_EQ(std::size(cases), 23u);
}

TEST(CursorFile, EveryTruncation_OnlyAWholeFirstEntryPasses) {
    const Bytes whole = directory(0, 1, 2, {{32, 32}, {64, 64}});
    for (size_t length = 0; length <= whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(valid(cut, 0, 1), length >= 22) << length;
        EXPECT_EQ(valid(cut, 64, 1), length >= 38) << length;
    }
}

}  // namespace ZEMO::UI
