// The interfaces' C form: its tables of functions are structures that can be looked at and written to.
#define CINTERFACE
#include "support/d3d11_calls.h"

#include <initguid.h>
// after initguid.h
#include <d3d11.h>
#include <d3dcompiler.h>
#include <dxgi1_2.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <format>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "support/import_replaced.h"

namespace ZEMO::Test {
namespace {

/// What the functions in the tables share. Never destroyed: a call may be under way on another thread.
struct State {
    std::mutex mutex;
    std::condition_variable changed;
    bool on = false;
    std::vector<std::string> lines;
    std::map<std::string, HRESULT> failures;
    std::map<std::string, std::function<void()>> work;
    std::map<const void*, std::string> names;
    std::map<std::string, int> numbers;
    PresentedPicture picture;
    size_t presents = 0;
    ID3D11Device* device = nullptr;
    void* mapMemory = nullptr;
    uint32_t mapPitch = 0;
};

State& state() {
    static auto* const one = new State;
    return *one;
}

/// Above 0 in calls of this file's own.
thread_local int silent = 0;
struct Silent {
    Silent() { ++silent; }
    ~Silent() { --silent; }
    Silent(const Silent&) = delete;
    Silent& operator=(const Silent&) = delete;
};

std::string nameOf(const void* object) {
    if (!object) return "null";
    const std::lock_guard lock(state().mutex);
    const auto found = state().names.find(object);
    return found == state().names.end() ? "unknown" : found->second;
}

/// What a call has made.
template <class Object>
HRESULT named(const char* kind, HRESULT result, Object** made) {
    if (silent || FAILED(result) || !made || !*made) return result;
    const std::lock_guard lock(state().mutex);
    state().names[*made] = kind + std::to_string(++state().numbers[kind]);
    return result;
}

/// Writes the call down. The failure that it shall answer, if any.
std::optional<HRESULT> note(std::string line) {
    if (silent) return {};
    std::function<void()> work;
    std::optional<HRESULT> failure;
    {
        const std::lock_guard lock(state().mutex);
        if (!state().on) return {};
        for (const auto& [start, result] : state().failures) {
            if (line.starts_with(start)) failure = result;
        }
        for (const auto& [start, function] : state().work) {
            if (line.starts_with(start)) work = function;
        }
        state().lines.push_back(std::move(line));
    }
    if (work) work();
    return failure;
}

/// One function of a table, and what stood there before.
template <auto member>
struct Slot;
template <class Table, class Function, Function Table::* member>
struct Slot<member> {
    static inline Function original = nullptr;
    static inline Function* place = nullptr;

    static void put(const Table* table, Function replacement) {
        place = const_cast<Function*>(&(table->*member));
        original = *place;
        write(replacement);
    }
    static void restore() { write(original); }

private:
    static void write(Function function) {
        DWORD before = 0;
        VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
        *place = function;
        VirtualProtect(place, sizeof *place, before, &before);
    }
};
#define ORIGINAL(interface, function) Slot<&interface##Vtbl::function>::original

// ---- ID3D11Device
// -----------------------------------------------------------------------------------------------------

std::string verticesText(const D3D11_SUBRESOURCE_DATA* data, UINT bytes) {
    if (!data) return "null";
    std::string text;
    const auto* values = static_cast<const float*>(data->pSysMem);
    for (UINT i = 0; i < bytes / sizeof(float); ++i) {
        text += std::format("{}{:g}", i == 0 ? "" : i % 5 == 0 ? " | " : " ", values[i]);
    }
    return text;
}

HRESULT STDMETHODCALLTYPE createBuffer(ID3D11Device* self, const D3D11_BUFFER_DESC* d,
                                       const D3D11_SUBRESOURCE_DATA* data, ID3D11Buffer** made) {
    if (auto failure = note(std::format("CreateBuffer {} usage {} bind {} access {} misc {} stride {}: {}",
                                        d->ByteWidth, static_cast<int>(d->Usage), d->BindFlags, d->CPUAccessFlags,
                                        d->MiscFlags, d->StructureByteStride, verticesText(data, d->ByteWidth)))) {
        return *failure;
    }
    return named("buffer", ORIGINAL(ID3D11Device, CreateBuffer)(self, d, data, made), made);
}

HRESULT STDMETHODCALLTYPE createTexture(ID3D11Device* self, const D3D11_TEXTURE2D_DESC* d,
                                        const D3D11_SUBRESOURCE_DATA* data, ID3D11Texture2D** made) {
    if (auto failure = note(std::format(
            "CreateTexture2D {}x{} mips {} array {} format {} samples {}/{} usage {} bind {} access {} misc {} data {}",
            d->Width, d->Height, d->MipLevels, d->ArraySize, static_cast<int>(d->Format), d->SampleDesc.Count,
            d->SampleDesc.Quality, static_cast<int>(d->Usage), d->BindFlags, d->CPUAccessFlags, d->MiscFlags,
            data ? std::format("pitch {}", data->SysMemPitch) : "null"))) {
        return *failure;
    }
    return named("texture", ORIGINAL(ID3D11Device, CreateTexture2D)(self, d, data, made), made);
}

HRESULT STDMETHODCALLTYPE createView(ID3D11Device* self, ID3D11Resource* of, const D3D11_SHADER_RESOURCE_VIEW_DESC* d,
                                     ID3D11ShaderResourceView** made) {
    if (auto failure = note(std::format("CreateShaderResourceView {} format {} dimension {} mips {}/{}", nameOf(of),
                                        static_cast<int>(d->Format), static_cast<int>(d->ViewDimension),
                                        d->Texture2D.MostDetailedMip, d->Texture2D.MipLevels))) {
        return *failure;
    }
    return named("view", ORIGINAL(ID3D11Device, CreateShaderResourceView)(self, of, d, made), made);
}

HRESULT STDMETHODCALLTYPE createTarget(ID3D11Device* self, ID3D11Resource* of, const D3D11_RENDER_TARGET_VIEW_DESC* d,
                                       ID3D11RenderTargetView** made) {
    if (auto failure = note(std::format("CreateRenderTargetView {} {}", nameOf(of),
                                        d ? std::format("format {} dimension {} mip {}", static_cast<int>(d->Format),
                                                        static_cast<int>(d->ViewDimension), d->Texture2D.MipSlice)
                                          : "null"))) {
        return *failure;
    }
    return named("target", ORIGINAL(ID3D11Device, CreateRenderTargetView)(self, of, d, made), made);
}

HRESULT STDMETHODCALLTYPE createVertexShader(ID3D11Device* self, const void* code, SIZE_T size, ID3D11ClassLinkage* l,
                                             ID3D11VertexShader** made) {
    if (auto failure = note("CreateVertexShader " + nameOf(l))) return *failure;
    return named("vertexShader", ORIGINAL(ID3D11Device, CreateVertexShader)(self, code, size, l, made), made);
}

HRESULT STDMETHODCALLTYPE createPixelShader(ID3D11Device* self, const void* code, SIZE_T size, ID3D11ClassLinkage* l,
                                            ID3D11PixelShader** made) {
    if (auto failure = note("CreatePixelShader " + nameOf(l))) return *failure;
    return named("pixelShader", ORIGINAL(ID3D11Device, CreatePixelShader)(self, code, size, l, made), made);
}

HRESULT STDMETHODCALLTYPE createLayout(ID3D11Device* self, const D3D11_INPUT_ELEMENT_DESC* elements, UINT count,
                                       const void* code, SIZE_T size, ID3D11InputLayout** made) {
    std::string line = "CreateInputLayout";
    for (UINT i = 0; i < count; ++i) {
        const D3D11_INPUT_ELEMENT_DESC& e = elements[i];
        line += std::format(" {} {} format {} slot {} offset {} class {} step {};", e.SemanticName, e.SemanticIndex,
                            static_cast<int>(e.Format), e.InputSlot, e.AlignedByteOffset,
                            static_cast<int>(e.InputSlotClass), e.InstanceDataStepRate);
    }
    if (auto failure = note(line)) return *failure;
    return named("layout", ORIGINAL(ID3D11Device, CreateInputLayout)(self, elements, count, code, size, made), made);
}

HRESULT STDMETHODCALLTYPE createBlend(ID3D11Device* self, const D3D11_BLEND_DESC* d, ID3D11BlendState** made) {
    const D3D11_RENDER_TARGET_BLEND_DESC& t = d->RenderTarget[0];
    if (auto failure = note(std::format(
            "CreateBlendState coverage {} independent {} enable {} color {} {} {} alpha {} {} {} mask {}",
            d->AlphaToCoverageEnable, d->IndependentBlendEnable, t.BlendEnable, static_cast<int>(t.SrcBlend),
            static_cast<int>(t.DestBlend), static_cast<int>(t.BlendOp), static_cast<int>(t.SrcBlendAlpha),
            static_cast<int>(t.DestBlendAlpha), static_cast<int>(t.BlendOpAlpha), t.RenderTargetWriteMask))) {
        return *failure;
    }
    return named("blend", ORIGINAL(ID3D11Device, CreateBlendState)(self, d, made), made);
}

HRESULT STDMETHODCALLTYPE createSampler(ID3D11Device* self, const D3D11_SAMPLER_DESC* d, ID3D11SamplerState** made) {
    uint32_t maxLod = 0;
    std::memcpy(&maxLod, &d->MaxLOD, sizeof maxLod);
    if (auto failure = note(std::format(
            "CreateSamplerState filter {} address {} {} {} bias {} anisotropy {} compare {} border {} {} {} {} lod "
            "{}-{:X}",
            static_cast<int>(d->Filter), static_cast<int>(d->AddressU), static_cast<int>(d->AddressV),
            static_cast<int>(d->AddressW), d->MipLODBias, d->MaxAnisotropy, static_cast<int>(d->ComparisonFunc),
            d->BorderColor[0], d->BorderColor[1], d->BorderColor[2], d->BorderColor[3], d->MinLOD, maxLod))) {
        return *failure;
    }
    return named("sampler", ORIGINAL(ID3D11Device, CreateSamplerState)(self, d, made), made);
}

// ---- ID3D11DeviceContext
// ----------------------------------------------------------------------------------------------

void STDMETHODCALLTYPE setTargets(ID3D11DeviceContext* self, UINT count, ID3D11RenderTargetView* const* targets,
                                  ID3D11DepthStencilView* depth) {
    std::string list;
    for (UINT i = 0; i < count; ++i) list += " " + nameOf(targets[i]);
    note(std::format("OMSetRenderTargets {}{} depth {}", count, list, nameOf(depth)));
    ORIGINAL(ID3D11DeviceContext, OMSetRenderTargets)(self, count, targets, depth);
}

void STDMETHODCALLTYPE setViewports(ID3D11DeviceContext* self, UINT count, const D3D11_VIEWPORT* v) {
    note(std::format("RSSetViewports {}: {} {} {}x{} depth {}-{}", count, v->TopLeftX, v->TopLeftY, v->Width, v->Height,
                     v->MinDepth, v->MaxDepth));
    ORIGINAL(ID3D11DeviceContext, RSSetViewports)(self, count, v);
}

void STDMETHODCALLTYPE setSamplers(ID3D11DeviceContext* self, UINT start, UINT count, ID3D11SamplerState* const* s) {
    note(std::format("PSSetSamplers {} {} {}", start, count, nameOf(*s)));
    ORIGINAL(ID3D11DeviceContext, PSSetSamplers)(self, start, count, s);
}

void STDMETHODCALLTYPE clearTarget(ID3D11DeviceContext* self, ID3D11RenderTargetView* target, const FLOAT* c) {
    note(std::format("ClearRenderTargetView {} {} {} {} {}", nameOf(target), c[0], c[1], c[2], c[3]));
    ORIGINAL(ID3D11DeviceContext, ClearRenderTargetView)(self, target, c);
}

void STDMETHODCALLTYPE setBlend(ID3D11DeviceContext* self, ID3D11BlendState* blend, const FLOAT* f, UINT mask) {
    note(std::format("OMSetBlendState {} {} {} {} {} {:X}", nameOf(blend), f[0], f[1], f[2], f[3], mask));
    ORIGINAL(ID3D11DeviceContext, OMSetBlendState)(self, blend, f, mask);
}

void STDMETHODCALLTYPE setVertices(ID3D11DeviceContext* self, UINT start, UINT count, ID3D11Buffer* const* buffers,
                                   const UINT* strides, const UINT* offsets) {
    note(std::format("IASetVertexBuffers {} {} {} stride {} offset {}", start, count, nameOf(*buffers), *strides,
                     *offsets));
    ORIGINAL(ID3D11DeviceContext, IASetVertexBuffers)(self, start, count, buffers, strides, offsets);
}

void STDMETHODCALLTYPE setTopology(ID3D11DeviceContext* self, D3D11_PRIMITIVE_TOPOLOGY topology) {
    note(std::format("IASetPrimitiveTopology {}", static_cast<int>(topology)));
    ORIGINAL(ID3D11DeviceContext, IASetPrimitiveTopology)(self, topology);
}

void STDMETHODCALLTYPE setLayout(ID3D11DeviceContext* self, ID3D11InputLayout* layout) {
    note("IASetInputLayout " + nameOf(layout));
    ORIGINAL(ID3D11DeviceContext, IASetInputLayout)(self, layout);
}

void STDMETHODCALLTYPE setVertexShader(ID3D11DeviceContext* self, ID3D11VertexShader* shader,
                                       ID3D11ClassInstance* const* instances, UINT count) {
    note(std::format("VSSetShader {} {} {}", nameOf(shader), nameOf(instances), count));
    ORIGINAL(ID3D11DeviceContext, VSSetShader)(self, shader, instances, count);
}

void STDMETHODCALLTYPE setPixelShader(ID3D11DeviceContext* self, ID3D11PixelShader* shader,
                                      ID3D11ClassInstance* const* instances, UINT count) {
    note(std::format("PSSetShader {} {} {}", nameOf(shader), nameOf(instances), count));
    ORIGINAL(ID3D11DeviceContext, PSSetShader)(self, shader, instances, count);
}

void STDMETHODCALLTYPE setResources(ID3D11DeviceContext* self, UINT start, UINT count,
                                    ID3D11ShaderResourceView* const* views) {
    note(std::format("PSSetShaderResources {} {} {}", start, count, nameOf(*views)));
    ORIGINAL(ID3D11DeviceContext, PSSetShaderResources)(self, start, count, views);
}

HRESULT STDMETHODCALLTYPE map(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT index, D3D11_MAP kind,
                              UINT flags, D3D11_MAPPED_SUBRESOURCE* mapped) {
    if (auto failure =
            note(std::format("Map {} {} kind {} flags {}", nameOf(resource), index, static_cast<int>(kind), flags))) {
        return *failure;
    }
    const HRESULT result = ORIGINAL(ID3D11DeviceContext, Map)(self, resource, index, kind, flags, mapped);
    const std::lock_guard lock(state().mutex);
    if (!silent && SUCCEEDED(result) && state().mapMemory) {
        mapped->pData = state().mapMemory;
        mapped->RowPitch = state().mapPitch;
    }
    return result;
}

void STDMETHODCALLTYPE unmap(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT index) {
    note(std::format("Unmap {} {}", nameOf(resource), index));
    ORIGINAL(ID3D11DeviceContext, Unmap)(self, resource, index);
}

void STDMETHODCALLTYPE draw(ID3D11DeviceContext* self, UINT count, UINT first) {
    note(std::format("Draw {} {}", count, first));
    ORIGINAL(ID3D11DeviceContext, Draw)(self, count, first);
}

void STDMETHODCALLTYPE getDevice(ID3D11DeviceContext* self, ID3D11Device** device) {
    note("GetDevice");
    ORIGINAL(ID3D11DeviceContext, GetDevice)(self, device);
}

// ---- DXGI
// -------------------------------------------------------------------------------------------------------------

HRESULT STDMETHODCALLTYPE getAdapter(IDXGIDevice* self, IDXGIAdapter** adapter) {
    if (auto failure = note("GetAdapter")) return *failure;
    return ORIGINAL(IDXGIDevice, GetAdapter)(self, adapter);
}

HRESULT STDMETHODCALLTYPE getAdapterDesc(IDXGIAdapter* self, DXGI_ADAPTER_DESC* description) {
    if (auto failure = note("GetDesc of adapter")) return *failure;
    return ORIGINAL(IDXGIAdapter, GetDesc)(self, description);
}

HRESULT STDMETHODCALLTYPE getAdapterParent(IDXGIAdapter* self, REFIID id, void** parent) {
    // The system asks for others by itself.
    if (!IsEqualGUID(id, IID_IDXGIFactory1)) return ORIGINAL(IDXGIAdapter, GetParent)(self, id, parent);
    if (auto failure = note("GetParent IDXGIFactory1")) return *failure;
    return ORIGINAL(IDXGIAdapter, GetParent)(self, id, parent);
}

HRESULT STDMETHODCALLTYPE queryFactory(IDXGIFactory2* self, REFIID id, void** object) {
    if (!IsEqualGUID(id, IID_IDXGIFactory2)) return ORIGINAL(IDXGIFactory2, QueryInterface)(self, id, object);
    if (auto failure = note("QueryInterface IDXGIFactory2")) {
        *object = nullptr;
        return *failure;
    }
    return ORIGINAL(IDXGIFactory2, QueryInterface)(self, id, object);
}

HRESULT STDMETHODCALLTYPE associate(IDXGIFactory2* self, HWND window, UINT flags) {
    if (auto failure = note(std::format("MakeWindowAssociation {}", flags))) return *failure;
    return ORIGINAL(IDXGIFactory2, MakeWindowAssociation)(self, window, flags);
}

HRESULT STDMETHODCALLTYPE createChain(IDXGIFactory2* self, IUnknown* device, DXGI_SWAP_CHAIN_DESC* d,
                                      IDXGISwapChain** made) {
    if (auto failure = note(std::format(
            "CreateSwapChain {}x{} rate {}/{} format {} order {} scaling {} samples {}/{} usage {} count {} windowed "
            "{} effect {} flags {}",
            d->BufferDesc.Width, d->BufferDesc.Height, d->BufferDesc.RefreshRate.Numerator,
            d->BufferDesc.RefreshRate.Denominator, static_cast<int>(d->BufferDesc.Format),
            static_cast<int>(d->BufferDesc.ScanlineOrdering), static_cast<int>(d->BufferDesc.Scaling),
            d->SampleDesc.Count, d->SampleDesc.Quality, d->BufferUsage, d->BufferCount, d->Windowed,
            static_cast<int>(d->SwapEffect), d->Flags))) {
        return *failure;
    }
    return named("chain", ORIGINAL(IDXGIFactory2, CreateSwapChain)(self, device, d, made), made);
}

HRESULT STDMETHODCALLTYPE createChainForWindow(IDXGIFactory2* self, IUnknown* device, HWND window,
                                               const DXGI_SWAP_CHAIN_DESC1* d,
                                               const DXGI_SWAP_CHAIN_FULLSCREEN_DESC* fullscreen, IDXGIOutput* output,
                                               IDXGISwapChain1** made) {
    if (auto failure = note(std::format(
            "CreateSwapChainForHwnd {}x{} format {} stereo {} samples {}/{} usage {} count {} scaling {} effect {} "
            "alpha {} flags {} fullscreen {} output {}",
            d->Width, d->Height, static_cast<int>(d->Format), d->Stereo, d->SampleDesc.Count, d->SampleDesc.Quality,
            d->BufferUsage, d->BufferCount, static_cast<int>(d->Scaling), static_cast<int>(d->SwapEffect),
            static_cast<int>(d->AlphaMode), d->Flags, nameOf(fullscreen), nameOf(output)))) {
        return *failure;
    }
    return named("chain",
                 ORIGINAL(IDXGIFactory2, CreateSwapChainForHwnd)(self, device, window, d, fullscreen, output, made),
                 made);
}

HRESULT STDMETHODCALLTYPE getChainDesc(IDXGISwapChain* self, DXGI_SWAP_CHAIN_DESC* description) {
    if (auto failure = note("GetDesc of swap chain")) return *failure;
    return ORIGINAL(IDXGISwapChain, GetDesc)(self, description);
}

HRESULT STDMETHODCALLTYPE resizeBuffers(IDXGISwapChain* self, UINT count, UINT width, UINT height, DXGI_FORMAT format,
                                        UINT flags) {
    if (auto failure = note(std::format("ResizeBuffers {} {}x{} format {} flags {}", count, width, height,
                                        static_cast<int>(format), flags))) {
        return *failure;
    }
    return ORIGINAL(IDXGISwapChain, ResizeBuffers)(self, count, width, height, format, flags);
}

HRESULT STDMETHODCALLTYPE getBuffer(IDXGISwapChain* self, UINT index, REFIID id, void** buffer) {
    const char* what = IsEqualGUID(id, IID_ID3D11Texture2D) ? "ID3D11Texture2D" : "another";
    if (auto failure = note(std::format("GetBuffer {} {}", index, what))) return *failure;
    const HRESULT result = ORIGINAL(IDXGISwapChain, GetBuffer)(self, index, id, buffer);
    return named("backBuffer", result, reinterpret_cast<ID3D11Texture2D**>(buffer));
}

template <class Object>
void release(Object* object) {
    if (object) object->lpVtbl->Release(object);
}

PresentedPicture readBack(IDXGISwapChain* chain) {
    const Silent own;
    PresentedPicture picture;
    ID3D11Texture2D* buffer = nullptr;
    if (FAILED(chain->lpVtbl->GetBuffer(chain, 0, IID_ID3D11Texture2D, reinterpret_cast<void**>(&buffer)))) return {};
    D3D11_TEXTURE2D_DESC description{};
    buffer->lpVtbl->GetDesc(buffer, &description);
    description.Usage = D3D11_USAGE_STAGING;
    description.BindFlags = 0;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    description.MiscFlags = 0;
    ID3D11Device* device = nullptr;
    buffer->lpVtbl->GetDevice(buffer, &device);
    ID3D11DeviceContext* context = nullptr;
    device->lpVtbl->GetImmediateContext(device, &context);
    ID3D11Texture2D* copy = nullptr;
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (SUCCEEDED(device->lpVtbl->CreateTexture2D(device, &description, nullptr, &copy))) {
        auto* const from = reinterpret_cast<ID3D11Resource*>(buffer);
        auto* const to = reinterpret_cast<ID3D11Resource*>(copy);
        context->lpVtbl->CopyResource(context, to, from);
        if (SUCCEEDED(context->lpVtbl->Map(context, to, 0, D3D11_MAP_READ, 0, &mapped))) {
            picture.width = static_cast<int>(description.Width);
            picture.height = static_cast<int>(description.Height);
            picture.pixels.resize(size_t{description.Width} * description.Height);
            for (UINT row = 0; row < description.Height; ++row) {
                std::memcpy(picture.pixels.data() + size_t{row} * description.Width,
                            static_cast<const char*>(mapped.pData) + size_t{row} * mapped.RowPitch,
                            size_t{description.Width} * 4);
            }
            context->lpVtbl->Unmap(context, to, 0);
        }
    }
    release(copy);
    release(context);
    release(device);
    release(buffer);
    return picture;
}

HRESULT STDMETHODCALLTYPE present(IDXGISwapChain* self, UINT interval, UINT flags) {
    const auto failure = note(std::format("Present {} {}", interval, flags));
    PresentedPicture picture = readBack(self);
    const HRESULT result = failure ? *failure : ORIGINAL(IDXGISwapChain, Present)(self, interval, flags);
    {
        const std::lock_guard lock(state().mutex);
        state().picture = std::move(picture);
        ++state().presents;
    }
    state().changed.notify_all();
    return result;
}

// ---- Textures
// ---------------------------------------------------------------------------------------------------------

HRESULT STDMETHODCALLTYPE queryTexture(ID3D11Texture2D* self, REFIID id, void** object) {
    const char* what = IsEqualGUID(id, IID_IDXGIKeyedMutex) ? "IDXGIKeyedMutex"
                       : IsEqualGUID(id, IID_IDXGIResource) ? "IDXGIResource"
                                                            : nullptr;
    if (what) note(std::format("QueryInterface {}", what));
    return ORIGINAL(ID3D11Texture2D, QueryInterface)(self, id, object);
}

HRESULT STDMETHODCALLTYPE getSharedHandle(IDXGIResource* self, HANDLE* handle) {
    if (auto failure = note("GetSharedHandle")) return *failure;
    return ORIGINAL(IDXGIResource, GetSharedHandle)(self, handle);
}

// ---- Functions that are looked up by name
// -----------------------------------------------------------------------------

PFN_D3D11_CREATE_DEVICE realCreateDevice = nullptr;
pD3DCompile realCompile = nullptr;

HRESULT WINAPI createDevice(IDXGIAdapter* adapter, D3D_DRIVER_TYPE type, HMODULE software, UINT flags,
                            const D3D_FEATURE_LEVEL* levels, UINT count, UINT version, ID3D11Device** device,
                            D3D_FEATURE_LEVEL* level, ID3D11DeviceContext** context) {
    std::string list;
    for (UINT i = 0; i < count; ++i) list += std::format(" {:X}", static_cast<unsigned>(levels[i]));
    if (auto failure =
            note(std::format("D3D11CreateDevice levels{} count {} adapter {} type {} software {} flags {} version {}",
                             list, count, nameOf(adapter), static_cast<int>(type), nameOf(software), flags, version))) {
        return *failure;
    }
    const HRESULT result =
        realCreateDevice(adapter, type, software, flags, levels, count, version, device, level, context);
    const std::lock_guard lock(state().mutex);
    if (SUCCEEDED(result)) state().device = *device;
    return result;
}

HRESULT WINAPI compile(LPCVOID source, SIZE_T size, LPCSTR file, const D3D_SHADER_MACRO* defines, ID3DInclude* include,
                       LPCSTR entry, LPCSTR model, UINT flags1, UINT flags2, ID3DBlob** code, ID3DBlob** errors) {
    if (auto failure = note(std::format("D3DCompile {} {} size {} length {} name {} defines {} include {} flags {} {}",
                                        entry, model, size, std::strlen(static_cast<const char*>(source)), nameOf(file),
                                        nameOf(defines), nameOf(include), flags1, flags2))) {
        return *failure;
    }
    return realCompile(source, size, file, defines, include, entry, model, flags1, flags2, code, errors);
}

bool isHidden(const char* name) {
    const std::lock_guard lock(state().mutex);
    return state().on && state().failures.contains(std::string("GetProcAddress ") + name);
}

decltype(&GetProcAddress) realGetProcAddress = nullptr;

FARPROC WINAPI findFunction(HMODULE module, LPCSTR name) {
    const FARPROC real = realGetProcAddress(module, name);
    if (!real || IS_INTRESOURCE(name)) return real;
    if (isHidden(name)) return nullptr;
    const auto address = reinterpret_cast<void*>(real);
    if (std::strcmp(name, "D3D11CreateDevice") == 0) {
        realCreateDevice = reinterpret_cast<PFN_D3D11_CREATE_DEVICE>(address);
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&createDevice));
    }
    if (std::strcmp(name, "D3DCompile") == 0) {
        realCompile = reinterpret_cast<pD3DCompile>(address);
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&compile));
    }
    return real;
}

// ---- The tables
// -------------------------------------------------------------------------------------------------------

/// A device with a swap chain of its own, only to find the tables.
struct Sample {
    Sample() {
        window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
        DXGI_SWAP_CHAIN_DESC d{};
        d.BufferDesc = {8, 8, {60, 1}, DXGI_FORMAT_R8G8B8A8_UNORM};
        d.SampleDesc = {1, 0};
        d.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
        d.BufferCount = 1;
        d.OutputWindow = window;
        d.Windowed = TRUE;
        const auto create = reinterpret_cast<PFN_D3D11_CREATE_DEVICE_AND_SWAP_CHAIN>(
            reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"d3d11.dll"), "D3D11CreateDeviceAndSwapChain")));
        check(create(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &d, &chain, &device,
                     nullptr, &context));
        check(chain->lpVtbl->GetBuffer(chain, 0, IID_ID3D11Texture2D, reinterpret_cast<void**>(&texture)));
        query(texture, IID_IDXGIResource, resource);
        query(device, IID_IDXGIDevice, dxgi);
        check(dxgi->lpVtbl->GetAdapter(dxgi, &adapter));
        check(adapter->lpVtbl->GetParent(adapter, IID_IDXGIFactory2, reinterpret_cast<void**>(&factory)));
    }
    ~Sample() {
        release(factory);
        release(adapter);
        release(dxgi);
        release(resource);
        release(texture);
        release(context);
        release(chain);
        release(device);
        DestroyWindow(window);
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    static void check(HRESULT result) {
        if (SUCCEEDED(result)) return;
        std::fprintf(stderr, "no Direct3D 11 here: 0x%08lX\n", result);
        std::abort();
    }
    template <class Object, class Interface>
    static void query(Object* object, REFIID id, Interface*& found) {
        check(object->lpVtbl->QueryInterface(object, id, reinterpret_cast<void**>(&found)));
    }

    HWND window = nullptr;
    IDXGISwapChain* chain = nullptr;
    ID3D11Device* device = nullptr;
    ID3D11DeviceContext* context = nullptr;
    ID3D11Texture2D* texture = nullptr;
    IDXGIResource* resource = nullptr;
    IDXGIDevice* dxgi = nullptr;
    IDXGIAdapter* adapter = nullptr;
    IDXGIFactory2* factory = nullptr;
};

}  // namespace

/// Puts each function into its table, and takes it out again.
struct D3D11Calls::Hooks {
    template <auto member, class Table, class Function>
    void put(const Table* table, Function replacement) {
        Slot<member>::put(table, replacement);
        undo.push_back(&Slot<member>::restore);
    }

    Hooks() {
        const Sample sample;
        realGetProcAddress = &GetProcAddress;
        byName.emplace("GetProcAddress", &findFunction);
        const auto* device = sample.device->lpVtbl;
        put<&ID3D11DeviceVtbl::CreateBuffer>(device, &createBuffer);
        put<&ID3D11DeviceVtbl::CreateTexture2D>(device, &createTexture);
        put<&ID3D11DeviceVtbl::CreateShaderResourceView>(device, &createView);
        put<&ID3D11DeviceVtbl::CreateRenderTargetView>(device, &createTarget);
        put<&ID3D11DeviceVtbl::CreateVertexShader>(device, &createVertexShader);
        put<&ID3D11DeviceVtbl::CreatePixelShader>(device, &createPixelShader);
        put<&ID3D11DeviceVtbl::CreateInputLayout>(device, &createLayout);
        put<&ID3D11DeviceVtbl::CreateBlendState>(device, &createBlend);
        put<&ID3D11DeviceVtbl::CreateSamplerState>(device, &createSampler);
        const auto* context = sample.context->lpVtbl;
        put<&ID3D11DeviceContextVtbl::OMSetRenderTargets>(context, &setTargets);
        put<&ID3D11DeviceContextVtbl::RSSetViewports>(context, &setViewports);
        put<&ID3D11DeviceContextVtbl::PSSetSamplers>(context, &setSamplers);
        put<&ID3D11DeviceContextVtbl::ClearRenderTargetView>(context, &clearTarget);
        put<&ID3D11DeviceContextVtbl::OMSetBlendState>(context, &setBlend);
        put<&ID3D11DeviceContextVtbl::IASetVertexBuffers>(context, &setVertices);
        put<&ID3D11DeviceContextVtbl::IASetPrimitiveTopology>(context, &setTopology);
        put<&ID3D11DeviceContextVtbl::IASetInputLayout>(context, &setLayout);
        put<&ID3D11DeviceContextVtbl::VSSetShader>(context, &setVertexShader);
        put<&ID3D11DeviceContextVtbl::PSSetShader>(context, &setPixelShader);
        put<&ID3D11DeviceContextVtbl::PSSetShaderResources>(context, &setResources);
        put<&ID3D11DeviceContextVtbl::Map>(context, &map);
        put<&ID3D11DeviceContextVtbl::Unmap>(context, &unmap);
        put<&ID3D11DeviceContextVtbl::Draw>(context, &draw);
        put<&ID3D11DeviceContextVtbl::GetDevice>(context, &getDevice);
        put<&IDXGIDeviceVtbl::GetAdapter>(sample.dxgi->lpVtbl, &getAdapter);
        put<&IDXGIAdapterVtbl::GetDesc>(sample.adapter->lpVtbl, &getAdapterDesc);
        put<&IDXGIAdapterVtbl::GetParent>(sample.adapter->lpVtbl, &getAdapterParent);
        const auto* factory = sample.factory->lpVtbl;
        put<&IDXGIFactory2Vtbl::QueryInterface>(factory, &queryFactory);
        put<&IDXGIFactory2Vtbl::MakeWindowAssociation>(factory, &associate);
        put<&IDXGIFactory2Vtbl::CreateSwapChain>(factory, &createChain);
        put<&IDXGIFactory2Vtbl::CreateSwapChainForHwnd>(factory, &createChainForWindow);
        const auto* chain = sample.chain->lpVtbl;
        put<&IDXGISwapChainVtbl::GetDesc>(chain, &getChainDesc);
        put<&IDXGISwapChainVtbl::ResizeBuffers>(chain, &resizeBuffers);
        put<&IDXGISwapChainVtbl::GetBuffer>(chain, &getBuffer);
        put<&IDXGISwapChainVtbl::Present>(chain, &present);
        put<&ID3D11Texture2DVtbl::QueryInterface>(sample.texture->lpVtbl, &queryTexture);
        put<&IDXGIResourceVtbl::GetSharedHandle>(sample.resource->lpVtbl, &getSharedHandle);
    }
    ~Hooks() {
        for (const auto restore : undo) restore();
    }
    Hooks(const Hooks&) = delete;
    Hooks& operator=(const Hooks&) = delete;

    std::optional<ImportReplaced> byName;
    std::vector<void (*)()> undo;
};

D3D11Calls::D3D11Calls() {
    if (state().on) {
        std::fprintf(stderr, "two records of Direct3D calls at a time\n");
        std::abort();
    }
    hooks = std::make_unique<Hooks>();
    const std::lock_guard lock(state().mutex);
    state().on = true;
    state().lines.clear();
    state().failures.clear();
    state().work.clear();
    state().names.clear();
    state().numbers.clear();
    state().picture = {};
    state().presents = 0;
    state().device = nullptr;
    state().mapMemory = nullptr;
}

D3D11Calls::~D3D11Calls() {
    const std::lock_guard lock(state().mutex);
    state().on = false;
    state().work.clear();
}

std::vector<std::string> D3D11Calls::take() {
    const std::lock_guard lock(state().mutex);
    return std::exchange(state().lines, {});
}

size_t D3D11Calls::count(const std::string& start) const {
    const std::lock_guard lock(state().mutex);
    return static_cast<size_t>(
        std::ranges::count_if(state().lines, [&](const std::string& line) { return line.starts_with(start); }));
}

void D3D11Calls::fail(const std::string& start, HRESULT result) {
    const std::lock_guard lock(state().mutex);
    if (result == S_OK) {
        state().failures.erase(start);
    } else {
        state().failures[start] = result;
    }
}

void D3D11Calls::during(const std::string& start, std::function<void()> work) {
    const std::lock_guard lock(state().mutex);
    if (work) {
        state().work[start] = std::move(work);
    } else {
        state().work.erase(start);
    }
}

void D3D11Calls::mapInto(void* memory, uint32_t pitch) {
    const std::lock_guard lock(state().mutex);
    state().mapMemory = memory;
    state().mapPitch = pitch;
}

PresentedPicture D3D11Calls::presented() const {
    const std::lock_guard lock(state().mutex);
    return state().picture;
}

size_t D3D11Calls::presents() const {
    const std::lock_guard lock(state().mutex);
    return state().presents;
}

bool D3D11Calls::waitForPresents(size_t more) const {
    std::unique_lock lock(state().mutex);
    const size_t wanted = state().presents + more;
    return state().changed.wait_for(lock, std::chrono::seconds(30), [&] { return state().presents >= wanted; });
}

unsigned long D3D11Calls::deviceReferences() const {
    ID3D11Device* const device = state().device;
    device->lpVtbl->AddRef(device);
    return device->lpVtbl->Release(device);
}

uint32_t PresentedPicture::bgra(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return 0;
    const uint32_t rgba = pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    return (rgba & 0xFF00FF00u) | ((rgba >> 16) & 0xFFu) | ((rgba & 0xFFu) << 16);
}

}  // namespace ZEMO::Test
