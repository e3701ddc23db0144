#pragma once

#include <windows.h>

#include <GL/gl.h>

#include "hook/hook_stage.h"

namespace ZEMO::Test {

/// A game that draws one colour with OpenGL, on the thread of its window.
class GlGame {
public:
    explicit GlGame(HWND gameWindow);
    ~GlGame();
    GlGame(const GlGame&) = delete;
    GlGame& operator=(const GlGame&) = delete;

    /// Draws and swaps.
    void present();
    /// Swaps what is there.
    void swap();
    /// From now on each frame is read as it goes to the screen: `hookModule` swaps for the game, so it is its call of
    /// the system's function that is watched.
    static void watchFrames(HMODULE hookModule);
    static Presented& presented();

private:
    void makeContext();

    HWND window;
    HDC dc;
    HGLRC context = nullptr;
};

}  // namespace ZEMO::Test
