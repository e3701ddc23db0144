#pragma once

#include "page_surface.h"

namespace demo {

/// The page as a textured quad. Needs a current OpenGL context; game thread only.
class PageQuad {
public:
    PageQuad() = default;
    ~PageQuad();
    PageQuad(const PageQuad&) = delete;
    PageQuad& operator=(const PageQuad&) = delete;

    /// Brings the texture up to date: all of it when the image has a new size, else only `changed`.
    void upload(const PageImage& image, const PixelRect& changed);

    /// Draws it pixel for pixel from the client area's upper left corner, over what is there. Expects a projection in
    /// client pixels with y downward.
    void draw() const;

private:
    unsigned texture = 0;
    int width = 0;
    int height = 0;
};

}  // namespace demo
