#include "layers/input_modifiers.h"
#include "layers/track_mouse_leave.h"
#include "layers/window_message.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

namespace {
constexpr int kLeft = 0;
constexpr int kRight = 2;
}  // namespace

void ZEMOWindow::moveMouse(const WindowMessage& m, int x, int y, WPARAM keys) {
    onMouseMove(x, y, mouseModifiers(keys));
    if (IXbtn* button = closeButtonIfShown()) button->onMouseMove(m.cursor(), m.client());
}

bool ZEMOWindow::onLayerMouse(const WindowMessage& m) {
    switch (m.message) {
        case WM_MOUSEMOVE:
            if (trackMouseLeave && !steamDeck) {
                // The first move after the cursor entered only arms the notice of its leaving.
                TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, m.hwnd, 0};
                TrackMouseEvent(&track);
                trackMouseLeave = false;
                SetCursor(LoadCursorW(nullptr, IDC_ARROW));
                return false;
            }
            moveMouse(m, m.x(), m.y(), m.wParam);
            return true;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (isOnCloseButton(m)) {
                clickCloseButton();
                return true;
            }
            onMouseButton(kLeft, false, m.x(), m.y());
            return frameConsumerActive;
        case WM_LBUTTONUP:
            onMouseButton(kLeft, true, m.x(), m.y());
            return true;
        case WM_MOUSEWHEEL:
            onMouseWheel(m.wParam, m.x(), m.y(), false, false);
            return true;
        case WM_MOUSEHWHEEL:
            onMouseWheel(m.wParam, m.x(), m.y(), true, false);
            return true;
        case WM_MOUSELEAVE:
            trackMouseLeave = true;
            return false;
        default:  // the right button never reaches a layer's page
            return true;
    }
}

ZEMOWindow::OwnResult ZEMOWindow::onOwnMouse(const WindowMessage& m) {
    switch (m.message) {
        case WM_MOUSEMOVE:
            moveMouse(m, m.x(), m.y(), m.wParam);
            break;
        case WM_LBUTTONDOWN:
            if (isOnCloseButton(m)) {
                // The click may end the layer: the window stops looking for it before that.
                SetWindowLongPtrW(m.hwnd, GWLP_USERDATA, 0);
                clickCloseButton();
            } else {
                onMouseButton(kLeft, false, m.x(), m.y());
            }
            break;
        case WM_LBUTTONUP:
            onMouseButton(kLeft, true, m.x(), m.y());
            break;
        case WM_RBUTTONDOWN:
            onMouseButton(kRight, false, m.x(), m.y());
            break;
        case WM_RBUTTONUP:
            onMouseButton(kRight, true, m.x(), m.y());
            break;
        default:  // WM_MOUSEWHEEL
            onMouseWheel(m.wParam, m.x(), m.y(), false, false);
            break;
    }
    return 0;
}

}  // namespace ZEMO::UI
