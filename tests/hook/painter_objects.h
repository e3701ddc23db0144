#pragma once

#include <windows.h>

#include <cstddef>

namespace ZEMO::Test {

/// OpenGL objects that the reference module makes, counted from now on for the rest of the process: its calls of the
/// system's functions are led here. A context takes its textures along when it goes.
class PainterObjects {
public:
    static void watch(HMODULE hookModule);
    static size_t contextsMade();
    static size_t contextsLeft();
    static size_t texturesMade();
};

}  // namespace ZEMO::Test
