#pragma once

#include "render/d3d11/device.h"

namespace ZEMO::UI::D3D11 {

/// Draws `texture` on `quad` with `effect`, which is made the first time. What is bound stays bound. Render thread.
inline void drawTextured(Device& device, std::shared_ptr<Effect>& effect, Geometry& quad, Texture2D& texture,
                         const SharedContext& context) {
    if (!effect) effect = device.createDefaultEffect();
    if (!effect) return;
    quad.bind(context);
    effect->bind(context);
    texture.bind(context);
    if (effect->canDraw()) quad.draw();
}

}  // namespace ZEMO::UI::D3D11
