#include "chain_painter.h"

namespace ZEMO::GraphicsHook {
namespace {

// {5C0E4D5A-0F0B-4B39-9C59-6E2B3C7C5A11}: the painter among a swap chain's private data.
constexpr GUID kPainterId{0x5c0e4d5a, 0x0f0b, 0x4b39, {0x9c, 0x59, 0x6e, 0x2b, 0x3c, 0x7c, 0x5a, 0x11}};

}  // namespace

Com<ChainPainter> ChainPainter::of(IDXGISwapChain* chain, Make* make) {
    Com<ChainPainter> painter;
    IUnknown* found = nullptr;
    UINT size = sizeof(IUnknown*);
    if (SUCCEEDED(chain->GetPrivateData(kPainterId, &size, static_cast<void*>(&found))) && found) {
        *painter.put() = static_cast<ChainPainter*>(found);
        return painter;
    }
    painter = make(chain);
    if (!painter || FAILED(chain->SetPrivateDataInterface(kPainterId, static_cast<IUnknown*>(painter.get()))))
        return {};
    return painter;
}

HRESULT STDMETHODCALLTYPE ChainPainter::QueryInterface(REFIID id, void** object) {
    *object = nullptr;
    if (id != __uuidof(IUnknown)) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IUnknown*>(this);
    return S_OK;
}

ULONG STDMETHODCALLTYPE ChainPainter::Release() {
    const ULONG left = --references;
    if (left == 0) delete this;
    return left;
}

DXGI_FORMAT withoutConversion(DXGI_FORMAT format) {
    switch (format) {
        case DXGI_FORMAT_R8G8B8A8_UNORM_SRGB:
            return DXGI_FORMAT_R8G8B8A8_UNORM;
        case DXGI_FORMAT_B8G8R8A8_UNORM_SRGB:
            return DXGI_FORMAT_B8G8R8A8_UNORM;
        default:
            return format;
    }
}

}  // namespace ZEMO::GraphicsHook
