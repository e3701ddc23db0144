#include "render/opengl/osr_renderer.h"

#include <algorithm>
#include <cmath>

#include "core/never_destroyed.h"
#include "render/close_image.h"
#include "render/pixel_scale.h"

// The state that one paint leaves is where the next one begins: the context is this renderer's alone. On an opaque
// background blending stays on, and with a close button textures too.
namespace ZEMO::UI {
namespace {

// Newer than the system's header: bytes B, G, R, A, as frames have them.
constexpr GLenum kBgra = 0x80E1;
constexpr GLenum kFourBytesReversed = 0x8367;  // GL_UNSIGNED_INT_8_8_8_8_REV

constexpr int kBackgroundTexels = 10;              // on each side
constexpr uint32_t kBackgroundTexel = 0xFFF6EEED;  // bytes R, G, B, A
constexpr GLbitfield kAllAttributes = 0x000FFFFF;

/// GL_T2F_V3F
struct Vertex {
    float u, v, x, y, z;
};
using Quad = std::array<Vertex, 4>;

constexpr Quad kWholeViewport{{{0, 1, -1, -1, 0}, {1, 1, 1, -1, 0}, {1, 0, 1, 1, 0}, {0, 0, -1, 1, 0}}};

void drawQuad(GLuint texture, const Quad& quad) {
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glInterleavedArrays(GL_T2F_V3F, 0, quad.data());
    glDrawArrays(GL_QUADS, 0, static_cast<GLsizei>(quad.size()));
}

GLuint makeTexture() {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    return texture;
}

void repeatTexture() {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
}

void filterAndModulate(GLint filter) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

void readRowsOf(int rowLength, int skipPixels, int skipRows) {
    glPixelStorei(GL_UNPACK_ROW_LENGTH, rowLength);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, skipPixels);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, skipRows);
}

void uploadRgba(int width, int height, const void* pixels) {
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
}

void uploadPart(int x, int y, int width, int height, const void* buffer) {
    glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, kBgra, kFourBytesReversed, buffer);
}

/// Decoded once for all views of the process; a file that could not be read is tried again by the next view.
const CloseImage& sharedCloseImage() {
    static Core::NeverDestroyed<CloseImage> image;
    if ((*image).rgba.empty()) *image = loadCloseImage();
    return *image;
}

void setClearColor(uint32_t argb) {
    const auto part = [argb](int shift) { return static_cast<float>((argb >> shift) & 0xFF) / 255.0f; };
    if (argb >> 24) {
        glClearColor(part(16), part(8), part(0), 1.0f);
    } else {
        glClearColor(0, 0, 0, 0);
    }
}

void blendPremultiplied() { glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA); }

// Moved in from the far edge; a popup larger than the view begins at 0.
int clippedStart(int start, int length, int viewLength) {
    const int64_t inside = std::max<int64_t>(start, 0);
    return static_cast<int>(std::max<int64_t>(std::min(inside, int64_t{viewLength} - length), 0));
}

/// What is taken of a popup's pixels on one axis: a part that lies before the view's edge is skipped.
struct Span {
    int64_t skip, size;
};

Span visibleSpan(int unclippedStart, int start, int length, int viewLength) {
    const int64_t skip = std::max<int64_t>(-int64_t{unclippedStart}, 0);
    return {skip, std::min<int64_t>(length - skip, int64_t{viewLength} - start)};
}

}  // namespace

OsrRenderer::OsrRenderer(bool closeButton, float scale, const Look& chosen)
    : look(chosen),
      hasCloseButton(closeButton),
      closeMargin(std::floor(static_cast<float>(kCloseButtonMargin) * scale)),
      closeSizeWide(logicalToDevice(kCloseButtonSizeWide, scale)),
      closeSizeNarrow(logicalToDevice(kCloseButtonSizeNarrow, scale)) {}

OsrRenderer::~OsrRenderer() {
    if (viewTexture) glDeleteTextures(1, &viewTexture);
}

void OsrRenderer::initialize() {
    if (initialized) return;
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    setClearColor(look.backgroundColor);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    viewTexture = makeTexture();
    filterAndModulate(GL_NEAREST);
    if (hasCloseButton) initializeCloseTexture();
    initializeBackgroundTexture();
    initialized = true;
}

void OsrRenderer::initializeCloseTexture() {
    closeTexture = makeTexture();
    repeatTexture();
    filterAndModulate(GL_LINEAR);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, closeTexture);
    if (const CloseImage& image = sharedCloseImage(); !image.rgba.empty()) {
        readRowsOf(image.width, 0, 0);
        uploadRgba(image.width, image.height, image.rgba.data());
    }
    glDisable(GL_TEXTURE_2D);
}

void OsrRenderer::initializeBackgroundTexture() {
    std::array<uint32_t, kBackgroundTexels * kBackgroundTexels> texels;
    texels.fill(kBackgroundTexel);
    backgroundTexture = makeTexture();
    repeatTexture();
    filterAndModulate(GL_NEAREST);
    readRowsOf(kBackgroundTexels, 0, 0);
    uploadRgba(kBackgroundTexels, kBackgroundTexels, texels.data());
}

void OsrRenderer::onPaint(PaintElementType type, const RectList& dirtyRects, const void* buffer, int width,
                          int height) {
    initialize();
    if (!isOpaque()) glEnable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, viewTexture);
    if (type == PET_VIEW) {
        uploadView(dirtyRects, buffer, width, height);
    } else if (type == PET_POPUP && !popupEmpty) {
        uploadPopup(buffer, width, height);
    }
    glDisable(GL_TEXTURE_2D);
    if (!isOpaque()) glDisable(GL_BLEND);
}

void OsrRenderer::uploadView(const RectList& dirtyRects, const void* buffer, int width, int height) {
    const bool sameSize = width == viewWidth && height == viewHeight;
    viewWidth = width;
    viewHeight = height;
    if (look.showUpdateRect && !dirtyRects.empty()) updateRect = dirtyRects.front();
    const bool wholeView = dirtyRects.size() == 1 && dirtyRects.front() == CefRect(0, 0, width, height);
    if (!sameSize || wholeView) {
        readRowsOf(width, 0, 0);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, kBgra, kFourBytesReversed, buffer);
        return;
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, width);
    for (const CefRect& dirty : dirtyRects) {
        glPixelStorei(GL_UNPACK_SKIP_PIXELS, dirty.x);
        glPixelStorei(GL_UNPACK_SKIP_ROWS, dirty.y);
        uploadPart(dirty.x, dirty.y, dirty.width, dirty.height, buffer);
    }
}

// The popup becomes part of the view's texture; when it closes, the page is asked for that part again.
void OsrRenderer::uploadPopup(const void* buffer, int width, int height) {
    const Span across = visibleSpan(unclippedPopupRect.x, popupRect.x, width, viewWidth);
    const Span down = visibleSpan(unclippedPopupRect.y, popupRect.y, height, viewHeight);
    if (across.size < 1 || down.size < 1) return;
    readRowsOf(width, static_cast<int>(across.skip), static_cast<int>(down.skip));
    uploadPart(popupRect.x, popupRect.y, static_cast<int>(across.size), static_cast<int>(down.size), buffer);
}

void OsrRenderer::onPopupSize(const CefRect& rect) {
    if (rect.width < 1 || rect.height < 1) return;
    unclippedPopupRect = rect;
    popupRect = CefRect(clippedStart(rect.x, rect.width, viewWidth), clippedStart(rect.y, rect.height, viewHeight),
                        rect.width, rect.height);
    popupEmpty = false;
}

void OsrRenderer::clearPopupRects() {
    popupEmpty = true;
    popupRect = {};
    unclippedPopupRect = {};
}

void OsrRenderer::render() {
    if (viewWidth == 0 || viewHeight == 0) return;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glViewport(0, 0, viewWidth, viewHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    drawQuad(backgroundTexture, kWholeViewport);
    glDisable(GL_TEXTURE_2D);
    drawView();
    if (hasCloseButton) drawCloseButton();
    if (!isOpaque()) glDisable(GL_BLEND);
    if (look.showUpdateRect && updateRect.width > 0 && updateRect.height > 0) drawUpdateRect();
}

void OsrRenderer::drawView() {
    glEnable(GL_BLEND);
    blendPremultiplied();
    if (look.spinX != 0) glRotatef(-look.spinX, 1, 0, 0);
    if (look.spinY != 0) glRotatef(-look.spinY, 0, 1, 0);
    if (!isOpaque()) {
        blendPremultiplied();
        glEnable(GL_BLEND);
    }
    drawQuad(viewTexture, kWholeViewport);
    glDisable(GL_TEXTURE_2D);
}

// The icon's alpha is straight. It is drawn upside down, which an X does not show.
void OsrRenderer::drawCloseButton() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const auto width = static_cast<float>(viewWidth);
    const auto height = static_cast<float>(viewHeight);
    // The width is in device pixels, the threshold is not scaled: the sizes are the same on both sides of it.
    const auto size = static_cast<float>(viewWidth > kCloseButtonWidthThreshold ? closeSizeWide : closeSizeNarrow);
    const float right = 1 - 2 * closeMargin / width;
    const float left = 1 - 2 * (size + closeMargin) / width;
    const float top = 1 - 2 * closeMargin / height;
    const float bottom = 1 - 2 * (size + closeMargin) / height;
    drawQuad(closeTexture,
             {{{0, 1, left, top, 0}, {1, 1, right, top, 0}, {1, 0, right, bottom, 0}, {0, 0, left, bottom, 0}}});
}

void OsrRenderer::drawUpdateRect() const {
    const int left = updateRect.x + 1;
    const int right = updateRect.x + updateRect.width;
    const int top = updateRect.y;
    const int bottom = updateRect.y + updateRect.height - 1;
    glPushAttrib(kAllAttributes);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, viewWidth, viewHeight, 0, 0, 1);
    glLineWidth(1);
    glColor3f(1, 0, 0);
    glBegin(GL_LINE_STRIP);
    glVertex2i(left, top);
    glVertex2i(right, top);
    glVertex2i(right, bottom);
    glVertex2i(left, bottom);
    glVertex2i(left, top);
    glEnd();
    glPopMatrix();
    glPopAttrib();
}

}  // namespace ZEMO::UI
