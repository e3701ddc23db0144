#include "layers/window_edge.h"

#include <cstdlib>

namespace ZEMO::UI {

bool nearWindowEdge(HWND window, int distancePx) {
    POINT cursor{};
    RECT frame{};
    GetCursorPos(&cursor);
    GetWindowRect(window, &frame);
    const auto isNear = [distancePx](LONG a, LONG b) { return std::labs(a - b) <= distancePx; };
    return isNear(cursor.x, frame.left) || isNear(cursor.x, frame.right) || isNear(cursor.y, frame.top) ||
           isNear(cursor.y, frame.bottom);
}

}  // namespace ZEMO::UI
