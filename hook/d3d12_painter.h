#pragma once

#include <windows.h>

#include <d3d12.h>
#include <dxgi1_4.h>

#include <array>

#include "chain_painter.h"
#include "d3d12_pipelines.h"
#include "d3d12_slots.h"
#include "page_drawing.h"

namespace ZEMO::GraphicsHook {

/// Draws the page into the back buffers of one Direct3D 12 swap chain, with a command list of its own that the game's
/// queue executes after the game's lists. State belongs to a list here, so nothing of the game's is touched.
class D3D12Painter final : public ChainPainter, private Canvas {
public:
    static Com<ChainPainter> make(IDXGISwapChain* chain);

    bool isReady() override;
    void paint(IDXGISwapChain* chain, HWND window, PagePicture::Content& content) override;

private:
    struct Texture {
        Com<ID3D12Resource> resource;
        int width = 0, height = 0;
    };

    explicit D3D12Painter(Com<ID3D12Device> device);
    ~D3D12Painter() override = default;
    bool prepare();
    bool makeHeap(D3D12_DESCRIPTOR_HEAP_TYPE type, UINT count, Com<ID3D12DescriptorHeap>& heap);
    void makeSampler(D3D12_FILTER filter, UINT place);
    bool record(ID3D12Resource* buffer, HWND window, PagePicture::Content& content);
    void bindFixedParts();
    void bindTarget(ID3D12Resource* buffer, DXGI_FORMAT format);
    void upload(Layer layer, const Plane& plane, const Box& changed) override;
    void draw(Layer layer, const Place& where) override;
    void remake(Texture& texture, const Plane& plane);
    void copy(ID3D12Resource* texture, ID3D12Resource* from, const Box& changed, UINT rowBytes);
    void bindPixels(Layer layer, ID3D12Resource* texture);
    void change(ID3D12Resource* resource, D3D12_RESOURCE_STATES from, D3D12_RESOURCE_STATES to);

    bool isUsable = false;
    Com<ID3D12Device> device;
    Com<ID3D12CommandQueue> queue;  ///< the game's; null until it is found
    D3D12Pipelines pipelines;
    Com<ID3D12DescriptorHeap> targets, views, samplers;
    std::array<Texture, kLayers> textures;
    D3D12Slots slots;                           ///< waits for its frames, so it goes before what they use
    ID3D12GraphicsCommandList* list = nullptr;  ///< of the frame that is recorded
    PageDrawing drawing;
    FrameSize frame;
};

}  // namespace ZEMO::GraphicsHook
