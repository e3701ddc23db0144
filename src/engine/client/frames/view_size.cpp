#include "engine/client/frames/view_size.h"

#include <algorithm>

#include "render/display_scale.h"
#include "render/rendering_mode.h"

namespace ZEMO::UI {
namespace {

constexpr int kWiggleSteps = 10;

}  // namespace

void ViewSize::getViewRect(CefRect& rect) {
    if (noWindow) {
        RECT desktop{};
        GetWindowRect(GetDesktopWindow(), &desktop);
        rect.Set(0, 0, desktop.right - desktop.left, desktop.bottom - desktop.top);
        return;
    }
    RECT client{};
    if (!IsWindow(window) || !GetClientRect(window, &client)) {
        rect.Set(0, 0, 1, 1);
        return;
    }
    int width = std::max(1, deviceToLogical(client.right - client.left, scale));
    int height = std::max(1, deviceToLogical(client.bottom - client.top, scale));
    if (wiggleResize && getRenderingMode() == RenderingMode::D3D11) shrink(width, height);
    rect.Set(0, 0, width, height);
}

void ViewSize::shrink(int& width, int& height) {
    if (wiggleCount < 1) {
        wiggleResize = false;
        wiggleCount = kWiggleSteps;
        return;
    }
    if (width - wiggleCount > 0 && height - wiggleCount > 0) {
        width -= wiggleCount;
        height -= wiggleCount;
    }
    --wiggleCount;
}

bool ViewSize::getScreenInfo(const CefRect& view, CefScreenInfo& screenInfo) const {
    if (!IsWindow(window)) return false;
    screenInfo.device_scale_factor = scale;
    screenInfo.rect = view;
    screenInfo.available_rect = view;
    return true;
}

}  // namespace ZEMO::UI
