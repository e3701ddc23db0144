#include "core/log.h"
#include "layers/messages/message_table.h"
#include "layers/messages/own_style.h"
#include "layers/window_messages.h"

namespace ZEMO::UI {

ZEMOWindow::OwnStyle::Handler ZEMOWindow::OwnStyle::find(UINT message) {
    static constexpr MessageRow<Handler> kTable[] = {
        {WM_DESTROY, destroy},
        {WM_SIZE, size},
        {WM_ACTIVATE, activate},
        {WM_KILLFOCUS, killFocus},
        {WM_CLOSE, close},
        {WM_SETCURSOR, setCursor},
        {WM_NCLBUTTONDBLCLK, captionDoubleClick},
        {WM_KEYDOWN, key},
        {WM_KEYUP, key},
        {WM_CHAR, key},
        {WM_SYSKEYDOWN, key},
        {WM_SYSKEYUP, key},
        {WM_SYSCHAR, key},
        {WM_IME_STARTCOMPOSITION, imeStart},
        {WM_IME_ENDCOMPOSITION, imeEnd},
        {WM_IME_COMPOSITION, imeComposition},
        {WM_SYSCOMMAND, systemCommand},
        {WM_MOUSEMOVE, mouseMove},
        {WM_LBUTTONDOWN, leftDown},
        {WM_LBUTTONUP, leftUp},
        {WM_RBUTTONDOWN, rightDown},
        {WM_RBUTTONUP, rightUp},
        {WM_MOUSEWHEEL, wheel},
        {WM_POINTERUPDATE, pointer},
        {WM_POINTERDOWN, pointer},
        {WM_POINTERUP, pointer},
        {WM_IME_SETCONTEXT, imeSetContext},
        {WM_IME_REQUEST, imeRequest},
        {kMessageExternalScript, externalScript},
        {kMessageImeFocus, imeFocus},
        {kMessageImeBounds, imeBounds},
    };
    static_assert(isInOrder(kTable));
    return findHandler(kTable, message);
}

ZEMOWindow::OwnResult ZEMOWindow::windowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    const OwnStyle::Handler handler = OwnStyle::find(message);
    if (!handler) return {};
    return handler(*this, WindowMessage(hwnd, message, wParam, lParam, hwnd));
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::destroy(ZEMOWindow&, const WindowMessage&) {
    Core::logDebugA("Post Message Destroy");
    PostQuitMessage(0);
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::size(ZEMOWindow& layer, const WindowMessage& m) {
    if (layer.windowStyle != WindowStyle::Layer) layer.onSize(m.client(), LOWORD(m.lParam), HIWORD(m.lParam));
    if (IXbtn* button = layer.closeButtonIfShown()) button->onResize(m.client());
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::activate(ZEMOWindow& layer, const WindowMessage& m) {
    m.wParam ? layer.onActivated() : layer.onDeactivated();
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::killFocus(ZEMOWindow& layer, const WindowMessage&) {
    layer.onKillFocus();
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::close(ZEMOWindow& layer, const WindowMessage&) {
    Core::logDebugA("ZEMOWindow WM Close");
    layer.onClose();
    return {};  // the default answer destroys the window
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::captionDoubleClick(ZEMOWindow& layer, const WindowMessage&) {
    layer.onMaximizeRestore();
    return {};
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::systemCommand(ZEMOWindow& layer, const WindowMessage& m) {
    if (m.wParam == SC_MAXIMIZE || m.wParam == SC_RESTORE) layer.onMaximizeRestore();
    return {};
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::key(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onKey(m.message, m.wParam, m.lParam);
    return 0;
}

}  // namespace ZEMO::UI
