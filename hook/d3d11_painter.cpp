#include "d3d11_painter.h"

#include <utility>

#include "log.h"
#include "page_shaders.h"

namespace ZEMO::GraphicsHook {

Com<ChainPainter> D3D11Painter::make(IDXGISwapChain* chain) {
    Com<ChainPainter> painter;
    if (auto device = deviceOf<ID3D11Device1>(chain)) *painter.put() = new D3D11Painter(std::move(device));
    return painter;
}

D3D11Painter::D3D11Painter(Com<ID3D11Device1> chainDevice) : device(std::move(chainDevice)) {
    device->GetImmediateContext1(context.put());
    isUsable = prepare();
    if (!isUsable) logLine("this Direct3D 11 device can't draw a page");
}

bool D3D11Painter::prepare() {
    return device->GetFeatureLevel() >= D3D_FEATURE_LEVEL_10_0 && makeState() && makeShaders() && makeFixedParts() &&
           makeBlend(D3D11_BLEND_ONE, premultiplied) && makeBlend(D3D11_BLEND_SRC_ALPHA, straight) &&
           makeSampler(D3D11_FILTER_MIN_MAG_MIP_POINT, nearest) && makeSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, linear);
}

bool D3D11Painter::makeState() {
    const bool isSingleThreaded = (device->GetCreationFlags() & D3D11_CREATE_DEVICE_SINGLETHREADED) != 0;
    const D3D_FEATURE_LEVEL level = device->GetFeatureLevel();
    return SUCCEEDED(
        device->CreateDeviceContextState(isSingleThreaded ? D3D11_1_CREATE_DEVICE_CONTEXT_STATE_SINGLETHREADED : 0,
                                         &level, 1, D3D11_SDK_VERSION, __uuidof(ID3D11Device1), nullptr, state.put()));
}

bool D3D11Painter::makeShaders() {
    const PageShaders code = compilePageShaders("vs_4_0", "ps_4_0");
    return code &&
           SUCCEEDED(device->CreateVertexShader(code.vertex->GetBufferPointer(), code.vertex->GetBufferSize(), nullptr,
                                                vertexShader.put())) &&
           SUCCEEDED(device->CreatePixelShader(code.pixel->GetBufferPointer(), code.pixel->GetBufferSize(), nullptr,
                                               pixelShader.put()));
}

bool D3D11Painter::makeFixedParts() {
    D3D11_BUFFER_DESC edges{};
    edges.ByteWidth = sizeof(Place);
    edges.BindFlags = D3D11_BIND_CONSTANT_BUFFER;
    D3D11_RASTERIZER_DESC filled{};
    filled.FillMode = D3D11_FILL_SOLID;
    filled.CullMode = D3D11_CULL_NONE;
    filled.DepthClipEnable = TRUE;
    D3D11_DEPTH_STENCIL_DESC depth{};
    depth.DepthFunc = D3D11_COMPARISON_ALWAYS;
    depth.FrontFace =
        depth.BackFace = {D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP, D3D11_STENCIL_OP_KEEP, D3D11_COMPARISON_ALWAYS};
    return SUCCEEDED(device->CreateBuffer(&edges, nullptr, place.put())) &&
           SUCCEEDED(device->CreateRasterizerState(&filled, rasterizer.put())) &&
           SUCCEEDED(device->CreateDepthStencilState(&depth, noDepth.put()));
}

bool D3D11Painter::makeBlend(D3D11_BLEND source, Com<ID3D11BlendState>& blend) {
    D3D11_BLEND_DESC description{};
    description.RenderTarget[0] = {TRUE,
                                   source,
                                   D3D11_BLEND_INV_SRC_ALPHA,
                                   D3D11_BLEND_OP_ADD,
                                   D3D11_BLEND_ONE,
                                   D3D11_BLEND_INV_SRC_ALPHA,
                                   D3D11_BLEND_OP_ADD,
                                   D3D11_COLOR_WRITE_ENABLE_ALL};
    return SUCCEEDED(device->CreateBlendState(&description, blend.put()));
}

bool D3D11Painter::makeSampler(D3D11_FILTER filter, Com<ID3D11SamplerState>& sampler) {
    D3D11_SAMPLER_DESC description{};
    description.Filter = filter;
    description.AddressU = description.AddressV = description.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.ComparisonFunc = D3D11_COMPARISON_NEVER;
    description.MaxLOD = D3D11_FLOAT32_MAX;
    return SUCCEEDED(device->CreateSamplerState(&description, sampler.put()));
}

void D3D11Painter::paint(IDXGISwapChain* chain, HWND window, PagePicture::Content& content) {
    Com<ID3D11Texture2D> buffer;
    if (FAILED(chain->GetBuffer(0, __uuidof(ID3D11Texture2D), buffer.putVoid()))) return;
    D3D11_TEXTURE2D_DESC description{};
    buffer->GetDesc(&description);
    const Com<ID3D11RenderTargetView> target = targetOf(buffer.get(), description.Format);
    if (!target) return;
    frame = {static_cast<int>(description.Width), static_cast<int>(description.Height)};
    Com<ID3DDeviceContextState> game;
    context->SwapDeviceContextState(state.get(), game.put());
    if (!isStateBound) bindFixedParts();
    bindTarget(target.get());
    drawing.draw(*this, content, window, frame);
    bindTarget(nullptr);
    context->SwapDeviceContextState(game.get(), nullptr);
}

// They stay in the state object from one frame to the next.
void D3D11Painter::bindFixedParts() {
    isStateBound = true;
    context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    context->VSSetShader(vertexShader.get(), nullptr, 0);
    context->VSSetConstantBuffers(0, 1, place.list());
    context->PSSetShader(pixelShader.get(), nullptr, 0);
    context->RSSetState(rasterizer.get());
    context->OMSetDepthStencilState(noDepth.get(), 0);
}

void D3D11Painter::bindTarget(ID3D11RenderTargetView* target) {
    context->OMSetRenderTargets(1, &target, nullptr);
    const D3D11_VIEWPORT viewport{0, 0, static_cast<float>(frame.width), static_cast<float>(frame.height), 0, 1};
    context->RSSetViewports(1, &viewport);
}

Com<ID3D11RenderTargetView> D3D11Painter::targetOf(ID3D11Texture2D* buffer, DXGI_FORMAT format) {
    Com<ID3D11RenderTargetView> target;
    D3D11_TEXTURE2D_DESC texture{};
    buffer->GetDesc(&texture);
    D3D11_RENDER_TARGET_VIEW_DESC wanted{};
    wanted.Format = withoutConversion(format);
    wanted.ViewDimension =
        texture.SampleDesc.Count > 1 ? D3D11_RTV_DIMENSION_TEXTURE2DMS : D3D11_RTV_DIMENSION_TEXTURE2D;
    if (FAILED(device->CreateRenderTargetView(buffer, &wanted, target.put())))
        device->CreateRenderTargetView(buffer, nullptr, target.put());
    return target;
}

void D3D11Painter::upload(Layer layer, const Plane& plane, const Box& changed) {
    Texture& texture = textures[static_cast<size_t>(layer)];
    if (texture.width != plane.getWidth() || texture.height != plane.getHeight()) remake(texture, plane);
    if (!texture.view) return;
    const D3D11_BOX box{static_cast<UINT>(changed.left),  static_cast<UINT>(changed.top),    0,
                        static_cast<UINT>(changed.right), static_cast<UINT>(changed.bottom), 1};
    context->UpdateSubresource(texture.texture.get(), 0, &box, plane.row(changed.top) + changed.left,
                               static_cast<UINT>(plane.getWidth()) * 4, 0);
}

void D3D11Painter::remake(Texture& texture, const Plane& plane) {
    texture = {};
    D3D11_TEXTURE2D_DESC wanted{};
    wanted.Width = static_cast<UINT>(plane.getWidth());
    wanted.Height = static_cast<UINT>(plane.getHeight());
    wanted.MipLevels = wanted.ArraySize = wanted.SampleDesc.Count = 1;
    wanted.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    wanted.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    if (FAILED(device->CreateTexture2D(&wanted, nullptr, texture.texture.put()))) return;
    if (FAILED(device->CreateShaderResourceView(texture.texture.get(), nullptr, texture.view.put()))) return;
    texture.width = plane.getWidth();
    texture.height = plane.getHeight();
}

void D3D11Painter::draw(Layer layer, const Place& where) {
    const Texture& texture = textures[static_cast<size_t>(layer)];
    if (!texture.view) return;
    const float toX = 2.0f / static_cast<float>(frame.width);
    const float toY = 2.0f / static_cast<float>(frame.height);
    const Place edges{where.left * toX - 1, 1 - where.top * toY, where.right * toX - 1, 1 - where.bottom * toY};
    const bool isOneToOne = where.right - where.left == static_cast<float>(texture.width) &&
                            where.bottom - where.top == static_cast<float>(texture.height);
    context->UpdateSubresource(place.get(), 0, nullptr, &edges, 0, 0);
    context->PSSetShaderResources(0, 1, texture.view.list());
    context->PSSetSamplers(0, 1, (isOneToOne ? nearest : linear).list());
    context->OMSetBlendState((layer == Layer::CloseButton ? straight : premultiplied).get(), nullptr, 0xFFFFFFFF);
    context->Draw(4, 0);
}

}  // namespace ZEMO::GraphicsHook
