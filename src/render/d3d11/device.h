#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "render/d3d11/context.h"
#include "render/d3d11/effect.h"
#include "render/d3d11/geometry.h"
#include "render/d3d11/swap_chain.h"
#include "render/d3d11/texture_2d.h"

// A thin object layer over Direct3D 11 and DXGI: every COM object sits in a shared pointer that releases it, what can't
// be made is an empty pointer, and the next step skips its work. Nothing throws, and little is logged.
namespace ZEMO::UI::D3D11 {

/// The graphics device and everything that is made on it.
///
/// Threads: creation on any; calls of the context belong to the render thread.
class Device {
public:
    /// On the default adapter; empty where Direct3D 11 is not to be had.
    static std::shared_ptr<Device> create();

    ID3D11Device* get() const { return device.get(); }
    const SharedContext& immediateContext() const { return context; }

    /// A side below 1 means the client area's. Also takes `target` for the close button's place.
    std::shared_ptr<SwapChain> createSwapChain(HWND target, int width, int height);
    /// Fractions of the client area, y downward. For the close button they are ignored: it has its place.
    std::shared_ptr<Geometry> createQuad(float x, float y, float width, float height, bool forCloseButton, bool flip);
    /// Without `initialData` the texture can be written again and again; with it, of rows `rowPitch` bytes apart,
    /// never.
    std::shared_ptr<Texture2D> createTexture(int width, int height, DXGI_FORMAT format, const void* initialData,
                                             int rowPitch);
    std::shared_ptr<Effect> createDefaultEffect();
    std::shared_ptr<Effect> createEffect(const std::string& vertexSource, const char* vertexEntry,
                                         const char* vertexModel, const std::string& pixelSource,
                                         const char* pixelEntry, const char* pixelModel);
    std::shared_ptr<ID3DBlob> compileShader(const std::string& source, const char* entry, const char* model);

private:
    Device(std::shared_ptr<ID3D11Device> made, std::shared_ptr<ID3D11DeviceContext> immediate);

    void scaleCloseButton();
    std::shared_ptr<IDXGIAdapter> adapter() const;
    std::shared_ptr<IDXGISwapChain> createChain(IDXGIFactory1& factory, int width, int height) const;
    std::shared_ptr<SwapChain> completeChain(const std::shared_ptr<IDXGISwapChain>& chain, int width, int height);
    std::shared_ptr<ID3D11SamplerState> createSampler() const;
    std::shared_ptr<ID3D11InputLayout> createInputLayout(ID3DBlob& vertexShader) const;
    std::string adapterName() const;

    HMODULE compilerModule;  ///< never unloaded
    std::shared_ptr<ID3D11Device> device;
    SharedContext context;
    HWND window = nullptr;
    // The close button's measures in device pixels, once there is a window.
    float closeMargin;
    int32_t scaledWidthThreshold;
    int32_t closeSizeWide;
    int32_t closeSizeNarrow;
};

}  // namespace ZEMO::UI::D3D11
