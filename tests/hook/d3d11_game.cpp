#include "hook/d3d11_game.h"

#include "patch.h"

namespace ZEMO::Test {
namespace {

using GraphicsHook::Com;
using PresentFunction = HRESULT STDMETHODCALLTYPE(IDXGISwapChain*, UINT, UINT);

constexpr size_t kPresent = 8;
PresentFunction* systemPresent = nullptr;
Presented frame;

void read(IDXGISwapChain* chain) {
    Com<ID3D11Texture2D> buffer, copy;
    Com<ID3D11Device> device;
    Com<ID3D11DeviceContext> context;
    chain->GetBuffer(0, __uuidof(ID3D11Texture2D), buffer.putVoid());
    chain->GetDevice(__uuidof(ID3D11Device), device.putVoid());
    device->GetImmediateContext(context.put());
    D3D11_TEXTURE2D_DESC description{};
    buffer->GetDesc(&description);
    frame.width = static_cast<int>(description.Width);
    frame.height = static_cast<int>(description.Height);
    frame.pixels.resize(static_cast<size_t>(frame.width) * frame.height);
    ++frame.count;
    description.Usage = D3D11_USAGE_STAGING;
    description.BindFlags = description.MiscFlags = 0;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    device->CreateTexture2D(&description, nullptr, copy.put());
    context->CopyResource(copy.get(), buffer.get());
    D3D11_MAPPED_SUBRESOURCE mapped{};
    if (FAILED(context->Map(copy.get(), 0, D3D11_MAP_READ, 0, &mapped))) return;
    for (int y = 0; y < frame.height; ++y) {
        memcpy(frame.pixels.data() + static_cast<size_t>(y) * frame.width,
               static_cast<const char*>(mapped.pData) + static_cast<size_t>(y) * mapped.RowPitch,
               description.Width * 4);
    }
    context->Unmap(copy.get(), 0);
}

HRESULT STDMETHODCALLTYPE readAndPresent(IDXGISwapChain* chain, UINT interval, UINT flags) {
    read(chain);
    return systemPresent(chain, interval, flags);
}

}  // namespace

D3D11Game::D3D11Game(HWND gameWindow) : window(gameWindow) {
    for (const D3D_DRIVER_TYPE driver : {D3D_DRIVER_TYPE_HARDWARE, D3D_DRIVER_TYPE_WARP}) {
        if (SUCCEEDED(D3D11CreateDevice(nullptr, driver, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, device.put(),
                                        nullptr, context.put())))
            break;
    }
    if (device) remake();
}

void D3D11Game::remake() {
    chain = {};
    context->ClearState();
    context->Flush();
    Com<IDXGIDevice> dxgi;
    Com<IDXGIAdapter> adapter;
    Com<IDXGIFactory> factory;
    device->QueryInterface(__uuidof(IDXGIDevice), dxgi.putVoid());
    dxgi->GetAdapter(adapter.put());
    adapter->GetParent(__uuidof(IDXGIFactory), factory.putVoid());
    DXGI_SWAP_CHAIN_DESC wanted{};
    wanted.BufferDesc.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    wanted.SampleDesc.Count = 1;
    wanted.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    wanted.BufferCount = 1;
    wanted.OutputWindow = window;
    wanted.Windowed = TRUE;
    factory->CreateSwapChain(device.get(), &wanted, chain.put());
}

void D3D11Game::present() {
    Com<ID3D11Texture2D> buffer;
    Com<ID3D11RenderTargetView> target;
    chain->GetBuffer(0, __uuidof(ID3D11Texture2D), buffer.putVoid());
    device->CreateRenderTargetView(buffer.get(), nullptr, target.put());
    constexpr float kColour[] = {40 / 255.0f, 80 / 255.0f, 120 / 255.0f, 1};
    context->ClearRenderTargetView(target.get(), kColour);
    swap();
}

bool D3D11Game::followWindow() {
    RECT client{};
    GetClientRect(window, &client);
    if (client.right < 1 || client.bottom < 1) return true;  // minimised: nothing to present
    return resize(static_cast<UINT>(client.right), static_cast<UINT>(client.bottom)) == S_OK;
}

size_t D3D11Game::liveObjects() const {
    context->Flush();
    device->AddRef();
    return device->Release();
}

size_t D3D11Game::end() {
    context->ClearState();
    context->Flush();
    chain = {};
    context = {};
    ID3D11Device* const last = device.get();
    last->AddRef();
    device = {};
    return last->Release();
}

void D3D11Game::watchFrames(HMODULE) {
    if (systemPresent) return;
    systemPresent = reinterpret_cast<PresentFunction*>(
        GraphicsHook::patchTable(chain.get(), kPresent, reinterpret_cast<void*>(&readAndPresent)));
}

Presented& D3D11Game::presented() { return frame; }

}  // namespace ZEMO::Test
