#include "core/log.h"
#include "layers/window_message.h"
#include "layers/window_messages.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

ZEMOWindow::OwnResult ZEMOWindow::windowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const WindowMessage m(hwnd, message, wParam, lParam, hwnd);
    switch (message) {
        case WM_DESTROY:
        case WM_SIZE:
        case WM_ACTIVATE:
        case WM_KILLFOCUS:
        case WM_CLOSE:
        case WM_NCLBUTTONDBLCLK:
        case WM_SYSCOMMAND:
            return onOwnState(m);
        case WM_SETCURSOR:
            return onOwnSetCursor(m);
        case WM_KEYDOWN:
        case WM_KEYUP:
        case WM_CHAR:
        case WM_SYSKEYDOWN:
        case WM_SYSKEYUP:
        case WM_SYSCHAR:
            onKey(message, wParam, lParam);
            return 0;
        case WM_MOUSEMOVE:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_MOUSEWHEEL:
            return onOwnMouse(m);
        case WM_POINTERUPDATE:
        case WM_POINTERDOWN:
        case WM_POINTERUP:
            return onOwnPointer(m);
        case WM_IME_STARTCOMPOSITION:
        case WM_IME_ENDCOMPOSITION:
        case WM_IME_COMPOSITION:
        case WM_IME_SETCONTEXT:
        case WM_IME_REQUEST:
            return onOwnIme(m);
        case kMessageExternalScript:
        case kMessageImeFocus:
        case kMessageImeBounds:
            return onOwnPrivate(m);
        default:
            return {};
    }
}

ZEMOWindow::OwnResult ZEMOWindow::onOwnState(const WindowMessage& m) {
    switch (m.message) {
        case WM_DESTROY:
            Core::logDebugA("Post Message Destroy");
            PostQuitMessage(0);
            return 0;
        case WM_SIZE:
            if (windowStyle != WindowStyle::Layer) onSize(m.client(), LOWORD(m.lParam), HIWORD(m.lParam));
            if (IXbtn* button = closeButtonIfShown()) button->onResize(m.client());
            return 0;
        case WM_ACTIVATE:
            if (m.wParam)
                onActivated();
            else
                onDeactivated();
            return 0;
        case WM_KILLFOCUS:
            onKillFocus();
            return 0;
        case WM_CLOSE:
            Core::logDebugA("ZEMOWindow WM Close");
            onClose();
            return {};  // the default answer destroys the window
        case WM_NCLBUTTONDBLCLK:
            onMaximizeRestore();
            return {};
        default:  // WM_SYSCOMMAND
            if (m.wParam == SC_MAXIMIZE || m.wParam == SC_RESTORE) onMaximizeRestore();
            return {};
    }
}

}  // namespace ZEMO::UI
