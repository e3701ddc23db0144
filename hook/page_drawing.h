#pragma once

#include <windows.h>

#include <array>
#include <cstdint>

#include "page_picture.h"

namespace ZEMO::GraphicsHook {

/// The textures that a page needs.
enum class Layer { Page, Popup, CloseButton };
inline constexpr size_t kLayers = 3;

/// A place in the game's frame: pixels from its upper left corner.
struct Place {
    float left = 0, top = 0, right = 0, bottom = 0;
};

/// What a graphics API does for the drawing: textures that keep their pixels, and rectangles of them, blended over what
/// is there. Page and popup are premultiplied, the close button is not.
class Canvas {
public:
    /// `changed` of `plane` is new. The texture has the plane's size afterwards; when it had another, all of it is new.
    virtual void upload(Layer layer, const Plane& plane, const Box& changed) = 0;
    virtual void draw(Layer layer, const Place& place) = 0;

protected:
    ~Canvas() = default;
};

struct FrameSize {
    int width = 0, height = 0;
};

/// Draws the page into the game's frames, with one canvas for its whole life: uploads only what changed.
class PageDrawing {
public:
    /// `frame`: the size of what is drawn into; it is stretched over the client area of `window` when it is shown, and
    /// the page's pixels are that area's.
    void draw(Canvas& canvas, PagePicture::Content& content, HWND window, FrameSize frame);

private:
    void refresh(Canvas& canvas, Layer layer, Plane& plane);

    std::array<uint64_t, kLayers> seen{};
};

}  // namespace ZEMO::GraphicsHook
