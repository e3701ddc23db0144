#include <vector>

#include "hook/hooked_game.h"

// The reference module in a Direct3D 11 game.
namespace ZEMO::Test {
namespace {

using GraphicsHook::Com;

/// What a game may have bound, by pointer and value; references that the getters add are given back.
std::vector<uint64_t> stateOf(ID3D11DeviceContext* context) {
    std::vector<uint64_t> all;
    const auto add = [&](IUnknown* object) {
        all.push_back(reinterpret_cast<uint64_t>(object));
        if (object) object->Release();
    };
    const auto addBytes = [&](const void* data, size_t bytes) {
        const auto* from = static_cast<const unsigned char*>(data);
        all.insert(all.end(), from, from + bytes);
    };
    ID3D11VertexShader* vertex = nullptr;
    context->VSGetShader(&vertex, nullptr, nullptr), add(vertex);
    ID3D11PixelShader* pixel = nullptr;
    context->PSGetShader(&pixel, nullptr, nullptr), add(pixel);
    ID3D11Buffer* buffers[2]{};
    context->VSGetConstantBuffers(0, 2, buffers), add(buffers[0]), add(buffers[1]);
    ID3D11ShaderResourceView* views[2]{};
    context->PSGetShaderResources(0, 2, views), add(views[0]), add(views[1]);
    ID3D11SamplerState* samplers[2]{};
    context->PSGetSamplers(0, 2, samplers), add(samplers[0]), add(samplers[1]);
    ID3D11Buffer* vertices = nullptr;
    UINT stride = 0, offset = 0;
    context->IAGetVertexBuffers(0, 1, &vertices, &stride, &offset), add(vertices);
    ID3D11Buffer* indices = nullptr;
    DXGI_FORMAT format{};
    UINT indexOffset = 0;
    context->IAGetIndexBuffer(&indices, &format, &indexOffset), add(indices);
    D3D11_PRIMITIVE_TOPOLOGY topology{};
    context->IAGetPrimitiveTopology(&topology);
    all.insert(all.end(),
               {stride, offset, static_cast<uint64_t>(format), indexOffset, static_cast<uint64_t>(topology)});
    ID3D11RasterizerState* rasterizer = nullptr;
    context->RSGetState(&rasterizer), add(rasterizer);
    D3D11_VIEWPORT viewports[3]{};
    D3D11_RECT scissors[3]{};
    UINT viewportCount = 3, scissorCount = 3;
    context->RSGetViewports(&viewportCount, viewports);
    context->RSGetScissorRects(&scissorCount, scissors);
    all.insert(all.end(), {viewportCount, scissorCount});
    addBytes(viewports, viewportCount * sizeof *viewports);
    addBytes(scissors, scissorCount * sizeof *scissors);
    ID3D11BlendState* blend = nullptr;
    float factor[4]{};
    UINT mask = 0;
    context->OMGetBlendState(&blend, factor, &mask), add(blend), addBytes(factor, sizeof factor);
    ID3D11DepthStencilState* depth = nullptr;
    UINT reference = 0;
    context->OMGetDepthStencilState(&depth, &reference), add(depth);
    ID3D11RenderTargetView* targets[2]{};
    ID3D11DepthStencilView* depthView = nullptr;
    context->OMGetRenderTargets(2, targets, &depthView), add(targets[0]), add(targets[1]), add(depthView);
    all.insert(all.end(), {mask, reference});
    return all;
}

/// Binds something at every place that stateOf looks at, as far as it goes without shaders of the game's own.
class UnusualState {
public:
    UnusualState(ID3D11Device* device, ID3D11DeviceContext* context) {
        D3D11_TEXTURE2D_DESC texture{64,
                                     64,
                                     1,
                                     1,
                                     DXGI_FORMAT_R8G8B8A8_UNORM,
                                     {1, 0},
                                     D3D11_USAGE_DEFAULT,
                                     D3D11_BIND_RENDER_TARGET | D3D11_BIND_SHADER_RESOURCE,
                                     0,
                                     0};
        device->CreateTexture2D(&texture, nullptr, target.put());
        device->CreateTexture2D(&texture, nullptr, source.put());
        device->CreateRenderTargetView(target.get(), nullptr, targetView.put());
        device->CreateShaderResourceView(source.get(), nullptr, sourceView.put());
        D3D11_BUFFER_DESC bytes{256, D3D11_USAGE_DEFAULT, D3D11_BIND_CONSTANT_BUFFER, 0, 0, 0};
        device->CreateBuffer(&bytes, nullptr, constants.put());
        bytes.BindFlags = D3D11_BIND_VERTEX_BUFFER | D3D11_BIND_INDEX_BUFFER;
        device->CreateBuffer(&bytes, nullptr, vertices.put());
        D3D11_SAMPLER_DESC sampler{};
        sampler.Filter = D3D11_FILTER_ANISOTROPIC;
        sampler.MaxAnisotropy = 3;
        sampler.AddressU = sampler.AddressV = sampler.AddressW = D3D11_TEXTURE_ADDRESS_MIRROR;
        sampler.ComparisonFunc = D3D11_COMPARISON_NEVER;
        device->CreateSamplerState(&sampler, samplerState.put());
        D3D11_RASTERIZER_DESC raster{D3D11_FILL_WIREFRAME, D3D11_CULL_FRONT, TRUE, 3, 0, 1, FALSE, TRUE, FALSE, FALSE};
        device->CreateRasterizerState(&raster, rasterizer.put());
        D3D11_BLEND_DESC blend{};
        blend.RenderTarget[0] = {TRUE,
                                 D3D11_BLEND_ZERO,
                                 D3D11_BLEND_ZERO,
                                 D3D11_BLEND_OP_MIN,
                                 D3D11_BLEND_ZERO,
                                 D3D11_BLEND_ONE,
                                 D3D11_BLEND_OP_MAX,
                                 D3D11_COLOR_WRITE_ENABLE_GREEN};
        device->CreateBlendState(&blend, blendState.put());
        D3D11_DEPTH_STENCIL_DESC depth{};
        depth.DepthEnable = TRUE;
        depth.DepthFunc = D3D11_COMPARISON_NEVER;
        depth.FrontFace = depth.BackFace = {D3D11_STENCIL_OP_INCR, D3D11_STENCIL_OP_DECR, D3D11_STENCIL_OP_INVERT,
                                            D3D11_COMPARISON_LESS};
        device->CreateDepthStencilState(&depth, depthState.put());
        bind(context);
    }

private:
    void bind(ID3D11DeviceContext* context) const {
        const UINT stride = 12, offset = 4;
        context->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_LINELIST_ADJ);
        context->IASetVertexBuffers(0, 1, vertices.list(), &stride, &offset);
        context->IASetIndexBuffer(vertices.get(), DXGI_FORMAT_R16_UINT, 8);
        context->VSSetConstantBuffers(0, 1, constants.list());
        context->VSSetConstantBuffers(1, 1, constants.list());
        context->PSSetShaderResources(0, 1, sourceView.list());
        context->PSSetSamplers(1, 1, samplerState.list());
        context->RSSetState(rasterizer.get());
        const D3D11_VIEWPORT viewports[] = {{1, 2, 30, 40, 0.1f, 0.9f}, {5, 6, 7, 8, 0, 0.5f}};
        context->RSSetViewports(2, viewports);
        const D3D11_RECT scissors[] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
        context->RSSetScissorRects(2, scissors);
        const float factor[] = {0.1f, 0.2f, 0.3f, 0.4f};
        context->OMSetBlendState(blendState.get(), factor, 0x0F0F);
        context->OMSetDepthStencilState(depthState.get(), 5);
        context->OMSetRenderTargets(1, targetView.list(), nullptr);
    }

    Com<ID3D11Texture2D> target, source;
    Com<ID3D11RenderTargetView> targetView;
    Com<ID3D11ShaderResourceView> sourceView;
    Com<ID3D11Buffer> constants, vertices;
    Com<ID3D11SamplerState> samplerState;
    Com<ID3D11RasterizerState> rasterizer;
    Com<ID3D11BlendState> blendState;
    Com<ID3D11DepthStencilState> depthState;
};

}  // namespace

using D3D11Hook = HookedGame<D3D11Game>;

TEST_F(D3D11Hook, FrameSmallerThanTheWindow_PageIsStretchedWithIt) {
    ASSERT_EQ(scene->resize(160, 100), S_OK);
    auto view = show(quarteredPage());
    ASSERT_TRUE(playUntil("the page", [&] { return frame.at(5, 5) == 0x112233 && frame.at(5, 95) == 0x00C040; }));
    EXPECT_EQ(frame.at(100, 20), 0xFF0080u);
    EXPECT_LE(distance(frame.at(150, 95), 0x785A55), 2);
}

TEST_F(D3D11Hook, UnusualStateInTheGame_SameAfterTheHook) {
    auto view = show(solidPage("#112233"), true);
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    const UnusualState unusual(scene->getDevice(), scene->getContext());
    const std::vector<uint64_t> before = stateOf(scene->getContext());
    for (int i = 0; i < 3; ++i) ASSERT_EQ(scene->swap(), S_OK);
    EXPECT_EQ(stateOf(scene->getContext()), before);
    EXPECT_TRUE(cornerIs(0x112233));
    EXPECT_GT(before.size(), 60u);
}

}  // namespace ZEMO::Test
