#include "page_shaders.h"

#include <windows.h>

#include <d3dcompiler.h>

#include "log.h"

namespace ZEMO::GraphicsHook {
namespace {

constexpr char kShaders[] = R"(
cbuffer Place : register(b0) { float4 edges; };  // left, top, right, bottom, from -1 to 1
Texture2D page : register(t0);
SamplerState pageSampler : register(s0);
struct Corner { float4 position : SV_Position; float2 texel : TEXCOORD; };
Corner vertexMain(uint id : SV_VertexID) {
    Corner corner;
    corner.texel = float2(id & 1, id >> 1);
    corner.position = float4(lerp(edges.xy, edges.zw, corner.texel), 0, 1);
    return corner;
}
float4 pixelMain(Corner corner) : SV_Target { return page.Sample(pageSampler, corner.texel); }
)";

Com<ID3DBlob> compile(const char* entry, const char* target) {
    Com<ID3DBlob> code;
    // The engine brings the compiler; it lies beside the library.
    static const HMODULE compiler = LoadLibraryW(L"d3dcompiler_47.dll");
    const auto run =
        compiler ? reinterpret_cast<pD3DCompile>(reinterpret_cast<void*>(GetProcAddress(compiler, "D3DCompile")))
                 : nullptr;
    if (!run) {
        logLine("there is no d3dcompiler_47.dll");
        return code;
    }
    Com<ID3DBlob> errors;
    run(kShaders, sizeof kShaders - 1, nullptr, nullptr, nullptr, entry, target, 0, 0, code.put(), errors.put());
    if (!code) logLine("a shader does not compile");
    return code;
}

}  // namespace

PageShaders compilePageShaders(const char* vertexTarget, const char* pixelTarget) {
    return {compile("vertexMain", vertexTarget), compile("pixelMain", pixelTarget)};
}

}  // namespace ZEMO::GraphicsHook
