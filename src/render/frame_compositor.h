#pragma once

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/geometry.h"
#include "render/pixel_box.h"
#include "zemo/frame_present.h"

namespace ZEMO::UI {

/// Software compositor of one view: keeps the page's last frame, draws an open popup (a <select> list) and the close
/// icon over a copy of it, and presents the result together with the one rectangle that changed.
///
/// Frames are 32 bits a pixel, bytes B, G, R, A, premultiplied, rows top to bottom, no padding; all sizes are device
/// pixels. The engine's own dirty rectangles are not needed: each frame is compared with the last one.
///
/// Thread: everything on the engine's UI thread except forceFullFrame(). The sink runs inside the call that presents
/// and as its last step; its pixels belong to the compositor and are valid only until it returns.
class FrameCompositor {
public:
    explicit FrameCompositor(OsrFramePresentCallback present) : presentCallback(std::move(present)) {}

    /// One frame of the page. Always presents; the dirty rectangle is (0, 0, 0, 0) when nothing changed.
    /// Ignored without a buffer or with a side below 1.
    void paintView(bool drawCloseButton, const void* buffer, int width, int height);

    /// One frame of the popup. Presents when the view is being composed already; otherwise the popup waits for the
    /// next view frame.
    void paintPopup(bool drawCloseButton, const void* buffer, int width, int height);

    /// Hiding drops the popup's frame; the next view frame restores what it covered.
    void onPopupShow(bool show);

    /// Only left and top are used: the size comes with the popup's frame.
    void onPopupRect(const Rect16& edges) { popupEdges = edges; }

    /// The next view frame presents as a whole, also when nothing differs. Any thread.
    void forceFullFrame() { fullFrameForced.exchange(true); }

    /// Presents null and zeros ("nothing to show any more"); the next composed frame is built from scratch.
    /// Throws std::bad_function_call without a sink.
    void clearFrame();

    /// Before the first frame. `rgba` holds width * height * 4 bytes; anything else empties the image, and no icon is
    /// drawn.
    void setCloseImage(std::vector<uint8_t> rgba, int width, int height);

    /// Before the first frame. Side of the icon's square and its distance from the top and right edges, device pixels.
    /// 0 draws no icon.
    void setCloseMetrics(int size, int margin);

private:
    using Frame = std::vector<uint8_t>;

    PixelBox findChange(const uint8_t* buffer) const;
    PixelBox popupBox() const { return {popupEdges.left, popupEdges.top, popupWidth, popupHeight}; }
    PixelBox closeBox() const;
    PixelBox wholeFrame() const { return {0, 0, viewWidth, viewHeight}; }
    PixelBox widened(const PixelBox& dirty, const PixelBox& by) const;
    void copyBox(Frame& to, const uint8_t* from, const PixelBox& box) const;
    void compose(PixelBox dirty, bool popupInUse, bool drawCloseButton);
    void blitPopup();
    void drawCloseImage();
    void presentPlain(PixelBox dirty);
    void present(const Frame& frame, const PixelBox& dirty);

    OsrFramePresentCallback presentCallback;
    Frame viewFrame;      // the page alone
    Frame popupFrame;     // empty while no popup is open
    Frame composedFrame;  // the page with popup and close icon drawn on it
    int viewWidth = 0;
    int viewHeight = 0;
    int popupWidth = 0;
    int popupHeight = 0;
    Rect16 popupEdges;
    bool popupVisible = false;
    bool composedValid = false;  // composedFrame follows viewFrame, so only what changed needs a restore
    PixelBox previousPopup;      // as the last composed view frame drew them
    PixelBox previousClose;
    PixelBox popupTrace;  // bounds of all popup pixels drawn since composedFrame was built from scratch
    PixelBox closeTrace;  // the same for the close icon

    bool popupIntact = true;  // composedFrame shows the popup where and as the last view frame would draw it
    bool closeIntact = true;  // the same for the close icon

    Frame closeImage;
    int closeImageWidth = 0;
    int closeImageHeight = 0;
    int closeSize = 0;
    int closeMargin = 0;

    std::atomic<bool> fullFrameForced{false};  // the one field that other threads touch
};

}  // namespace ZEMO::UI
