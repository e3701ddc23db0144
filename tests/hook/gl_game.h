#pragma once

#include <windows.h>

#include <GL/gl.h>

#include "hook/hook_stage.h"

namespace ZEMO::Test {

/// A game that draws one colour with OpenGL, on the thread of its window.
class GlGame {
public:
    static constexpr char kName[] = "OpenGL";
    static constexpr int kCycles = 500;
    static constexpr size_t kComeAndGo = 0;
    static constexpr size_t kContextsKept = 0;

    explicit GlGame(HWND gameWindow);
    ~GlGame() { end(); }
    GlGame(const GlGame&) = delete;
    GlGame& operator=(const GlGame&) = delete;

    /// Draws and swaps.
    void present();
    /// Swaps what is there.
    void swap();
    /// A window's frame is as large as the window by itself.
    bool followWindow() { return true; }
    /// As after a change of settings: another context.
    void remake();
    /// Gives all up. OpenGL does not count who holds it.
    size_t end();
    /// Textures in the game's context, which makes none.
    size_t liveObjects() const;
    bool isThere() const { return context != nullptr; }
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
