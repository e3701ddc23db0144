#include "render/d3d11/swap_chain.h"

#include "core/log.h"

namespace ZEMO::UI::D3D11 {

void setTarget(const Context& context, ID3D11RenderTargetView* target) {
    context.context->OMSetRenderTargets(1, &target, nullptr);
}

void setViewport(const Context& context, int width, int height) {
    const D3D11_VIEWPORT viewport{0, 0, static_cast<float>(width), static_cast<float>(height), 0, 1};
    context.context->RSSetViewports(1, &viewport);
}

std::shared_ptr<ID3D11Texture2D> backBufferOf(IDXGISwapChain& chain) {
    ID3D11Texture2D* buffer = nullptr;
    if (FAILED(chain.GetBuffer(0, IID_PPV_ARGS(&buffer)))) return {};
    return Core::adoptCom(buffer);
}

void SwapChain::bind(const SharedContext& current) {
    context = current;
    setTarget(*context, renderTargetView.get());
    ID3D11SamplerState* const samplers[] = {sampler.get()};
    if (sampler) context->context->PSSetSamplers(0, 1, samplers);
}

void SwapChain::clear(float red, float green, float blue, float alpha) {
    const float color[] = {red, green, blue, alpha};
    if (renderTargetView) context->context->ClearRenderTargetView(renderTargetView.get(), color);
}

void SwapChain::present(UINT syncInterval) { swapChain->Present(syncInterval, 0); }

void SwapChain::setBlendState(const std::shared_ptr<ID3D11BlendState>& state) {
    const float factor[4] = {};
    if (state) context->context->OMSetBlendState(state.get(), factor, 0xFFFFFFFF);
}

// The buffers can only be resized while nothing holds them: neither the context nor a view of ours.
void SwapChain::resize(int width, int height) {
    if (width < 1 || height < 1) return;
    context->context->OMSetRenderTargets(0, nullptr, nullptr);
    renderTargetView.reset();
    renderTargetView = resizeBuffers(width, height);
    if (!renderTargetView) return;
    setTarget(*context, renderTargetView.get());
    setViewport(*context, width, height);
}

std::shared_ptr<ID3D11RenderTargetView> SwapChain::resizeBuffers(int width, int height) {
    DXGI_SWAP_CHAIN_DESC description{};
    swapChain->GetDesc(&description);
    const HRESULT resized = swapChain->ResizeBuffers(0, static_cast<UINT>(width), static_cast<UINT>(height),
                                                     description.BufferDesc.Format, description.Flags);
    const std::shared_ptr<ID3D11Texture2D> buffer = SUCCEEDED(resized) ? backBufferOf(*swapChain) : nullptr;
    if (!buffer) {
        Core::logDebugA("failed to resize swapchain (%dx%d)\n", width, height);
        return {};
    }
    ID3D11Device* owner = nullptr;
    context->context->GetDevice(&owner);
    const auto device = Core::adoptCom(owner);
    D3D11_RENDER_TARGET_VIEW_DESC view{};
    view.Format = description.BufferDesc.Format;
    view.ViewDimension = D3D11_RTV_DIMENSION_TEXTURE2D;
    ID3D11RenderTargetView* target = nullptr;
    if (!device || FAILED(device->CreateRenderTargetView(buffer.get(), &view, &target))) return {};
    return Core::adoptCom(target);
}

}  // namespace ZEMO::UI::D3D11
