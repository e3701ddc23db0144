#include "d3d12_pipelines.h"

#include <iterator>

#include "page_shaders.h"

namespace ZEMO::GraphicsHook {
namespace {

D3D12_ROOT_PARAMETER tableOf(const D3D12_DESCRIPTOR_RANGE& range) {
    D3D12_ROOT_PARAMETER table{};
    table.ParameterType = D3D12_ROOT_PARAMETER_TYPE_DESCRIPTOR_TABLE;
    table.DescriptorTable = {1, &range};
    table.ShaderVisibility = D3D12_SHADER_VISIBILITY_PIXEL;
    return table;
}

D3D12_ROOT_PARAMETER edgesAsConstants() {
    D3D12_ROOT_PARAMETER constants{};
    constants.ParameterType = D3D12_ROOT_PARAMETER_TYPE_32BIT_CONSTANTS;
    constants.Constants = {0, 0, sizeof(Place) / sizeof(float)};
    constants.ShaderVisibility = D3D12_SHADER_VISIBILITY_VERTEX;
    return constants;
}

// In the order of D3D12Pipelines::Parameter.
Com<ID3DBlob> describeParameters() {
    Com<ID3DBlob> description, errors;
    const auto serialize = reinterpret_cast<PFN_D3D12_SERIALIZE_ROOT_SIGNATURE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"d3d12.dll"), "D3D12SerializeRootSignature")));
    if (!serialize) return description;
    const D3D12_DESCRIPTOR_RANGE pixels{D3D12_DESCRIPTOR_RANGE_TYPE_SRV, 1, 0, 0, 0};
    const D3D12_DESCRIPTOR_RANGE sampler{D3D12_DESCRIPTOR_RANGE_TYPE_SAMPLER, 1, 0, 0, 0};
    const D3D12_ROOT_PARAMETER parameters[] = {edgesAsConstants(), tableOf(pixels), tableOf(sampler)};
    const D3D12_ROOT_SIGNATURE_DESC wanted{std::size(parameters), parameters, 0, nullptr,
                                           D3D12_ROOT_SIGNATURE_FLAG_NONE};
    serialize(&wanted, D3D_ROOT_SIGNATURE_VERSION_1, description.put(), errors.put());
    return description;
}

D3D12_RENDER_TARGET_BLEND_DESC over(D3D12_BLEND source) {
    return {TRUE,
            FALSE,
            source,
            D3D12_BLEND_INV_SRC_ALPHA,
            D3D12_BLEND_OP_ADD,
            D3D12_BLEND_ONE,
            D3D12_BLEND_INV_SRC_ALPHA,
            D3D12_BLEND_OP_ADD,
            D3D12_LOGIC_OP_NOOP,
            D3D12_COLOR_WRITE_ENABLE_ALL};
}

D3D12_SHADER_BYTECODE bytesOf(ID3DBlob* code) { return {code->GetBufferPointer(), code->GetBufferSize()}; }

}  // namespace

bool D3D12Pipelines::make(ID3D12Device* device) {
    const Com<ID3DBlob> description = describeParameters();
    return description &&
           SUCCEEDED(device->CreateRootSignature(0, description->GetBufferPointer(), description->GetBufferSize(),
                                                 __uuidof(ID3D12RootSignature), rootSignature.putVoid()));
}

bool D3D12Pipelines::useFormat(ID3D12Device* device, DXGI_FORMAT targetFormat) {
    if (format == targetFormat) return true;
    premultiplied = {};
    straight = {};
    format = targetFormat;
    const PageShaders code = compilePageShaders("vs_5_0", "ps_5_0");
    return code && makePipeline(device, code, D3D12_BLEND_ONE, premultiplied) &&
           makePipeline(device, code, D3D12_BLEND_SRC_ALPHA, straight);
}

bool D3D12Pipelines::makePipeline(ID3D12Device* device, const PageShaders& code, D3D12_BLEND source,
                                  Com<ID3D12PipelineState>& pipeline) {
    D3D12_GRAPHICS_PIPELINE_STATE_DESC wanted{};
    wanted.pRootSignature = rootSignature.get();
    wanted.VS = bytesOf(code.vertex.get());
    wanted.PS = bytesOf(code.pixel.get());
    wanted.BlendState.RenderTarget[0] = over(source);
    wanted.SampleMask = 0xFFFFFFFF;
    wanted.RasterizerState.FillMode = D3D12_FILL_MODE_SOLID;
    wanted.RasterizerState.CullMode = D3D12_CULL_MODE_NONE;
    wanted.RasterizerState.DepthClipEnable = TRUE;
    wanted.PrimitiveTopologyType = D3D12_PRIMITIVE_TOPOLOGY_TYPE_TRIANGLE;
    wanted.NumRenderTargets = 1;
    wanted.RTVFormats[0] = format;
    wanted.SampleDesc.Count = 1;
    return SUCCEEDED(device->CreateGraphicsPipelineState(&wanted, __uuidof(ID3D12PipelineState), pipeline.putVoid()));
}

}  // namespace ZEMO::GraphicsHook
