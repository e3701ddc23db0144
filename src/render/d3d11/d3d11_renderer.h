#pragma once

#include <windows.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "render/d3d11/frame_buffer.h"
#include "render/d3d11/popup_layer.h"
#include "render/osr_renderer.h"

namespace ZEMO::UI {

/// Draws one view into a window by Direct3D 11. What can't be made is left out of the picture; without a device nothing
/// is drawn. A device that the system has taken away stays away for this renderer.
///
/// Threads: paint and popup calls on the engine's, render on the view's render thread. Frames cross in FrameBuffer.
class D3D11Renderer final : public IOsrRenderer {
public:
    D3D11Renderer(HWND viewWindow, bool closeButton);

    /// The whole picture is taken, whatever `dirtyRects` say.
    void onPaint(PaintElementType type, const RectList& dirtyRects, const void* buffer, int width, int height) override;
    void onPopupShow(CefRefPtr<CefBrowser> browser, bool show) override;
    void onPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) override;
    void render(bool* needResize) override;
    // The popup is a layer of its own here: the view is refreshed while one is up, and its frame comes by itself.
    void getPopupRect(CefRect* out) override { *out = {}; }
    void clearPopupRects() override {}
    bool isPopupRectEmpty() override { return true; }
    void onViewHidden() override {}

private:
    void createBlendStates();
    void loadCloseButton();
    std::shared_ptr<D3D11::PopupLayer> currentPopup();
    void followClientSize(bool* needResize);
    void renderPage(const D3D11::SharedContext& context);
    void renderLayer(const D3D11::SharedContext& context, const std::shared_ptr<D3D11::Texture2D>& texture,
                     bool isCloseButton);

    std::shared_ptr<D3D11::Geometry> quad;  ///< render thread
    std::shared_ptr<D3D11::Effect> effect;  ///< render thread
    std::shared_ptr<D3D11::Device> device;
    std::shared_ptr<D3D11::SwapChain> swapChain;
    std::shared_ptr<D3D11::FrameBuffer> viewBuffer;
    std::shared_ptr<D3D11::FrameBuffer> closeBuffer;
    bool hasCloseButton;
    std::shared_ptr<D3D11::FrameBuffer> popupBuffer;
    HWND window;
    std::shared_ptr<D3D11::PopupLayer> popupLayer;  ///< under popupLock
    std::mutex popupLock;
    // Written by the render thread, read by the engine's.
    std::atomic<int> clientWidth{0};
    std::atomic<int> clientHeight{0};
    std::shared_ptr<ID3D11BlendState> premultipliedBlend;  ///< pages
    std::shared_ptr<ID3D11BlendState> alphaBlend;          ///< the close icon
};

}  // namespace ZEMO::UI
