#include "render/d3d11/popup_layer.h"

#include "render/d3d11/draw.h"

namespace ZEMO::UI::D3D11 {

void PopupLayer::place(float left, float top, float newWidth, float newHeight) {
    const std::lock_guard guard(placeLock);
    x = left;
    y = top;
    width = newWidth;
    height = newHeight;
    geometry.reset();
}

std::shared_ptr<Geometry> PopupLayer::currentGeometry() {
    const std::lock_guard guard(placeLock);
    if (!geometry) geometry = device->createQuad(x, y, width, height, false, true);
    return geometry;
}

bool PopupLayer::hasWidth() {
    const std::lock_guard guard(placeLock);
    return width > 0;
}

void PopupLayer::render(const SharedContext& context) {
    if (!hasWidth()) return;
    const std::shared_ptr<Texture2D> texture = source->swap(context);
    const std::shared_ptr<Geometry> quad = currentGeometry();
    if (quad && texture) drawTextured(*device, effect, *quad, *texture, context);
}

}  // namespace ZEMO::UI::D3D11
