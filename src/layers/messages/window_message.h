#pragma once

#include <windows.h>

#include <windowsx.h>

namespace ZEMO::UI {

/// One window message with what its handlers read from it. The cursor and the client rectangle are asked for at their
/// first use only: most messages need neither, and each is a call into the system.
class WindowMessage {
public:
    /// `clientOf` is the window whose client area the cursor point refers to.
    WindowMessage(HWND window, UINT number, WPARAM first, LPARAM second, HWND clientWindow)
        : hwnd(window), message(number), wParam(first), lParam(second), clientOf(clientWindow) {}

    const HWND hwnd;
    const UINT message;
    const WPARAM wParam;
    const LPARAM lParam;

    /// The signed halves of lParam, as mouse messages carry them.
    int x() const { return GET_X_LPARAM(lParam); }
    int y() const { return GET_Y_LPARAM(lParam); }

    /// Where the cursor is now, in client pixels.
    const POINT& cursor() const {
        if (!cursorKnown) {
            GetCursorPos(&cursorPoint);
            ScreenToClient(clientOf, &cursorPoint);
            cursorKnown = true;
        }
        return cursorPoint;
    }

    const RECT& client() const {
        if (!clientKnown) {
            GetClientRect(hwnd, &clientRect);
            clientKnown = true;
        }
        return clientRect;
    }

    /// A point of the screen in the client pixels of the same window as cursor().
    POINT toClient(POINT screen) const {
        ScreenToClient(clientOf, &screen);
        return screen;
    }

private:
    const HWND clientOf;
    mutable POINT cursorPoint{};
    mutable RECT clientRect{};
    mutable bool cursorKnown = false;
    mutable bool clientKnown = false;
};

}  // namespace ZEMO::UI
