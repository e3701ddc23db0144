#include "layers/window_edge.h"
#include "layers/window_message.h"
#include "layers/window_messages.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

namespace {
/// The system shows its sizing cursors there.
constexpr int kEdgePx = 10;
}  // namespace

bool ZEMOWindow::onLayerSetCursor(const WindowMessage& m) {
    if (windowStyle == WindowStyle::Layer && customCursor && !nearWindowEdge(window, kEdgePx)) {
        SetCursor(customCursor);
        return true;
    }
    if (isOnCloseButton(m)) return true;  // the button sets its cursor itself, on mouse move
    if (!frameConsumerActive) return false;
    if (!PtInRect(&m.client(), m.cursor())) return false;
    if (m.wParam == kPageCursorMarker) SetCursor(reinterpret_cast<HCURSOR>(m.lParam));
    return true;  // the game cannot put its own cursor over a page that it draws
}

ZEMOWindow::OwnResult ZEMOWindow::onOwnSetCursor(const WindowMessage& m) {
    if (windowStyle == WindowStyle::Window && customCursor && !nearWindowEdge(window, kEdgePx)) {
        SetCursor(customCursor);
        return 1;
    }
    if (isOnCloseButton(m)) return 1;
    return {};
}

}  // namespace ZEMO::UI
