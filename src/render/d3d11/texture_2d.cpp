#include "render/d3d11/texture_2d.h"

#include <algorithm>
#include <cstring>

namespace ZEMO::UI::D3D11 {
namespace {

void copyRows(const D3D11_MAPPED_SUBRESOURCE& target, const void* pixels, uint32_t pitch, uint32_t rows) {
    if (target.RowPitch == pitch) {
        std::memcpy(target.pData, pixels, size_t{pitch} * rows);
        return;
    }
    auto* to = static_cast<uint8_t*>(target.pData);
    const auto* from = static_cast<const uint8_t*>(pixels);
    const size_t bytes = std::min(target.RowPitch, pitch);
    for (uint32_t row = 0; row < rows; ++row, to += target.RowPitch, from += pitch) std::memcpy(to, from, bytes);
}

}  // namespace

Texture2D::Texture2D(std::shared_ptr<ID3D11Texture2D> made, std::shared_ptr<ID3D11ShaderResourceView> view)
    : texture(std::move(made)), shaderResourceView(std::move(view)) {
    if (const auto resource = queryCom<IDXGIResource>(texture.get())) {
        if (FAILED(resource->GetSharedHandle(&sharedHandle))) sharedHandle = nullptr;
    }
    keyedMutex = queryCom<IDXGIKeyedMutex>(texture.get());
}

void Texture2D::bind(const SharedContext& current) {
    context = current;
    ID3D11ShaderResourceView* const views[] = {shaderResourceView.get()};
    if (shaderResourceView) context->context->PSSetShaderResources(0, 1, views);
}

void Texture2D::copyFrom(const void* pixels, uint32_t pitch, uint32_t rows) {
    if (!pixels || !context) return;
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (FAILED(context->context->Map(texture.get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped))) return;
    if (rows == describe().Height) copyRows(mapped, pixels, pitch, rows);
    context->context->Unmap(texture.get(), 0);
}

D3D11_TEXTURE2D_DESC Texture2D::describe() const {
    D3D11_TEXTURE2D_DESC description{};
    texture->GetDesc(&description);
    return description;
}

}  // namespace ZEMO::UI::D3D11
