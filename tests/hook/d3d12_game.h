#pragma once

#include <windows.h>

#include <d3d12.h>
#include <dxgi1_4.h>

#include "com.h"
#include "hook/hook_stage.h"

namespace ZEMO::Test {

/// A game that draws one colour with Direct3D 12, on the thread of its window. It waits for each frame.
class D3D12Game {
public:
    static constexpr char kName[] = "Direct3D12";
    static constexpr int kCycles = 50;       // a chain costs the software driver much time
    static constexpr size_t kComeAndGo = 3;  ///< what a frame in flight has once it has carried pixels
    static constexpr size_t kContextsKept = 0;

    explicit D3D12Game(HWND gameWindow);
    ~D3D12Game() { end(); }
    D3D12Game(const D3D12Game&) = delete;
    D3D12Game& operator=(const D3D12Game&) = delete;

    /// Draws and presents.
    void present();
    void draw();
    /// Presents what is there.
    HRESULT swap() { return chain->Present(0, 0); }
    HRESULT resize(UINT width, UINT height, DXGI_FORMAT format = DXGI_FORMAT_UNKNOWN) {
        return chain->ResizeBuffers(0, width, height, format, 0);
    }
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
    /// Whether frames are read, which waits for each.
    static void setReading(bool read);
    static Presented& presented();

    bool isThere() const { return static_cast<bool>(chain); }
    ID3D12Device* getDevice() const { return device.get(); }
    ID3D12CommandQueue* getQueue() const { return queue.get(); }
    ID3D12GraphicsCommandList* getList() const { return list.get(); }

private:
    void fill(ID3D12Resource* buffer);
    void read(ID3D12Resource* buffer);
    void execute();
    GraphicsHook::Com<ID3D12Resource> backBuffer() const;
    static HRESULT STDMETHODCALLTYPE readAndPresent(IDXGISwapChain* any, UINT interval, UINT flags);

    HWND window;
    GraphicsHook::Com<ID3D12Device> device;
    GraphicsHook::Com<ID3D12CommandQueue> queue;
    GraphicsHook::Com<ID3D12CommandAllocator> allocator;
    GraphicsHook::Com<ID3D12GraphicsCommandList> list;
    GraphicsHook::Com<ID3D12DescriptorHeap> targets;
    GraphicsHook::Com<ID3D12Fence> fence;
    UINT64 signalled = 0;
    GraphicsHook::Com<IDXGISwapChain3> chain;
};

}  // namespace ZEMO::Test
