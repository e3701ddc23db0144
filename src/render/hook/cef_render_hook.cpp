#include "render/hook/cef_render_hook.h"

#include <mutex>
#include <type_traits>

#include "core/log.h"
#include "include/cef_browser.h"
#include "render/hook/graphics_hooker.h"
#include "render/rendering_mode.h"

namespace ZEMO::UI {
namespace {

// The module reads the engine's own list in place: the frame's path copies nothing.
static_assert(std::is_standard_layout_v<CefRect> && sizeof(CefRect) == sizeof(Hook::DirtyRect));
static_assert(sizeof(RectList) == sizeof(Hook::RectList));
static_assert(int{PET_VIEW} == int{Hook::PET_VIEW} && int{PET_POPUP} == int{Hook::PET_POPUP});

const Hook::RectList* asModuleSees(const RectList& rects) { return reinterpret_cast<const Hook::RectList*>(&rects); }

IRenderHookRenderer* currentRenderer() { return ZEMOGraphicsHooker::instance().getRenderer(); }

IRenderHookPopup* currentPopup() {
    IRenderHookRenderer* const renderer = currentRenderer();
    return renderer ? renderer->getPopupRenderer() : nullptr;
}

}  // namespace

CefRenderHook::CefRenderHook(HMODULE module, uint32_t sleepTime) : hookModule(module) {
    static std::once_flag attached;
    std::call_once(attached, [&] { ZEMOGraphicsHooker::instance().attach(module, sleepTime); });
}

void CefRenderHook::tick(uint32_t openGlSleepTime) {
    if (!hookModule || getRenderingMode() != RenderingMode::Unknown) return;
    ZEMOGraphicsHooker::instance().attach(hookModule, openGlSleepTime);
}

bool CefRenderHook::needsRepaint() {
    if (!currentRenderer()) return false;
    IRenderHookPopup* const popup = currentPopup();
    return !popup || popup->isEmpty();
}

void CefRenderHook::onViewClosed() {
    if (IRenderHookRenderer* const renderer = currentRenderer()) renderer->setFrameActive(false);
    Core::logDebugA("html view is close\n");
}

bool CefRenderHook::paint(bool drawCloseButton, CefRefPtr<CefBrowser> browser, PaintElementType type,
                          const RectList& dirtyRects, const void* buffer, int width, int height) {
    IRenderHookRenderer* const renderer = currentRenderer();
    if (!renderer) return false;
    const auto element = static_cast<Hook::PaintElementType>(type);
    const Hook::RectList* const rects = asModuleSees(dirtyRects);
    renderer->prepareFrame(drawCloseButton, element, rects);
    renderer->setFrameActive(true);
    renderer->onPaint(element, rects, buffer, width, height);
    IRenderHookPopup* const popup = renderer->getPopupRenderer();
    // A popup over a changing view gets a fresh frame.
    if (popup && type == PET_VIEW && !popup->isEmpty()) browser->GetHost()->Invalidate(PET_POPUP);
    return false;
}

void CefRenderHook::onResized() {
    if (IRenderHookRenderer* const renderer = currentRenderer()) renderer->setNeedResize(true);
}

void CefRenderHook::onPopupShow(bool show) {
    IRenderHookPopup* const popup = currentPopup();
    if (!popup) return;
    if (!show) popup->clear();
    popup->setVisible(show);
}

void CefRenderHook::onPopupRect(const Rect16& ltrb) {
    if (IRenderHookPopup* const popup = currentPopup()) popup->setRect(&ltrb);
}

}  // namespace ZEMO::UI
