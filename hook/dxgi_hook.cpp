#include "dxgi_hook.h"

#include <d3d11.h>
#include <d3d12.h>
#include <dxgi1_2.h>

#include "com.h"
#include "d3d11_painter.h"
#include "game_frames.h"
#include "log.h"
#include "page_picture.h"
#include "patch.h"

// The functions of a swap chain stand in a table that all chains of the process share, so one chain of our own, made
// and dropped at once, leads to them, and chains that the game makes later or anew are reached without further work.
// The chain of a Direct3D 12 game has the same functions on Windows; its device tells the two apart.
//
// What a painter needs hangs on the chain itself as private data and goes with it: no list of chains, nothing that
// keeps one alive, and nothing of the back buffers is held from one frame to the next, so that ResizeBuffers finds them
// free.
namespace ZEMO::GraphicsHook {
namespace {

using UI::RenderingMode;

// Places in the table of IDXGISwapChain1.
constexpr size_t kPresent = 8;
constexpr size_t kPresent1 = 22;

using PresentFunction = HRESULT STDMETHODCALLTYPE(IDXGISwapChain*, UINT, UINT);
using Present1Function = HRESULT STDMETHODCALLTYPE(IDXGISwapChain1*, UINT, UINT, const DXGI_PRESENT_PARAMETERS*);

PresentFunction* systemPresent = nullptr;
Present1Function* systemPresent1 = nullptr;
thread_local bool isInsidePresent = false;  // one Present may call the other

RenderingMode apiOf(IDXGISwapChain* chain) {
    Com<ID3D11Device> eleven;
    if (SUCCEEDED(chain->GetDevice(__uuidof(ID3D11Device), eleven.putVoid()))) return RenderingMode::D3D11;
    Com<ID3D12Device> twelve;
    if (SUCCEEDED(chain->GetDevice(__uuidof(ID3D12Device), twelve.putVoid()))) return RenderingMode::D3D12;
    return RenderingMode::Unknown;
}

void drawPage(IDXGISwapChain* chain) {
    const RenderingMode api = apiOf(chain);
    if (api == RenderingMode::Unknown || !mayTakePage(api) || api != RenderingMode::D3D11) return;
    DXGI_SWAP_CHAIN_DESC description{};
    if (FAILED(chain->GetDesc(&description))) return;
    if (!takesPage(RenderingMode::D3D11, description.OutputWindow)) return;
    const Com<D3D11Painter> painter = D3D11Painter::of(chain);
    if (!painter) return;
    pagePicture().visit(
        [&](PagePicture::Content& content) { painter->paint(chain, description.OutputWindow, content); });
}

// With the API known and no page shown, a present costs two loads.
bool isOfNoUse(UINT flags) {
    if (isInsidePresent || (flags & DXGI_PRESENT_TEST)) return true;
    return gameApi() != RenderingMode::Unknown && !mayTakePage(gameApi());
}

template <class Present>
HRESULT presentWithPage(IDXGISwapChain* chain, UINT flags, Present&& present) {
    if (isOfNoUse(flags)) return present();
    isInsidePresent = true;
    drawPage(chain);
    const HRESULT result = present();
    isInsidePresent = false;
    return result;
}

HRESULT STDMETHODCALLTYPE present(IDXGISwapChain* chain, UINT interval, UINT flags) {
    return presentWithPage(chain, flags, [&] { return systemPresent(chain, interval, flags); });
}

HRESULT STDMETHODCALLTYPE present1(IDXGISwapChain1* chain, UINT interval, UINT flags,
                                   const DXGI_PRESENT_PARAMETERS* parameters) {
    return presentWithPage(chain, flags, [&] { return systemPresent1(chain, interval, flags, parameters); });
}

/// A window that nobody sees.
class HiddenWindow {
public:
    ~HiddenWindow() { DestroyWindow(window); }
    HWND get() const { return window; }

private:
    HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
};

Com<IDXGISwapChain> chainOfOurOwn(HWND window) {
    Com<IDXGISwapChain> chain;
    const auto create = reinterpret_cast<PFN_D3D11_CREATE_DEVICE_AND_SWAP_CHAIN>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"d3d11.dll"), "D3D11CreateDeviceAndSwapChain")));
    if (!create) return chain;
    DXGI_SWAP_CHAIN_DESC wanted{};
    wanted.BufferDesc = {8, 8, {0, 1}, DXGI_FORMAT_B8G8R8A8_UNORM, {}, {}};
    wanted.SampleDesc.Count = 1;
    wanted.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    wanted.BufferCount = 1;
    wanted.OutputWindow = window;
    wanted.Windowed = TRUE;
    for (const D3D_DRIVER_TYPE driver : {D3D_DRIVER_TYPE_HARDWARE, D3D_DRIVER_TYPE_WARP}) {
        if (SUCCEEDED(create(nullptr, driver, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &wanted, chain.put(), nullptr,
                             nullptr, nullptr)))
            break;
    }
    return chain;
}

void patchChains(IDXGISwapChain* chain) {
    systemPresent = reinterpret_cast<PresentFunction*>((*reinterpret_cast<void***>(chain))[kPresent]);
    Com<IDXGISwapChain1> newer;
    if (SUCCEEDED(chain->QueryInterface(__uuidof(IDXGISwapChain1), newer.putVoid()))) {
        systemPresent1 = reinterpret_cast<Present1Function*>((*reinterpret_cast<void***>(newer.get()))[kPresent1]);
        patchTable(newer.get(), kPresent1, reinterpret_cast<void*>(&present1));
    }
    if (!patchTable(chain, kPresent, reinterpret_cast<void*>(&present))) logLine("the swap chain's table is not ours");
}

}  // namespace

void hookDxgi() {
    if (systemPresent || !GetModuleHandleW(L"d3d11.dll")) return;
    const HiddenWindow window;
    if (const Com<IDXGISwapChain> chain = chainOfOurOwn(window.get())) patchChains(chain.get());
}

}  // namespace ZEMO::GraphicsHook
