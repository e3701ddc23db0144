#pragma once

// The textured quad's shaders, compiled at run time.
namespace ZEMO::UI::D3D11 {

inline constexpr char kDefaultVertexShader[] =
    "struct VS_INPUT\n{\n\tfloat4 pos : POSITION;\n\tfloat2 tex : TEXCOORD0;\n};\n\n"
    "struct VS_OUTPUT\n{\n\tfloat4 pos : SV_POSITION;\n\tfloat2 tex : TEXCOORD0;\n};\n\n"
    "VS_OUTPUT main(VS_INPUT input)\n{\n\tVS_OUTPUT output;\n\toutput.pos = input.pos;\n\toutput.tex = input.tex;\n"
    "\treturn output;\n}";

inline constexpr char kDefaultPixelShader[] =
    "Texture2D tex0 : register(t0);\nSamplerState samp0 : register(s0);\n\n"
    "struct VS_OUTPUT\n{\n\tfloat4 pos : SV_POSITION;\n\tfloat2 tex : TEXCOORD0;\n};\n\n"
    "float4 main(VS_OUTPUT input) : SV_Target\n{\n\treturn tex0.Sample(samp0, input.tex);\n}";

}  // namespace ZEMO::UI::D3D11
