#include "layers/deck/extra_window_rules.h"

namespace ZEMO::UI {
namespace {

// The system's message numbers, for builds without its headers.
constexpr uint32_t kActivate = 0x0006;
constexpr uint32_t kClose = 0x0010;
constexpr uint32_t kMouseMove = 0x0200;
constexpr uint32_t kLeftButtonDown = 0x0201;
constexpr uint32_t kLeftButtonUp = 0x0202;
constexpr uint32_t kRightButtonDown = 0x0204;
constexpr uint32_t kRightButtonUp = 0x0205;
constexpr uint32_t kMouseWheel = 0x020A;

}  // namespace

Rect extraButtonPlace(int32_t width, int32_t height) {
    return {width - kExtraButtonSizePx, height - kExtraButtonSizePx, kExtraButtonSizePx, kExtraButtonSizePx};
}

Rect extraViewPlace(int32_t width, int32_t height) { return {0, 0, width, height - kExtraButtonSizePx}; }

ViewMessageRoute extraViewMessageRoute(uint32_t message) {
    switch (message) {
        case kActivate:
        case kClose:
        case kMouseMove:
        case kLeftButtonDown:
        case kLeftButtonUp:
        case kMouseWheel:
            return ViewMessageRoute::ToParent;
        case kRightButtonDown:
        case kRightButtonUp:
            return ViewMessageRoute::Swallowed;
        default:
            return ViewMessageRoute::Default;
    }
}

}  // namespace ZEMO::UI
