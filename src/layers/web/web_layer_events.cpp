#include "layers/web/web_layer.h"

#include "layers/deck/on_screen_keyboard.h"

// What the layer's window reports, on that window's thread. Input goes to the browser and is dropped before there is
// one.
namespace ZEMO::UI {

void WebLayer::onSize(const RECT& /*client*/, int /*width*/, int /*height*/) {
    withBrowser([&](const CefRefPtr<CefBrowser>&) { adapter->onWindowResized(); });
}

void WebLayer::onMaximizeRestore() {
    withBrowser([&](const CefRefPtr<CefBrowser>&) { adapter->startWiggleResize(); });
}

void WebLayer::onDestroy() {
    if (const auto handler = layerDestroyHandler.get()) handler();
    adapter->markClosing();
}

void WebLayer::onKillFocus() {
    withBrowser([](const CefRefPtr<CefBrowser>&) { hideOnScreenKeyboard(); });
}

void WebLayer::onClose() {
    if (const auto handler = windowCloseHandler.get()) handler();
}

void WebLayer::onMouseButton(int button, bool up, int x, int y) {
    withBrowser(
        [&](const CefRefPtr<CefBrowser>& browser) { adapter->getInput().sendMouseClick(browser, button, up, x, y); });
}

void WebLayer::onMouseMove(int x, int y, uint32_t modifiers) {
    withBrowser(
        [&](const CefRefPtr<CefBrowser>& browser) { adapter->getInput().sendMouseMove(browser, x, y, modifiers); });
}

void WebLayer::onMouseWheel(WPARAM wParam, int x, int y, bool horizontal, bool clientCoordinates) {
    withBrowser([&](const CefRefPtr<CefBrowser>& browser) {
        adapter->getInput().sendMouseWheel(browser, wParam, x, y, horizontal, clientCoordinates);
    });
}

void WebLayer::onKey(UINT message, WPARAM wParam, LPARAM lParam) {
    withBrowser(
        [&](const CefRefPtr<CefBrowser>& browser) { adapter->getInput().sendKey(browser, message, wParam, lParam); });
}

void WebLayer::onPointer(UINT message, uint32_t pointerId, int x, int y) {
    withBrowser([&](const CefRefPtr<CefBrowser>& browser) {
        adapter->getInput().sendTouch(browser, pointerId, x, y, message);
    });
}

void WebLayer::onImeSetContext() {
    if (adapter) adapter->getIme().onImeSetContext();
}

void WebLayer::onImeStartComposition() {
    if (adapter) adapter->getIme().onImeStartComposition();
}

void WebLayer::onImeComposition(LPARAM flags) {
    if (adapter) adapter->getIme().onImeComposition(adapter->getBrowser(), flags);
}

void WebLayer::onImeEndComposition() {
    if (adapter) adapter->getIme().onImeEndComposition(adapter->getBrowser());
}

void WebLayer::onImeFocusChange(bool enable) {
    if (adapter) adapter->getIme().onImeFocusChange(enable);
}

void WebLayer::onImeBoundsChanged() {
    if (adapter) adapter->getIme().onImeBoundsChanged();
}

bool WebLayer::onImeQueryCharPosition(IMECHARPOSITION* position) {
    return adapter && adapter->getIme().onImeQueryCharPosition(position);
}

void WebLayer::onExternalText(const std::string& text) {
    withBrowser([&](const CefRefPtr<CefBrowser>& browser) { adapter->getIme().commitImeText(browser, text); });
}

}  // namespace ZEMO::UI
