#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <mutex>

#include "include/cef_browser.h"

namespace ZEMO::UI {

/// The way of mouse, wheel, keyboard and touch to a page. Coordinates are device pixels of the view's window; the
/// browser is the one that the caller has found to be there.
///
/// Threads: the send operations on the thread of the view's window (they read the keyboard state of the message that is
/// being handled); getLastTouchEvent on any.
class PageInput {
public:
    /// Ends a running composition of text before a press.
    using CancelComposition = std::function<void(const CefRefPtr<CefBrowser>&)>;

    PageInput(HWND viewWindow, float dpiScale, CancelComposition cancelComposition);

    /// button: 0 left, 1 middle, 2 right.
    void sendMouseClick(const CefRefPtr<CefBrowser>& browser, int button, bool mouseUp, int x, int y);
    /// modifiers: the engine's EVENTFLAG_ bits.
    void sendMouseMove(const CefRefPtr<CefBrowser>& browser, int x, int y, uint32_t modifiers);
    /// The delta is the high word of wParam. With clientCoordinates false, x and y are screen coordinates, and the
    /// view's window or its parent must be in front.
    void sendMouseWheel(const CefRefPtr<CefBrowser>& browser, WPARAM wParam, int x, int y, bool horizontal,
                        bool clientCoordinates);
    void sendKey(const CefRefPtr<CefBrowser>& browser, UINT message, WPARAM wParam, LPARAM lParam);
    /// The caller has made sure that `browser` is there.
    void sendTouch(const CefRefPtr<CefBrowser>& browser, uint32_t id, int x, int y, UINT pointerMessage);

    /// The last touch sent; all zero when the last pointer input was a mouse button.
    CefTouchEvent getLastTouchEvent() const;

private:
    void setLastTouchEvent(const CefTouchEvent& event);
    bool toClient(POINT& point) const;
    CefMouseEvent mouseEventAt(int x, int y, uint32_t modifiers) const;

    HWND window;
    float scale;
    CancelComposition cancelComposition;
    mutable std::mutex lastTouchMutex;
    CefTouchEvent lastTouchEvent;  ///< read on the engine thread
};

}  // namespace ZEMO::UI
