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

/// Keeps the engine's thread in the next frame of a page, before the module has it, until it is let go. HandedFrames
/// must be watching.
class HeldFrame {
public:
    HeldFrame();
    ~HeldFrame();
    HeldFrame(const HeldFrame&) = delete;
    HeldFrame& operator=(const HeldFrame&) = delete;
    bool isHeld() const;
    void letGo();
    /// The module has had it.
    bool isOver() const;
};

}  // namespace ZEMO::Test
