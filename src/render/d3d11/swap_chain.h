#pragma once

#include "render/d3d11/context.h"

namespace ZEMO::UI::D3D11 {

/// What a window shows, and the target that draws into it. Render thread.
class SwapChain {
public:
    SwapChain(SharedContext current, std::shared_ptr<IDXGISwapChain> chain,
              std::shared_ptr<ID3D11RenderTargetView> target, std::shared_ptr<ID3D11SamplerState> samplerState)
        : sampler(std::move(samplerState)),
          swapChain(std::move(chain)),
          renderTargetView(std::move(target)),
          context(std::move(current)) {}

    void bind(const SharedContext& current);
    void clear(float red, float green, float blue, float alpha);
    void present(UINT syncInterval);
    /// Device pixels; nothing with a side below 1. After a failure there is no target until the next resize.
    void resize(int width, int height);
    void setBlendState(const std::shared_ptr<ID3D11BlendState>& state);

private:
    /// The new target of resized buffers; empty after a failure.
    std::shared_ptr<ID3D11RenderTargetView> resizeBuffers(int width, int height);

    std::shared_ptr<ID3D11SamplerState> sampler;
    std::shared_ptr<ID3D11BlendState> blendState;  ///< none of its own: the drawer sets them
    std::shared_ptr<IDXGISwapChain> swapChain;
    std::shared_ptr<ID3D11RenderTargetView> renderTargetView;
    SharedContext context;
};

/// From the next draw on: one target without depth, and a viewport of its size.
void setTarget(const Context& context, ID3D11RenderTargetView* target);
void setViewport(const Context& context, int width, int height);
/// The swap chain's one buffer; empty after a failure.
std::shared_ptr<ID3D11Texture2D> backBufferOf(IDXGISwapChain& chain);

}  // namespace ZEMO::UI::D3D11
