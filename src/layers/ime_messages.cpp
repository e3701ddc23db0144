// The window's side of the input method. Order: the context comes with the focus (the layer sets language and caret,
// and the system's own composition window is kept away), then start, compositions and end of one text; requests for the
// place of a character come in between. While a password field has the focus the context message is swallowed whole.
#include "core/process_state.h"
#include "layers/window_message.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

namespace {
/// Clears ISC_SHOWUICOMPOSITIONWINDOW, the top bit of the 32 flag bits.
constexpr LPARAM kWithoutCompositionWindow = 0x7fffffff;
}  // namespace

bool ZEMOWindow::onLayerIme(LRESULT* result, const WindowMessage& m) {
    switch (m.message) {
        case WM_IME_STARTCOMPOSITION:
            onImeStartComposition();
            return true;
        case WM_IME_ENDCOMPOSITION:
            onImeEndComposition();
            return true;
        case WM_IME_COMPOSITION:
            onImeComposition(m.lParam);
            return true;
        case WM_IME_SETCONTEXT:
            onImeSetContext();
            if (!isPasswordFieldFocused())
                *result = DefWindowProcW(m.hwnd, m.message, m.wParam, m.lParam & kWithoutCompositionWindow);
            return true;
        default:  // WM_IME_REQUEST
            if (m.wParam != IMR_QUERYCHARPOSITION) return false;
            *result = onImeQueryCharPosition(reinterpret_cast<IMECHARPOSITION*>(m.lParam));
            return true;
    }
}

ZEMOWindow::OwnResult ZEMOWindow::onOwnIme(const WindowMessage& m) {
    switch (m.message) {
        case WM_IME_STARTCOMPOSITION:
            onImeStartComposition();
            return 0;
        case WM_IME_ENDCOMPOSITION:
            onImeEndComposition();
            return 0;
        case WM_IME_COMPOSITION:
            onImeComposition(m.lParam);
            return 0;
        case WM_IME_SETCONTEXT:
            onImeSetContext();
            return 0;
        default:  // WM_IME_REQUEST
            if (m.wParam == IMR_QUERYCHARPOSITION &&
                onImeQueryCharPosition(reinterpret_cast<IMECHARPOSITION*>(m.lParam)))
                return 1;
            return {};
    }
}

}  // namespace ZEMO::UI
