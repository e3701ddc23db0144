#pragma once

#include <windows.h>

#include <d3d11_1.h>

#include "com.h"
#include "hook/hook_stage.h"

namespace ZEMO::Test {

/// A game that draws one colour with Direct3D 11, on the thread of its window.
class D3D11Game {
public:
    static constexpr char kName[] = "Direct3D11";
    static constexpr int kCycles = 500;
    static constexpr size_t kComeAndGo = 0;
    static constexpr size_t kContextsKept = kCycles;  ///< Wine may keep one of each swap chain, without a page too

    explicit D3D11Game(HWND gameWindow);

    /// Draws and presents.
    void present();
    /// Presents what is there.
    HRESULT swap() { return chain->Present(0, 0); }
    HRESULT resize(UINT width, UINT height) { return chain->ResizeBuffers(0, width, height, DXGI_FORMAT_UNKNOWN, 0); }
    /// The frame gets the window's size. False when something of ours or the hook's still holds it.
    bool followWindow();
    /// As after a change of settings: another swap chain for the same window.
    void remake();
    /// Gives all up; answers how many references to the device are left.
    size_t end();
    /// References to the device: its own holders, and one of each object that lives on it.
    size_t liveObjects() const;
    /// Each frame is read as it goes to the screen: the system's Present is watched, before the module knows its place.
    void watchFrames(HMODULE hookModule);
    static Presented& presented();

    bool isThere() const { return static_cast<bool>(chain); }
    ID3D11Device* getDevice() const { return device.get(); }
    ID3D11DeviceContext* getContext() const { return context.get(); }

private:
    HWND window;
    GraphicsHook::Com<ID3D11Device> device;
    GraphicsHook::Com<ID3D11DeviceContext> context;
    GraphicsHook::Com<IDXGISwapChain> chain;
};

}  // namespace ZEMO::Test
