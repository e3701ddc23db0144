#include "render/d3d11/effect.h"

namespace ZEMO::UI::D3D11 {

void Effect::bind(const SharedContext& current) {
    context = current;
    context->context->IASetInputLayout(inputLayout.get());
    context->context->VSSetShader(vertexShader.get(), nullptr, 0);
    context->context->PSSetShader(pixelShader.get(), nullptr, 0);
}

}  // namespace ZEMO::UI::D3D11
