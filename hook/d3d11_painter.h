#pragma once

#include <windows.h>

#include <d3d11_1.h>

#include <array>

#include "chain_painter.h"
#include "page_drawing.h"

namespace ZEMO::GraphicsHook {

/// Draws the page into the back buffer of one swap chain, with a device state object of its own that is exchanged for
/// the game's as a whole and back: nothing of the game's state has to be known or copied.
class D3D11Painter final : public ChainPainter, private Canvas {
public:
    static Com<ChainPainter> make(IDXGISwapChain* chain);

    bool isReady() override { return isUsable; }
    void paint(IDXGISwapChain* chain, HWND window, PagePicture::Content& content) override;

private:
    struct Texture {
        Com<ID3D11Texture2D> texture;
        Com<ID3D11ShaderResourceView> view;
        int width = 0, height = 0;
    };

    explicit D3D11Painter(Com<ID3D11Device1> device);
    bool prepare();
    bool makeState();
    bool makeShaders();
    bool makeFixedParts();
    bool makeBlend(D3D11_BLEND source, Com<ID3D11BlendState>& blend);
    bool makeSampler(D3D11_FILTER filter, Com<ID3D11SamplerState>& sampler);
    void bindFixedParts();
    void bindTarget(ID3D11RenderTargetView* target);
    Com<ID3D11RenderTargetView> targetOf(ID3D11Texture2D* buffer, DXGI_FORMAT format);
    void upload(Layer layer, const Plane& plane, const Box& changed) override;
    void draw(Layer layer, const Place& where) override;
    void remake(Texture& texture, const Plane& plane);

    bool isUsable = false;
    Com<ID3D11Device1> device;
    Com<ID3D11DeviceContext1> context;
    Com<ID3DDeviceContextState> state;
    bool isStateBound = false;  ///< the fixed parts stand in the state object
    Com<ID3D11VertexShader> vertexShader;
    Com<ID3D11PixelShader> pixelShader;
    Com<ID3D11Buffer> place;
    Com<ID3D11BlendState> premultiplied, straight;
    Com<ID3D11SamplerState> nearest, linear;
    Com<ID3D11RasterizerState> rasterizer;
    Com<ID3D11DepthStencilState> noDepth;
    PageDrawing drawing;
    std::array<Texture, kLayers> textures;
    FrameSize frame;
};

}  // namespace ZEMO::GraphicsHook
