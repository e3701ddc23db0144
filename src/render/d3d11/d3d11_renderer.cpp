#include "render/d3d11/d3d11_renderer.h"

#include "core/log.h"
#include "render/d3d11/close_icon.h"
#include "render/d3d11/draw.h"

namespace ZEMO::UI {
namespace {

// Behind what a page leaves transparent.
constexpr float kRed = 237.0f / 255, kGreen = 238.0f / 255, kBlue = 246.0f / 255;

SIZE clientSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right - client.left, client.bottom - client.top};
}

/// Over what is there, by the source's alpha; `source` says whether its colours hold the alpha already.
std::shared_ptr<ID3D11BlendState> createBlend(const D3D11::Device& device, D3D11_BLEND source) {
    D3D11_BLEND_DESC description{};
    description.RenderTarget[0] = {TRUE,
                                   source,
                                   D3D11_BLEND_INV_SRC_ALPHA,
                                   D3D11_BLEND_OP_ADD,
                                   source,
                                   D3D11_BLEND_INV_SRC_ALPHA,
                                   D3D11_BLEND_OP_ADD,
                                   D3D11_COLOR_WRITE_ENABLE_ALL};
    ID3D11BlendState* state = nullptr;
    if (FAILED(device.get()->CreateBlendState(&description, &state))) return {};
    return Core::adoptCom(state);
}

}  // namespace

D3D11Renderer::D3D11Renderer(HWND viewWindow, bool closeButton)
    : device(D3D11::Device::create()), hasCloseButton(closeButton), window(viewWindow) {
    if (device) swapChain = device->createSwapChain(window, 0, 0);
    const SIZE client = clientSize(window);
    clientWidth = client.cx;
    clientHeight = client.cy;
    viewBuffer = std::make_shared<D3D11::FrameBuffer>(device);
    closeBuffer = std::make_shared<D3D11::FrameBuffer>(device);
    popupBuffer = std::make_shared<D3D11::FrameBuffer>(device);
    if (device) createBlendStates();
    if (hasCloseButton) loadCloseButton();
}

void D3D11Renderer::createBlendStates() {
    premultipliedBlend = createBlend(*device, D3D11_BLEND_ONE);
    alphaBlend = createBlend(*device, D3D11_BLEND_SRC_ALPHA);
}

void D3D11Renderer::loadCloseButton() {
    const D3D11::CloseIcon& icon = D3D11::closeIcon();
    if (icon.pixels) closeBuffer->onPaint(icon.pixels.get(), icon.width, icon.height, true);
}

void D3D11Renderer::onPaint(PaintElementType type, const RectList& /*dirtyRects*/, const void* buffer, int width,
                            int height) {
    const auto& target = type == PET_VIEW ? viewBuffer : popupBuffer;
    target->onPaint(buffer, width, height, false);
}

void D3D11Renderer::onPopupShow(CefRefPtr<CefBrowser> /*browser*/, bool show) {
    Core::logDebugA("%s popup\n", show ? "show" : "hide");
    const std::lock_guard guard(popupLock);
    popupLayer.reset();
    if (show && device && popupBuffer) popupLayer = std::make_shared<D3D11::PopupLayer>(device, popupBuffer);
}

std::shared_ptr<D3D11::PopupLayer> D3D11Renderer::currentPopup() {
    const std::lock_guard guard(popupLock);
    return popupLayer;
}

void D3D11Renderer::onPopupSize(CefRefPtr<CefBrowser> /*browser*/, const CefRect& rect) {
    Core::logDebugA("size popup - %d,%d  %dx%d\n", rect.x, rect.y, rect.width, rect.height);
    const auto popup = currentPopup();
    const auto width = static_cast<float>(clientWidth.load());
    const auto height = static_cast<float>(clientHeight.load());
    if (!popup || width == 0 || height == 0) return;
    popup->place(static_cast<float>(rect.x) / width, static_cast<float>(rect.y) / height,
                 static_cast<float>(rect.width) / width, static_cast<float>(rect.height) / height);
}

void D3D11Renderer::render(bool* needResize) {
    if (!device || !device->immediateContext() || !swapChain) return;
    const D3D11::SharedContext& context = device->immediateContext();
    swapChain->bind(context);
    swapChain->setBlendState(premultipliedBlend);
    if (*needResize) followClientSize(needResize);
    swapChain->clear(kRed, kGreen, kBlue, 1);
    renderPage(context);
    if (hasCloseButton) {
        swapChain->setBlendState(alphaBlend);
        renderLayer(context, closeBuffer->swap(context), true);
    }
    swapChain->present(1);
}

// A minimised window has no size: the request waits for one.
void D3D11Renderer::followClientSize(bool* needResize) {
    const SIZE client = clientSize(window);
    if (client.cx == 0 || client.cy == 0) return;
    *needResize = false;
    clientWidth = client.cx;
    clientHeight = client.cy;
    swapChain->resize(client.cx, client.cy);
}

void D3D11Renderer::renderPage(const D3D11::SharedContext& context) {
    renderLayer(context, viewBuffer->swap(context), false);
    if (const auto popup = currentPopup()) popup->render(context);
}

void D3D11Renderer::renderLayer(const D3D11::SharedContext& context, const std::shared_ptr<D3D11::Texture2D>& texture,
                                bool isCloseButton) {
    quad = device->createQuad(0, 0, 1, 1, isCloseButton, true);
    if (quad && texture) D3D11::drawTextured(*device, effect, *quad, *texture, context);
}

}  // namespace ZEMO::UI
