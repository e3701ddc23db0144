#pragma once

#include <windows.h>

#include <d3d12.h>
#include <dxgi.h>

#include "com.h"

// Swap chains that nobody sees: all chains of one API share their table of functions with ours.
namespace ZEMO::GraphicsHook {

/// A window that nobody sees; it outlives its chain.
class HiddenWindow {
public:
    HiddenWindow() = default;
    ~HiddenWindow() { DestroyWindow(window); }
    HiddenWindow(const HiddenWindow&) = delete;
    HiddenWindow& operator=(const HiddenWindow&) = delete;
    HWND get() const { return window; }

private:
    HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
};

struct D3D12Probe {
    Com<ID3D12CommandQueue> queue;
    Com<IDXGISwapChain> chain;
};

/// Null where the game has not loaded Direct3D 11 or no device can be made. Costs a device.
Com<IDXGISwapChain> probeD3D11(const HiddenWindow& window);
/// The same for Direct3D 12.
D3D12Probe probeD3D12(const HiddenWindow& window);

}  // namespace ZEMO::GraphicsHook
