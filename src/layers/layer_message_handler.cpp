#include "layers/window_message.h"
#include "layers/window_messages.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

bool ZEMOWindow::handleMessage(LRESULT* result, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const WindowMessage m(hwnd, message, wParam, lParam, window);
    switch (message) {
        case WM_DESTROY:
        case WM_SIZE:
        case WM_ACTIVATE:
        case WM_KILLFOCUS:
        case WM_ERASEBKGND:
        case WM_NCLBUTTONDBLCLK:
        case WM_SYSCOMMAND:
            return onLayerState(m);
        case WM_SETCURSOR:
            return onLayerSetCursor(m);
        case WM_INPUT:
            return true;
        case WM_KEYDOWN:
        case WM_KEYUP:
        case WM_CHAR:
        case WM_SYSKEYUP:
        case WM_SYSCHAR:  // WM_SYSKEYDOWN stays with the game, so that its Alt combinations go on working
            onKey(message, wParam, lParam);
            return true;
        case WM_MOUSEMOVE:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_LBUTTONUP:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
        case WM_MOUSELEAVE:
            return onLayerMouse(m);
        case WM_POINTERUPDATE:
        case WM_POINTERDOWN:
        case WM_POINTERUP:
            return onLayerPointer(m);
        case WM_IME_STARTCOMPOSITION:
        case WM_IME_ENDCOMPOSITION:
        case WM_IME_COMPOSITION:
        case WM_IME_SETCONTEXT:
        case WM_IME_REQUEST:
            return onLayerIme(result, m);
        case kMessageExternalScript:
        case kMessageExternalText:
        case kMessageRemoteMouseMove:
        case kMessageRemoteWheel:
        case kMessageRemotePress:
        case kMessageImeFocus:
        case kMessageImeBounds:
            return onLayerPrivate(m);
        default:
            return false;
    }
}

bool ZEMOWindow::onLayerState(const WindowMessage& m) {
    switch (m.message) {
        case WM_DESTROY:
            onDestroy();
            break;
        case WM_SIZE:
            if (windowStyle == WindowStyle::Layer) onSize(m.client(), LOWORD(m.lParam), HIWORD(m.lParam));
            if (IXbtn* button = closeButtonIfShown()) button->onResize(m.client());
            break;
        case WM_ACTIVATE:
            if (m.wParam)
                onActivated();
            else
                onDeactivated();
            break;
        case WM_KILLFOCUS:
            onKillFocus();
            break;
        case WM_ERASEBKGND:
            // Shows the custom cursor without waiting for the mouse to move.
            if (firstErase && windowStyle == WindowStyle::Layer && customCursor)
                PostMessageW(m.hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(m.hwnd), HTCLIENT);
            firstErase = false;
            break;
        case WM_NCLBUTTONDBLCLK:
            onMaximizeRestore();
            break;
        default:  // WM_SYSCOMMAND
            if (m.wParam == SC_MAXIMIZE || m.wParam == SC_RESTORE) onMaximizeRestore();
            break;
    }
    return false;
}

}  // namespace ZEMO::UI
