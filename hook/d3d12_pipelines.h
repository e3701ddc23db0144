#pragma once

#include <windows.h>

#include <d3d12.h>

#include "com.h"
#include "page_drawing.h"

namespace ZEMO::GraphicsHook {

struct PageShaders;

/// How a textured rectangle is drawn on a Direct3D 12 device: its parameters, and a pipeline for each way to blend,
/// which hang on the format of what is drawn into.
class D3D12Pipelines {
public:
    /// What the parameters of the root signature are.
    enum Parameter : UINT { kEdges, kPixels, kSampler };

    bool make(ID3D12Device* device);
    /// Frames of another format in flight are done: a game waits for them before its buffers get another one.
    bool useFormat(ID3D12Device* device, DXGI_FORMAT targetFormat);

    ID3D12RootSignature* signature() const { return rootSignature.get(); }
    ID3D12PipelineState* pipelineOf(Layer layer) const {
        return (layer == Layer::CloseButton ? straight : premultiplied).get();
    }

private:
    bool makePipeline(ID3D12Device* device, const PageShaders& code, D3D12_BLEND source,
                      Com<ID3D12PipelineState>& pipeline);

    Com<ID3D12RootSignature> rootSignature;
    Com<ID3D12PipelineState> premultiplied, straight;
    DXGI_FORMAT format = DXGI_FORMAT_UNKNOWN;
};

}  // namespace ZEMO::GraphicsHook
