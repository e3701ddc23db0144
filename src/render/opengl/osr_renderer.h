#pragma once

#include <windows.h>

#include <GL/gl.h>

#include <array>
#include <atomic>
#include <cstdint>

#include "render/cef_render_impl.h"
#include "render/close_button_metrics.h"

namespace ZEMO::UI {

/// Draws one view with the fixed-function pipeline: page, popup and close icon on a plain background. It makes no
/// context current and shows nothing by itself: its owner does both around each call.
///
/// Thread: engine, but for isPopupRectEmpty, which the view's render thread asks.
class OsrRenderer {
public:
    /// How the view is looked at. A view takes the defaults; the rest is for whoever looks for a fault in the drawing.
    struct Look {
        bool showUpdateRect = false;            ///< a red frame around the first rectangle that a paint changed
        uint32_t backgroundColor = 0xFFFFFFFF;  ///< ARGB as the engine has it; any alpha but 0 counts as opaque
        float spinX = 0;                        ///< degrees that turn the view
        float spinY = 0;
    };

    /// `scale`: device pixels for each logical pixel of the window.
    OsrRenderer(bool closeButton, float scale) : OsrRenderer(closeButton, scale, Look{}) {}
    OsrRenderer(bool closeButton, float scale, const Look& chosen);
    ~OsrRenderer();
    OsrRenderer(const OsrRenderer&) = delete;
    OsrRenderer& operator=(const OsrRenderer&) = delete;

    /// Textures and fixed state, once; a paint does it if it has not been done.
    void initialize();
    /// Takes one frame into the view's texture: of the view only what is dirty, of a popup what lies within the view.
    void onPaint(PaintElementType type, const RectList& dirtyRects, const void* buffer, int width, int height);
    /// Draws what was taken, into a viewport of the view's size at the window's lower left corner.
    void render();

    /// Device pixels. A popup that reaches past the view's right or lower edge is moved in.
    void onPopupSize(const CefRect& rect);
    void clearPopupRects();
    CefRect getPopupRect() const { return popupRect; }
    bool isPopupRectEmpty() const { return popupEmpty; }

private:
    bool isOpaque() const { return (look.backgroundColor >> 24) != 0; }
    void initializeCloseTexture();
    void initializeBackgroundTexture();
    void uploadView(const RectList& dirtyRects, const void* buffer, int width, int height);
    void uploadPopup(const void* buffer, int width, int height);
    void drawView();
    void drawCloseButton();
    void drawUpdateRect() const;

    // Fixed after construction.
    const Look look;
    const bool hasCloseButton;
    const float closeMargin;  ///< this and the sizes in device pixels
    const int closeSizeWide;
    const int closeSizeNarrow;

    bool initialized = false;
    GLuint viewTexture = 0;
    GLuint closeTexture = 0;
    GLuint backgroundTexture = 0;
    int viewWidth = 0;
    int viewHeight = 0;
    CefRect popupRect;
    CefRect unclippedPopupRect;
    CefRect updateRect;
    std::atomic<bool> popupEmpty{true};  ///< of popupRect, for the render thread
};

}  // namespace ZEMO::UI
