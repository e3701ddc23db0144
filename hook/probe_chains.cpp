#include "probe_chains.h"

#include <d3d11.h>
#include <dxgi1_2.h>

namespace ZEMO::GraphicsHook {
namespace {

/// Of a library that the game may have loaded.
template <class Function>
Function loaded(const wchar_t* library, const char* name) {
    const HMODULE module = GetModuleHandleW(library);
    return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

DXGI_SWAP_CHAIN_DESC smallChain(HWND window) {
    DXGI_SWAP_CHAIN_DESC wanted{};
    wanted.BufferDesc = {8, 8, {0, 1}, DXGI_FORMAT_B8G8R8A8_UNORM, {}, {}};
    wanted.SampleDesc.Count = 1;
    wanted.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    wanted.BufferCount = 1;
    wanted.OutputWindow = window;
    wanted.Windowed = TRUE;
    return wanted;
}

Com<ID3D12CommandQueue> probeQueue() {
    Com<ID3D12CommandQueue> queue;
    const auto create = loaded<PFN_D3D12_CREATE_DEVICE>(L"d3d12.dll", "D3D12CreateDevice");
    Com<ID3D12Device> device;
    if (!create || FAILED(create(nullptr, D3D_FEATURE_LEVEL_11_0, __uuidof(ID3D12Device), device.putVoid())))
        return queue;
    const D3D12_COMMAND_QUEUE_DESC direct{};
    device->CreateCommandQueue(&direct, __uuidof(ID3D12CommandQueue), queue.putVoid());
    return queue;
}

}  // namespace

Com<IDXGISwapChain> probeD3D11(const HiddenWindow& window) {
    Com<IDXGISwapChain> chain;
    const auto create = loaded<PFN_D3D11_CREATE_DEVICE_AND_SWAP_CHAIN>(L"d3d11.dll", "D3D11CreateDeviceAndSwapChain");
    if (!create) return chain;
    const DXGI_SWAP_CHAIN_DESC wanted = smallChain(window.get());
    for (const D3D_DRIVER_TYPE driver : {D3D_DRIVER_TYPE_HARDWARE, D3D_DRIVER_TYPE_WARP}) {
        if (SUCCEEDED(create(nullptr, driver, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &wanted, chain.put(), nullptr,
                             nullptr, nullptr)))
            break;
    }
    return chain;
}

D3D12Probe probeD3D12(const HiddenWindow& window) {
    D3D12Probe probe{probeQueue(), {}};
    using CreateFactory = HRESULT WINAPI(REFIID, void**);
    const auto create = loaded<CreateFactory*>(L"dxgi.dll", "CreateDXGIFactory1");
    Com<IDXGIFactory> factory;
    if (!probe.queue || !create || FAILED(create(__uuidof(IDXGIFactory), factory.putVoid()))) return {};
    DXGI_SWAP_CHAIN_DESC wanted = smallChain(window.get());
    wanted.BufferCount = 2;
    wanted.SwapEffect = DXGI_SWAP_EFFECT_FLIP_DISCARD;
    factory->CreateSwapChain(probe.queue.get(), &wanted, probe.chain.put());
    return probe;
}

}  // namespace ZEMO::GraphicsHook
