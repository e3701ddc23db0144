#include "layers/input_modifiers.h"
#include "layers/messages/layer_style.h"
#include "layers/messages/own_style.h"
#include "layers/messages/track_mouse_leave.h"

namespace ZEMO::UI {

void ZEMOWindow::moveMouse(const WindowMessage& m, int x, int y, WPARAM keys) {
    onMouseMove(x, y, mouseModifiers(keys));
    if (IXbtn* button = closeButtonIfShown()) button->onMouseMove(m.cursor(), m.client());
}

bool ZEMOWindow::LayerStyle::mouseMove(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (trackMouseLeave && !layer.steamDeck) {
        // The first move after the cursor entered only arms the notice of its leaving.
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, m.hwnd, 0};
        TrackMouseEvent(&track);
        trackMouseLeave = false;
        SetCursor(LoadCursorW(nullptr, IDC_ARROW));
        return false;
    }
    layer.moveMouse(m, m.x(), m.y(), m.wParam);
    return true;
}

bool ZEMOWindow::LayerStyle::leftDown(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (layer.isOnCloseButton(m)) {
        layer.clickCloseButton();
        return true;
    }
    layer.onMouseButton(kLeftButton, false, m.x(), m.y());
    return layer.frameConsumerActive;
}

bool ZEMOWindow::LayerStyle::leftUp(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onMouseButton(kLeftButton, true, m.x(), m.y());
    return true;
}

bool ZEMOWindow::LayerStyle::wheel(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onMouseWheel(m.wParam, m.x(), m.y(), false, false);
    return true;
}

bool ZEMOWindow::LayerStyle::wheelSideways(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onMouseWheel(m.wParam, m.x(), m.y(), true, false);
    return true;
}

bool ZEMOWindow::LayerStyle::mouseLeave(ZEMOWindow&, LRESULT*, const WindowMessage&) {
    trackMouseLeave = true;
    return false;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::mouseMove(ZEMOWindow& layer, const WindowMessage& m) {
    layer.moveMouse(m, m.x(), m.y(), m.wParam);
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::leftDown(ZEMOWindow& layer, const WindowMessage& m) {
    if (layer.isOnCloseButton(m)) {
        // The click may end the layer: the window stops looking for it before that.
        SetWindowLongPtrW(m.hwnd, GWLP_USERDATA, 0);
        layer.clickCloseButton();
    } else {
        layer.onMouseButton(kLeftButton, false, m.x(), m.y());
    }
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::leftUp(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onMouseButton(kLeftButton, true, m.x(), m.y());
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::rightDown(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onMouseButton(kRightButton, false, m.x(), m.y());
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::rightUp(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onMouseButton(kRightButton, true, m.x(), m.y());
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::wheel(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onMouseWheel(m.wParam, m.x(), m.y(), false, false);
    return 0;
}

}  // namespace ZEMO::UI
