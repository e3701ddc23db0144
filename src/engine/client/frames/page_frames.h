#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

#include "engine/client/frames/render_cycle.h"
#include "engine/client/frames/view_size.h"
#include "include/cef_browser.h"
#include "render/cef_render_impl.h"
#include "render/osr_renderer.h"

namespace ZEMO::UI {

/// The paint side of one view: takes the engine's frames to the consumer or the local renderer, and keeps frames coming
/// on a quiet page by a render thread of its own, from start to stop.
///
/// Threads: paint and popup calls on the engine thread; onWindowResized on the window's; setVisible, stop and finish on
/// the thread that shows, hides or drops the view.
class PageFrames {
public:
    /// The view's browser, or null; called on any thread.
    using BrowserSource = std::function<CefRefPtr<CefBrowser>()>;

    PageFrames(HWND viewWindow, float dpiScale, bool closeButton, uint32_t sleepTime,
               std::unique_ptr<CefRenderImpl> frameConsumer, BrowserSource browserSource);

    /// Starts the render thread. Throws std::system_error when it can't be started.
    void start();
    /// The end of the view, first half: nothing is shown any more, the render thread is joined.
    void stop();
    /// Second half: the consumer hears that nothing is left to show. `lastLayer`: no other view is on the game's
    /// window.
    void finish(bool lastLayer);
    bool isStopped() const { return cycle.isStopped(); }

    /// The game draws the page itself, and so places the page's cursor.
    bool isDrawnByGame() { return consumer->isActive(); }
    ViewSize& getViewSize() { return viewSize; }
    void onWindowResized();
    void setVisible(bool show, bool keepHookFrame);
    /// No further frame is taken; the window is going away.
    void markClosing() { closing.exchange(true); }
    /// Runs `action` if the view is shown, and so that it is not hidden or dropped meanwhile. Any thread.
    void whileShown(const std::function<void()>& action);
    /// The close button may be drawn from now on.
    void showCloseButton() { closeButtonShown = true; }
    /// A renderer other than the factory's. Any thread.
    void setLocalRenderer(std::shared_ptr<IOsrRenderer> local) { renderer.store(std::move(local)); }

    void onPaint(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                 const void* buffer, int width, int height);
    void onPopupShow(const CefRefPtr<CefBrowser>& source, bool show);
    void onPopupSize(const CefRefPtr<CefBrowser>& source, const CefRect& rect);

private:
    bool offerToConsumer(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                         const void* buffer, int width, int height);
    void drawLocally(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                     const void* buffer, int width, int height);
    bool isShown() const { return visible && !closing && !cycle.isStopped(); }
    void setShown(bool shown);
    void ensureRenderer();
    void refreshBrowser();
    bool runCycle();

    // Shared between threads.
    std::atomic<bool> clearPending{false};  ///< the consumer has still to hear that nothing is left to show
    std::timed_mutex paintMutex;            ///< one frame or the end of frames; held while the consumer is called,
                                            ///< never while a local renderer draws: that may need the window's thread
    std::atomic<DWORD> paintThread{0};      ///< the thread that is inside a frame
    std::atomic<std::shared_ptr<IOsrRenderer>> renderer;
    std::atomic<bool> needResize{false};
    std::mutex shownMutex;  ///< what must not outlast the view on the screen, or its hiding; never while drawing
    std::atomic<bool> visible{true};
    std::atomic<bool> closing{false};
    std::atomic<bool> closeButtonShown{false};

    // Fixed after construction.
    HWND window;
    float scale;  ///< device pixels for each logical pixel
    bool hasCloseButton;
    uint32_t hookSleepTime;
    std::unique_ptr<CefRenderImpl> consumer;
    BrowserSource getBrowser;
    ViewSize viewSize;
    RenderCycle cycle;  ///< last: its thread uses all of the above
};

}  // namespace ZEMO::UI
