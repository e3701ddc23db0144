#include "render/d3d11/device.h"

#include <d3dcompiler.h>
#include <dxgi1_2.h>

#include <cfloat>
#include <iterator>

#include "core/log.h"
#include "core/module_paths.h"
#include "core/system_function.h"
#include "render/close_button_metrics.h"
#include "render/d3d11/default_shaders.h"
#include "render/d3d11/quad.h"
#include "render/display_scale.h"

namespace ZEMO::UI::D3D11 {
namespace {

constexpr D3D_FEATURE_LEVEL kLevels[] = {D3D_FEATURE_LEVEL_11_1, D3D_FEATURE_LEVEL_11_0, D3D_FEATURE_LEVEL_10_1,
                                         D3D_FEATURE_LEVEL_10_0};
constexpr DXGI_FORMAT kTargetFormat = DXGI_FORMAT_R8G8B8A8_UNORM;

struct MadeDevice {
    std::shared_ptr<ID3D11Device> device;
    std::shared_ptr<ID3D11DeviceContext> context;
    D3D_FEATURE_LEVEL level{};
};

HRESULT makeDevice(const D3D_FEATURE_LEVEL* levels, size_t count, MadeDevice& made) {
    // By name: a game that never takes this road does not get Direct3D loaded.
    static const HMODULE module = LoadLibraryW(L"d3d11.dll");
    const auto create = Core::systemFunction<PFN_D3D11_CREATE_DEVICE>(module, "D3D11CreateDevice");
    if (!create) return E_NOTIMPL;
    ID3D11Device* device = nullptr;
    ID3D11DeviceContext* context = nullptr;
    const HRESULT result = create(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, levels, static_cast<UINT>(count),
                                  D3D11_SDK_VERSION, &device, &made.level, &context);
    made.device = Core::adoptCom(device);
    made.context = Core::adoptCom(context);
    return result;
}

// The rectangle's sides where none are asked for.
void takeClientSize(HWND window, int& width, int& height) {
    RECT client{};
    GetClientRect(window, &client);
    if (width < 1) width = client.right - client.left;
    if (height < 1) height = client.bottom - client.top;
}

}  // namespace

std::shared_ptr<Device> Device::create() {
    MadeDevice made;
    HRESULT result = makeDevice(kLevels, std::size(kLevels), made);
    // Systems that don't know 11.1 refuse the whole list.
    if (result == E_INVALIDARG) result = makeDevice(kLevels + 1, std::size(kLevels) - 1, made);
    if (FAILED(result) || !made.device || !made.context) return {};
    const std::shared_ptr<Device> device(new Device(std::move(made.device), std::move(made.context)));
    Core::logDebugA("d3d11: selected adapter: %s\n", device->adapterName().c_str());
    Core::logDebugA("d3d11: selected feature level: 0x%04X\n", static_cast<unsigned>(made.level));
    return device;
}

Device::Device(std::shared_ptr<ID3D11Device> made, std::shared_ptr<ID3D11DeviceContext> immediate)
    : compilerModule(Core::loadLibraryFromModuleDirectory(L"cefsubprocess/d3dcompiler_47.dll")),
      device(std::move(made)),
      context(std::make_shared<Context>(Context{std::move(immediate)})),
      closeMargin(kCloseButtonMargin),
      scaledWidthThreshold(kCloseButtonWidthThreshold),
      closeSizeWide(kCloseButtonSizeWide),
      closeSizeNarrow(kCloseButtonSizeNarrow) {}

std::shared_ptr<IDXGIAdapter> Device::adapter() const {
    const auto dxgi = queryCom<IDXGIDevice>(device.get());
    IDXGIAdapter* found = nullptr;
    if (!dxgi || FAILED(dxgi->GetAdapter(&found))) return {};
    return Core::adoptCom(found);
}

std::string Device::adapterName() const {
    const auto found = adapter();
    DXGI_ADAPTER_DESC description{};
    if (!found || FAILED(found->GetDesc(&description))) return "n/a";
    const std::shared_ptr<char> name = Core::toSharedUtf8(description.Description);
    return name ? name.get() : "n/a";
}

void Device::scaleCloseButton() {
    const float scale = getWindowScale(window);
    closeMargin = static_cast<float>(logicalToDevice(kCloseButtonMargin, scale));
    scaledWidthThreshold = logicalToDevice(kCloseButtonWidthThreshold, scale);
    closeSizeWide = logicalToDevice(kCloseButtonSizeWide, scale);
    closeSizeNarrow = logicalToDevice(kCloseButtonSizeNarrow, scale);
}

std::shared_ptr<SwapChain> Device::createSwapChain(HWND target, int width, int height) {
    if (target) window = target;
    scaleCloseButton();
    takeClientSize(window, width, height);
    const auto from = adapter();
    IDXGIFactory1* found = nullptr;
    if (!from || FAILED(from->GetParent(IID_PPV_ARGS(&found)))) return {};
    const auto factory = Core::adoptCom(found);
    const auto chain = createChain(*factory, width, height);
    if (!chain) return {};
    factory->MakeWindowAssociation(window, DXGI_MWA_NO_ALT_ENTER);  // Alt+Enter is the game's
    return completeChain(chain, width, height);
}

std::shared_ptr<IDXGISwapChain> Device::createChain(IDXGIFactory1& factory, int width, int height) const {
    if (const auto factory2 = queryCom<IDXGIFactory2>(&factory)) {
        DXGI_SWAP_CHAIN_DESC1 description{};
        description.Width = static_cast<UINT>(width);
        description.Height = static_cast<UINT>(height);
        description.Format = kTargetFormat;
        description.SampleDesc = {1, 0};
        description.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
        description.BufferCount = 1;
        IDXGISwapChain1* made = nullptr;
        if (FAILED(factory2->CreateSwapChainForHwnd(device.get(), window, &description, nullptr, nullptr, &made))) {
            return {};
        }
        return queryCom<IDXGISwapChain>(Core::adoptCom(made).get());
    }
    DXGI_SWAP_CHAIN_DESC description{};
    description.BufferDesc.Width = static_cast<UINT>(width);
    description.BufferDesc.Height = static_cast<UINT>(height);
    description.BufferDesc.RefreshRate = {60, 1};
    description.BufferDesc.Format = kTargetFormat;
    description.SampleDesc = {1, 0};
    description.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    description.BufferCount = 1;
    description.OutputWindow = window;
    description.Windowed = TRUE;
    IDXGISwapChain* made = nullptr;
    if (FAILED(factory.CreateSwapChain(device.get(), &description, &made))) return {};
    return Core::adoptCom(made);
}

std::shared_ptr<SwapChain> Device::completeChain(const std::shared_ptr<IDXGISwapChain>& chain, int width, int height) {
    const auto backBuffer = backBufferOf(*chain);
    ID3D11RenderTargetView* made = nullptr;
    if (!backBuffer || FAILED(device->CreateRenderTargetView(backBuffer.get(), nullptr, &made))) return {};
    auto target = Core::adoptCom(made);
    setTarget(*context, target.get());
    setViewport(*context, width, height);
    return std::make_shared<SwapChain>(context, chain, std::move(target), createSampler());
}

std::shared_ptr<ID3D11SamplerState> Device::createSampler() const {
    D3D11_SAMPLER_DESC description{};
    description.Filter = D3D11_FILTER_MIN_MAG_MIP_LINEAR;
    description.AddressU = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.AddressV = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
    description.ComparisonFunc = D3D11_COMPARISON_NEVER;
    description.MinLOD = 0;
    description.MaxLOD = FLT_MAX;
    ID3D11SamplerState* sampler = nullptr;
    if (FAILED(device->CreateSamplerState(&description, &sampler))) return {};
    return Core::adoptCom(sampler);
}

std::shared_ptr<Geometry> Device::createQuad(float x, float y, float width, float height, bool forCloseButton,
                                             bool flip) {
    QuadEdges edges = quadEdges(x, y, width, height);
    if (forCloseButton) {
        int clientWidth = 0;
        int clientHeight = 0;
        takeClientSize(window, clientWidth, clientHeight);
        if (clientWidth < 1 || clientHeight < 1) return {};
        // Device pixels against the unscaled threshold: it counts for nothing while both sizes are the same.
        const int size = clientWidth > kCloseButtonWidthThreshold ? closeSizeWide : closeSizeNarrow;
        edges = closeButtonEdges(clientWidth, clientHeight, size, closeMargin);
    }
    const Quad quad = makeQuad(edges, flip);
    D3D11_BUFFER_DESC description{};
    description.ByteWidth = sizeof quad;
    description.Usage = D3D11_USAGE_DEFAULT;
    description.BindFlags = D3D11_BIND_VERTEX_BUFFER;
    const D3D11_SUBRESOURCE_DATA data{quad.data(), 0, 0};
    ID3D11Buffer* made = nullptr;
    if (FAILED(device->CreateBuffer(&description, &data, &made))) return {};
    return std::make_shared<Geometry>(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP, static_cast<uint32_t>(quad.size()),
                                      static_cast<uint32_t>(sizeof(Vertex)), Core::adoptCom(made));
}

std::shared_ptr<Texture2D> Device::createTexture(int width, int height, DXGI_FORMAT format, const void* initialData,
                                                 int rowPitch) {
    D3D11_TEXTURE2D_DESC description{};
    description.Width = static_cast<UINT>(width);
    description.Height = static_cast<UINT>(height);
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = format;
    description.SampleDesc = {1, 0};
    description.Usage = initialData ? D3D11_USAGE_DEFAULT : D3D11_USAGE_DYNAMIC;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.CPUAccessFlags = initialData ? 0 : D3D11_CPU_ACCESS_WRITE;
    const D3D11_SUBRESOURCE_DATA data{initialData, static_cast<UINT>(rowPitch), 0};
    ID3D11Texture2D* made = nullptr;
    if (FAILED(device->CreateTexture2D(&description, initialData ? &data : nullptr, &made))) return {};
    auto texture = Core::adoptCom(made);
    D3D11_SHADER_RESOURCE_VIEW_DESC view{};
    view.Format = format;
    view.ViewDimension = D3D11_SRV_DIMENSION_TEXTURE2D;
    view.Texture2D.MipLevels = 1;
    ID3D11ShaderResourceView* madeView = nullptr;
    if (FAILED(device->CreateShaderResourceView(texture.get(), &view, &madeView))) return {};
    return std::make_shared<Texture2D>(std::move(texture), Core::adoptCom(madeView));
}

std::shared_ptr<ID3DBlob> Device::compileShader(const std::string& source, const char* entry, const char* model) {
    const auto compile = Core::systemFunction<pD3DCompile>(compilerModule, "D3DCompile");
    if (!compile) return {};
    ID3DBlob* code = nullptr;
    ID3DBlob* errors = nullptr;
    const HRESULT result = compile(source.c_str(), source.size() + 1, nullptr, nullptr, nullptr, entry, model,
                                   D3DCOMPILE_ENABLE_STRICTNESS, 0, &code, &errors);
    if (errors) errors->Release();
    auto compiled = Core::adoptCom(code);
    return SUCCEEDED(result) ? compiled : nullptr;
}

std::shared_ptr<ID3D11InputLayout> Device::createInputLayout(ID3DBlob& vertexShader) const {
    constexpr D3D11_INPUT_ELEMENT_DESC kElements[] = {
        {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, 0, D3D11_INPUT_PER_VERTEX_DATA, 0},
        {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT, 0, 12, D3D11_INPUT_PER_VERTEX_DATA, 0}};
    ID3D11InputLayout* layout = nullptr;
    if (FAILED(device->CreateInputLayout(kElements, std::size(kElements), vertexShader.GetBufferPointer(),
                                         vertexShader.GetBufferSize(), &layout))) {
        return {};
    }
    return Core::adoptCom(layout);
}

std::shared_ptr<Effect> Device::createEffect(const std::string& vertexSource, const char* vertexEntry,
                                             const char* vertexModel, const std::string& pixelSource,
                                             const char* pixelEntry, const char* pixelModel) {
    ID3D11VertexShader* vertexShader = nullptr;
    std::shared_ptr<ID3D11InputLayout> layout;
    if (const auto code = compileShader(vertexSource, vertexEntry, vertexModel)) {
        device->CreateVertexShader(code->GetBufferPointer(), code->GetBufferSize(), nullptr, &vertexShader);
        layout = createInputLayout(*code);
    }
    ID3D11PixelShader* pixelShader = nullptr;
    if (const auto code = compileShader(pixelSource, pixelEntry, pixelModel)) {
        device->CreatePixelShader(code->GetBufferPointer(), code->GetBufferSize(), nullptr, &pixelShader);
    }
    return std::make_shared<Effect>(Core::adoptCom(vertexShader), Core::adoptCom(pixelShader), std::move(layout));
}

std::shared_ptr<Effect> Device::createDefaultEffect() {
    return createEffect(kDefaultVertexShader, "main", "vs_4_0", kDefaultPixelShader, "main", "ps_4_0");
}

}  // namespace ZEMO::UI::D3D11
