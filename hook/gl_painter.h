#pragma once

#include <windows.h>

#include <GL/gl.h>

#include <array>

#include "page_drawing.h"

namespace ZEMO::GraphicsHook {

/// Draws the page into a window's back buffer, in an OpenGL context of its own. So nothing of the game's state is ever
/// touched, whatever version or profile the game uses, and what the game has under way (queries, feedback, a mapped
/// buffer) is not disturbed; all that is put back is which context is current.
///
/// Thread: the one that swaps the window, one at a time. Between two frames the context is current nowhere.
class GlPainter final : private Canvas {
public:
    /// Before the swap of `window`, whose device context is `dc`.
    void paint(HDC dc, HWND window, PagePicture::Content& content);
    /// Gives the context and its textures back; the next frame makes new ones.
    void release();

private:
    struct Texture {
        GLuint name = 0;
        int width = 0, height = 0;
    };

    bool hasContextFor(HDC dc);
    void prepare();
    void upload(Layer layer, const Plane& plane, const Box& changed) override;
    void draw(Layer layer, const Place& place) override;

    HGLRC context = nullptr;
    int pixelFormat = 0;
    FrameSize frame;
    PageDrawing drawing;
    std::array<Texture, kLayers> textures{};
};

}  // namespace ZEMO::GraphicsHook
