#pragma once

#include <windows.h>

#include <zemo/graphics_hook.h>

#include <cstdint>
#include <vector>

namespace ZEMO::Test {

/// The engine's frames as the library hands them to the reference module, which gets them all the same: the module's
/// functions are led here by their table. From now on, for the rest of the process.
class HandedFrames {
public:
    struct Picture {
        std::vector<uint32_t> pixels;  ///< B, G, R, A as handed over
        int width = 0, height = 0;
    };
    static void watch(HMODULE hookModule);
    static Picture view();
    static Picture popup();
    static Rect16 popupPlace();
};

}  // namespace ZEMO::Test
