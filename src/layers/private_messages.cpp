#include "layers/input_modifiers.h"
#include "layers/posted_text.h"
#include "layers/window_message.h"
#include "layers/window_messages.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

bool ZEMOWindow::onLayerPrivate(const WindowMessage& m) {
    switch (m.message) {
        case kMessageExternalScript:
            if (const auto payload = takePostedText(m.lParam)) onExternalScript(*payload);
            return false;
        case kMessageExternalText:
            if (const auto text = takePostedText(m.lParam)) onExternalText(*text);
            return false;
        case kMessageRemoteMouseMove:
            onMouseMove(m.x(), m.y(), mouseModifiers(m.wParam));
            return false;
        case kMessageRemoteWheel:
            onMouseWheel(m.wParam, m.x(), m.y(), false, true);
            return false;
        case kMessageRemotePress: {
            // Tested where the message points: the system's cursor is somewhere else.
            IXbtn* button = closeButtonIfShown();
            if (button && button->hitTest(POINT{m.x(), m.y()}, m.client())) {
                button->click();
                return true;
            }
            onMouseButton(0, false, m.x(), m.y());
            return frameConsumerActive;
        }
        case kMessageImeFocus:
            onImeFocusChange(m.wParam != 0);
            return true;
        default:  // kMessageImeBounds
            onImeBoundsChanged();
            return true;
    }
}

ZEMOWindow::OwnResult ZEMOWindow::onOwnPrivate(const WindowMessage& m) {
    switch (m.message) {
        case kMessageExternalScript:
            if (const auto payload = takePostedText(m.lParam)) onExternalScript(*payload);
            break;
        case kMessageImeFocus:
            onImeFocusChange(m.wParam != 0);
            break;
        default:  // kMessageImeBounds
            onImeBoundsChanged();
            break;
    }
    return 0;
}

}  // namespace ZEMO::UI
