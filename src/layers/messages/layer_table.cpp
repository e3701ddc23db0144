#include "layers/messages/layer_style.h"
#include "layers/messages/message_table.h"
#include "layers/window_messages.h"

namespace ZEMO::UI {

ZEMOWindow::LayerStyle::Handler ZEMOWindow::LayerStyle::find(UINT message) {
    static constexpr MessageRow<Handler> kTable[] = {
        {WM_DESTROY, destroy},
        {WM_SIZE, size},
        {WM_ACTIVATE, activate},
        {WM_KILLFOCUS, killFocus},
        {WM_ERASEBKGND, eraseBackground},
        {WM_SETCURSOR, setCursor},
        {WM_NCLBUTTONDBLCLK, captionDoubleClick},
        {WM_INPUT, consume},
        {WM_KEYDOWN, key},
        {WM_KEYUP, key},
        {WM_CHAR, key},
        // WM_SYSKEYDOWN stays with the game, so that its Alt combinations go on working.
        {WM_SYSKEYUP, key},
        {WM_SYSCHAR, key},
        {WM_IME_STARTCOMPOSITION, imeStart},
        {WM_IME_ENDCOMPOSITION, imeEnd},
        {WM_IME_COMPOSITION, imeComposition},
        {WM_SYSCOMMAND, systemCommand},
        {WM_MOUSEMOVE, mouseMove},
        {WM_LBUTTONDOWN, leftDown},
        {WM_LBUTTONUP, leftUp},
        {WM_LBUTTONDBLCLK, leftDown},
        // The right button never reaches a layer's page.
        {WM_RBUTTONDOWN, consume},
        {WM_RBUTTONUP, consume},
        {WM_MOUSEWHEEL, wheel},
        {WM_MOUSEHWHEEL, wheelSideways},
        {WM_POINTERUPDATE, pointer},
        {WM_POINTERDOWN, pointer},
        {WM_POINTERUP, pointer},
        {WM_IME_SETCONTEXT, imeSetContext},
        {WM_IME_REQUEST, imeRequest},
        {WM_MOUSELEAVE, mouseLeave},
        {kMessageExternalScript, externalScript},
        {kMessageExternalText, externalText},
        {kMessageRemoteMouseMove, remoteMouseMove},
        {kMessageRemoteWheel, remoteWheel},
        {kMessageRemotePress, remotePress},
        {kMessageImeFocus, imeFocus},
        {kMessageImeBounds, imeBounds},
    };
    static_assert(isInOrder(kTable));
    return findHandler(kTable, message);
}

bool ZEMOWindow::handleMessage(LRESULT* result, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const LayerStyle::Handler handler = LayerStyle::find(message);
    return handler && handler(*this, result, WindowMessage(hwnd, message, wParam, lParam, window));
}

bool ZEMOWindow::LayerStyle::destroy(ZEMOWindow& layer, LRESULT*, const WindowMessage&) {
    layer.onDestroy();
    return false;
}

bool ZEMOWindow::LayerStyle::size(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    // An own window hears of its size by its own procedure.
    if (layer.windowStyle == WindowStyle::Layer) layer.onSize(m.client(), LOWORD(m.lParam), HIWORD(m.lParam));
    if (IXbtn* button = layer.closeButtonIfShown()) button->onResize(m.client());
    return false;
}

bool ZEMOWindow::LayerStyle::activate(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    m.wParam ? layer.onActivated() : layer.onDeactivated();
    return false;
}

bool ZEMOWindow::LayerStyle::killFocus(ZEMOWindow& layer, LRESULT*, const WindowMessage&) {
    layer.onKillFocus();
    return false;
}

bool ZEMOWindow::LayerStyle::eraseBackground(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    // Shows the custom cursor without waiting for the mouse to move.
    if (layer.firstErase && layer.windowStyle == WindowStyle::Layer && layer.customCursor) {
        PostMessageW(m.hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(m.hwnd), HTCLIENT);
    }
    layer.firstErase = false;
    return false;
}

bool ZEMOWindow::LayerStyle::captionDoubleClick(ZEMOWindow& layer, LRESULT*, const WindowMessage&) {
    layer.onMaximizeRestore();
    return false;
}

bool ZEMOWindow::LayerStyle::systemCommand(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (m.wParam == SC_MAXIMIZE || m.wParam == SC_RESTORE) layer.onMaximizeRestore();
    return false;
}

bool ZEMOWindow::LayerStyle::consume(ZEMOWindow&, LRESULT*, const WindowMessage&) { return true; }

bool ZEMOWindow::LayerStyle::key(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onKey(m.message, m.wParam, m.lParam);
    return true;
}

}  // namespace ZEMO::UI
