// The window's side of the input method. Order: the context comes with the focus (the layer sets language and caret,
// and the system's own composition window is kept away), then start, compositions and end of one text; requests for the
// place of a character come in between. While a password field has the focus the context message is swallowed whole.
#include "core/process_state.h"
#include "layers/messages/layer_style.h"
#include "layers/messages/own_style.h"

namespace ZEMO::UI {

namespace {
/// Clears ISC_SHOWUICOMPOSITIONWINDOW, the top bit of the 32 flag bits.
constexpr LPARAM kWithoutCompositionWindow = 0x7fffffff;
}  // namespace

bool ZEMOWindow::LayerStyle::imeStart(ZEMOWindow& layer, LRESULT*, const WindowMessage&) {
    layer.onImeStartComposition();
    return true;
}

bool ZEMOWindow::LayerStyle::imeEnd(ZEMOWindow& layer, LRESULT*, const WindowMessage&) {
    layer.onImeEndComposition();
    return true;
}

bool ZEMOWindow::LayerStyle::imeComposition(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onImeComposition(m.lParam);
    return true;
}

bool ZEMOWindow::LayerStyle::imeSetContext(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m) {
    layer.onImeSetContext();
    if (!isPasswordFieldFocused())
        *result = DefWindowProcW(m.hwnd, m.message, m.wParam, m.lParam & kWithoutCompositionWindow);
    return true;
}

bool ZEMOWindow::LayerStyle::imeRequest(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m) {
    if (m.wParam != IMR_QUERYCHARPOSITION) return false;
    *result = layer.onImeQueryCharPosition(reinterpret_cast<IMECHARPOSITION*>(m.lParam));
    return true;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeStart(ZEMOWindow& layer, const WindowMessage&) {
    layer.onImeStartComposition();
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeEnd(ZEMOWindow& layer, const WindowMessage&) {
    layer.onImeEndComposition();
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeComposition(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onImeComposition(m.lParam);
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeSetContext(ZEMOWindow& layer, const WindowMessage&) {
    layer.onImeSetContext();
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeRequest(ZEMOWindow& layer, const WindowMessage& m) {
    if (m.wParam != IMR_QUERYCHARPOSITION) return {};
    if (!layer.onImeQueryCharPosition(reinterpret_cast<IMECHARPOSITION*>(m.lParam))) return {};
    return 1;
}

}  // namespace ZEMO::UI
