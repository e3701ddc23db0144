#include "layers/messages/layer_style.h"
#include "layers/messages/own_style.h"
#include "layers/window_edge.h"
#include "layers/window_messages.h"

namespace ZEMO::UI {

namespace {
/// The system shows its sizing cursors there.
constexpr int kEdgePx = 10;
}  // namespace

bool ZEMOWindow::LayerStyle::setCursor(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (layer.windowStyle == WindowStyle::Layer && layer.customCursor && !nearWindowEdge(layer.window, kEdgePx)) {
        SetCursor(layer.customCursor);
        return true;
    }
    if (layer.isOnCloseButton(m)) return true;  // the button sets its cursor itself, on mouse move
    if (!layer.frameConsumerActive) return false;
    if (!PtInRect(&m.client(), m.cursor())) return false;
    if (m.wParam == kPageCursorMarker) SetCursor(reinterpret_cast<HCURSOR>(m.lParam));
    return true;  // the game cannot put its own cursor over a page that it draws
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::setCursor(ZEMOWindow& layer, const WindowMessage& m) {
    if (layer.windowStyle == WindowStyle::Window && layer.customCursor && !nearWindowEdge(layer.window, kEdgePx)) {
        SetCursor(layer.customCursor);
        return 1;
    }
    if (layer.isOnCloseButton(m)) return 1;
    return {};
}

}  // namespace ZEMO::UI
