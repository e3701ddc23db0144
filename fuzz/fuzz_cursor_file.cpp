// The directory test of icon and cursor files on any bytes: no read outside, and an accepted file really has the header
// and the first entry that it was accepted for.
#include <cstdint>
#include <cstdlib>

#include "render/cursor_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ZEMO::UI;
    for (const int type : {kIconFileType, kCursorFileType}) {
        for (const int requested : {0, 16, 32, 255, 256, -1}) {
            if (!cursorDirectoryIsValid({data, size}, requested, type)) continue;
            if (size < 22 || data[0] || data[1] || data[2] != type || data[3]) std::abort();
        }
    }
    return 0;
}
