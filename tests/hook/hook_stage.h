#pragma once

#include <windows.h>

#include <zemo/ui.h>

#include "engine/game_host.h"
#include "support/recording_hook.h"

namespace ZEMO::Test {

/// Has the library find a hook module of this folder, which is none that programs search by themselves, and load it.
inline HMODULE useHookModule(const std::filesystem::path& folder) {
    AddDllDirectory((programDirectory() / folder).c_str());
    ZEMO::UI::InitUIGraphicsHook();
    return GetModuleHandleW(L"ZEMOGraphicsHook.dll");
}

/// A game without a present callback, as a game with the hook is.
inline GameHost::Options hookGame(int width = 320, int height = 200) {
    return {.clientWidth = width, .clientHeight = height, .presentCallback = false};
}

/// One frame of a game as it goes to the screen: B, G, R of each pixel, from the top.
struct Presented {
    std::vector<uint32_t> pixels;
    int width = 0, height = 0;
    size_t count = 0;  ///< frames so far
    uint32_t at(int x, int y) const {
        return x < width && y < height ? pixels[static_cast<size_t>(y) * width + x] & 0xFFFFFFu : 0;
    }
};

/// Of a colour 0xRRGGBB, how far it is from another in its worst channel.
inline int distance(uint32_t a, uint32_t b) {
    int worst = 0;
    for (const int shift : {0, 8, 16}) {
        worst = std::max(worst, std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)));
    }
    return worst;
}

// The scene that the test games draw, and pages over it.
inline constexpr uint32_t kScene = 0x285078;  // 40, 80, 120

/// Four quarters: three colours, and one half transparent (200, 100, 50) on nothing.
inline std::string quarteredPage() {
    return "<!doctype html><style>html,body{margin:0;height:100%;background:transparent}i{position:absolute;width:50%;"
           "height:50%}</style><i style='left:0;top:0;background:#112233'></i><i style='left:50%;top:0;background:"
           "#ff0080'></i><i style='left:0;top:50%;background:#00c040'></i><i style='left:50%;top:50%;background:"
           "rgba(200,100,50,0.5)'></i>";
}

/// What quarteredPage gives over the scene, and by how much a blended value may be rounded.
inline uint32_t quarterAt(int x, int y, int width, int height) {
    const bool right = x >= width / 2;
    const bool lower = y >= height / 2;
    if (!lower) return right ? 0xFF0080 : 0x112233;
    return right ? 0x785A55 : 0x00C040;  // half of 200, 100, 50 and half of the scene
}

}  // namespace ZEMO::Test
