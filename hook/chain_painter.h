#pragma once

#include <windows.h>

#include <dxgi.h>

#include <atomic>

#include "com.h"
#include "page_picture.h"

namespace ZEMO::GraphicsHook {

/// Draws the page into the back buffers of one swap chain, whatever the API.
///
/// It hangs on its chain as private data: the chain's end gives it back. Thread: the one that presents.
class ChainPainter : public IUnknown {
public:
    /// Answers null where the chain's device can't be had.
    using Make = Com<ChainPainter>(IDXGISwapChain* chain);
    /// The painter of `chain`, made with the first frame.
    static Com<ChainPainter> of(IDXGISwapChain* chain, Make* make);

    /// Whether this frame can be drawn into; asked before each, with no lock held, so it may wait a little.
    virtual bool isReady() = 0;
    virtual void paint(IDXGISwapChain* chain, HWND window, PagePicture::Content& content) = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override;

protected:
    virtual ~ChainPainter() = default;

private:
    std::atomic<ULONG> references{1};
};

/// What `chain` has for a device of that API; null when it is of another.
template <class Device>
Com<Device> deviceOf(IDXGISwapChain* chain) {
    Com<Device> device;
    if (FAILED(chain->GetDevice(__uuidof(Device), device.putVoid()))) return {};
    return device;
}

/// A page's values are the display's own: a target that converts to sRGB would brighten them.
DXGI_FORMAT withoutConversion(DXGI_FORMAT format);

}  // namespace ZEMO::GraphicsHook
