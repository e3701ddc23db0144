#include "core/posted_text.h"
#include "layers/input_modifiers.h"
#include "layers/messages/layer_style.h"
#include "layers/messages/own_style.h"
#include "layers/window_messages.h"

namespace ZEMO::UI {

bool ZEMOWindow::LayerStyle::externalScript(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (const auto payload = Core::takePostedText(m.lParam)) layer.onExternalScript(*payload);
    return false;
}

bool ZEMOWindow::LayerStyle::externalText(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (const auto text = Core::takePostedText(m.lParam)) layer.onExternalText(*text);
    return false;
}

bool ZEMOWindow::LayerStyle::remoteMouseMove(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onMouseMove(m.x(), m.y(), mouseModifiers(m.wParam));
    return false;
}

bool ZEMOWindow::LayerStyle::remoteWheel(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onMouseWheel(m.wParam, m.x(), m.y(), false, true);
    return false;
}

bool ZEMOWindow::LayerStyle::remotePress(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    // Tested where the message points: the system's cursor is somewhere else.
    IXbtn* button = layer.closeButtonIfShown();
    if (button && button->hitTest(POINT{m.x(), m.y()}, m.client())) {
        button->click();
        return true;
    }
    layer.onMouseButton(kLeftButton, false, m.x(), m.y());
    return layer.frameConsumerActive;
}

bool ZEMOWindow::LayerStyle::imeFocus(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    layer.onImeFocusChange(m.wParam != 0);
    return true;
}

bool ZEMOWindow::LayerStyle::imeBounds(ZEMOWindow& layer, LRESULT*, const WindowMessage&) {
    layer.onImeBoundsChanged();
    return true;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::externalScript(ZEMOWindow& layer, const WindowMessage& m) {
    if (const auto payload = Core::takePostedText(m.lParam)) layer.onExternalScript(*payload);
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeFocus(ZEMOWindow& layer, const WindowMessage& m) {
    layer.onImeFocusChange(m.wParam != 0);
    return 0;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::imeBounds(ZEMOWindow& layer, const WindowMessage&) {
    layer.onImeBoundsChanged();
    return 0;
}

}  // namespace ZEMO::UI
