#include "dxgi_hook.h"

#include <d3d11.h>
#include <d3d12.h>
#include <dxgi1_2.h>

#include "d3d11_painter.h"
#include "d3d12_painter.h"
#include "d3d12_queue.h"
#include "game_frames.h"
#include "log.h"
#include "page_picture.h"
#include "patch.h"
#include "probe_chains.h"

// The functions of a swap chain stand in a table that all chains of one API share, so one chain of our own, made and
// dropped at once, leads to them, and chains that the game makes later or anew are reached without further work.
// Direct3D 11 and 12 have one table on Windows and two under Wine; the chain's device tells the two apart.
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

/// A table of functions, with what stood in it.
struct ChainTable {
    void* place = nullptr;
    PresentFunction* present = nullptr;
    Present1Function* present1 = nullptr;
};
ChainTable tableOf11, tableOf12;

thread_local bool isInsidePresent = false;  // one Present may call the other

RenderingMode apiOf(IDXGISwapChain* chain) {
    if (deviceOf<ID3D11Device>(chain)) return RenderingMode::D3D11;
    return deviceOf<ID3D12Device>(chain) ? RenderingMode::D3D12 : RenderingMode::Unknown;
}

void drawPage(IDXGISwapChain* chain) {
    const RenderingMode api = apiOf(chain);
    if (api == RenderingMode::Unknown || !mayTakePage(api)) return;
    DXGI_SWAP_CHAIN_DESC description{};
    if (FAILED(chain->GetDesc(&description))) return;
    if (!takesPage(api, description.OutputWindow)) return;
    const auto make = api == RenderingMode::D3D11 ? &D3D11Painter::make : &D3D12Painter::make;
    const Com<ChainPainter> painter = ChainPainter::of(chain, make);
    if (!painter || !painter->isReady()) return;
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

template <ChainTable& table>
HRESULT STDMETHODCALLTYPE present(IDXGISwapChain* chain, UINT interval, UINT flags) {
    return presentWithPage(chain, flags, [&] { return table.present(chain, interval, flags); });
}

template <ChainTable& table>
HRESULT STDMETHODCALLTYPE present1(IDXGISwapChain1* chain, UINT interval, UINT flags,
                                   const DXGI_PRESENT_PARAMETERS* parameters) {
    return presentWithPage(chain, flags, [&] { return table.present1(chain, interval, flags, parameters); });
}

void** tableAt(IUnknown* object) { return *reinterpret_cast<void***>(object); }

template <ChainTable& table>
void patchChains(IDXGISwapChain* chain) {
    Com<IDXGISwapChain1> newer;
    chain->QueryInterface(__uuidof(IDXGISwapChain1), newer.putVoid());
    table.present = reinterpret_cast<PresentFunction*>(tableAt(chain)[kPresent]);
    if (newer) table.present1 = reinterpret_cast<Present1Function*>(tableAt(newer.get())[kPresent1]);
    table.place = tableAt(chain);
    if (newer) patchTable(newer.get(), kPresent1, reinterpret_cast<void*>(&present1<table>));
    if (!patchTable(chain, kPresent, reinterpret_cast<void*>(&present<table>)))
        logLine("the swap chain's table is not ours");
}

template <ChainTable& table>
void patchIfNew(IDXGISwapChain* chain, const ChainTable& other) {
    if (tableAt(chain) != other.place) patchChains<table>(chain);
}

void hookD3D11() {
    const HiddenWindow window;
    if (const Com<IDXGISwapChain> chain = probeD3D11(window)) patchIfNew<tableOf11>(chain.get(), tableOf12);
}

void hookD3D12() {
    const HiddenWindow window;
    const D3D12Probe probe = probeD3D12(window);
    if (!probe.chain) return logLine("there is no Direct3D 12 here");
    watchQueues(probe.queue.get());
    patchIfNew<tableOf12>(probe.chain.get(), tableOf11);
}

/// True once, when the game has loaded `library`.
bool isToBeHooked(const wchar_t* library, bool& isHooked) {
    return !isHooked && GetModuleHandleW(library) && (isHooked = true);
}

}  // namespace

// Direct3D 12 first: its games may have loaded 11 too, and where both have one table their first frame ends the search.
void hookDxgi() {
    static bool isTwelveHooked = false;
    static bool isElevenHooked = false;
    if (isToBeHooked(L"d3d12.dll", isTwelveHooked)) return hookD3D12();
    if (isToBeHooked(L"d3d11.dll", isElevenHooked)) hookD3D11();
}

}  // namespace ZEMO::GraphicsHook
