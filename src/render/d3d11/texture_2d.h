#pragma once

#include <cstdint>

#include "render/d3d11/context.h"

namespace ZEMO::UI::D3D11 {

/// A texture that shaders read. Made on any thread, used on the render thread.
class Texture2D {
public:
    Texture2D(std::shared_ptr<ID3D11Texture2D> made, std::shared_ptr<ID3D11ShaderResourceView> view);

    void bind(const SharedContext& current);
    /// Replaces the whole picture of a texture that was made without one: `rows` rows, which must be all, `pitch` bytes
    /// from one to the next. On the context of the last bind.
    void copyFrom(const void* pixels, uint32_t pitch, uint32_t rows);
    int getWidth() const { return static_cast<int>(describe().Width); }
    int getHeight() const { return static_cast<int>(describe().Height); }

private:
    D3D11_TEXTURE2D_DESC describe() const;

    HANDLE sharedHandle = nullptr;  ///< not a handle to close; null unless the texture was made to be shared
    std::shared_ptr<ID3D11Texture2D> texture;
    std::shared_ptr<ID3D11ShaderResourceView> shaderResourceView;
    std::shared_ptr<IDXGIKeyedMutex> keyedMutex;
    SharedContext context;
};

}  // namespace ZEMO::UI::D3D11
