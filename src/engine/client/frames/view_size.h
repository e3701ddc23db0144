#pragma once

#include <windows.h>

#include <atomic>

#include "include/cef_render_handler.h"

namespace ZEMO::UI {

/// What the engine is told of a view's size: the client area of its window in logical pixels.
///
/// Threads: the engine asks on its thread; startWiggle comes on the window's thread.
class ViewSize {
public:
    /// `dpiScale`: device pixels for each logical pixel, for the life of the view.
    ViewSize(HWND viewWindow, float dpiScale) : window(viewWindow), scale(dpiScale) {}

    /// A view without a window is as large as the desktop. Set before the browser exists.
    void setNoWindow(bool value) { noWindow = value; }
    /// After a maximise or restore: a few slightly smaller sizes force the page to lay out anew.
    void startWiggle() { wiggleResize = true; }

    /// Never empty: the engine ends the process for a size of 0x0.
    void getViewRect(CefRect& rect);
    /// False without a living window. `view` is what getViewRect gave.
    bool getScreenInfo(const CefRect& view, CefScreenInfo& screenInfo) const;

private:
    void shrink(int& width, int& height);

    HWND window;
    float scale;
    bool noWindow = false;
    std::atomic<bool> wiggleResize{false};
    int wiggleCount = 10;  ///< engine thread
};

}  // namespace ZEMO::UI
