#include "page_quad.h"

#include "gl.h"

namespace demo {

PageQuad::~PageQuad() {
    if (texture) glDeleteTextures(1, &texture);
}

void PageQuad::upload(const PageImage& image, const PixelRect& changed) {
    if (changed.isEmpty()) return;
    if (!texture) glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    if (image.width != width || image.height != height) {
        width = image.width;
        height = image.height;
        // One texel is one pixel of the window: no filter, no mipmaps.
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_BGRA, GL_UNSIGNED_BYTE, image.pixels.data());
        return;
    }
    // The row length lets OpenGL pick a rectangle out of the full image, so nothing has to be packed first.
    glPixelStorei(GL_UNPACK_ROW_LENGTH, width);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, changed.x);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, changed.y);
    glTexSubImage2D(GL_TEXTURE_2D, 0, changed.x, changed.y, changed.width, changed.height, GL_BGRA, GL_UNSIGNED_BYTE,
                    image.pixels.data());
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
}

void PageQuad::draw() const {
    if (!texture) return;
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    // The page's colours are already multiplied with its alpha, hence GL_ONE and not GL_SRC_ALPHA.
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glBindTexture(GL_TEXTURE_2D, texture);
    glColor4f(1, 1, 1, 1);
    const auto right = static_cast<float>(width);
    const auto bottom = static_cast<float>(height);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(0, 0);
    glTexCoord2f(1, 0), glVertex2f(right, 0);
    glTexCoord2f(1, 1), glVertex2f(right, bottom);
    glTexCoord2f(0, 1), glVertex2f(0, bottom);
    glEnd();
    glPopAttrib();
}

}  // namespace demo
