#include "api/zemo_web_view_window.h"

#include <windows.h>

#include <combaseapi.h>

#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "controller/controller_scripts.h"
#include "core/game_callback.h"
#include "core/module_paths.h"
#include "core/never_destroyed.h"
#include "core/process_end.h"
#include "engine/cef_context_handler.h"
#include "layers/layer_manager.h"
#include "layers/web/web_layer.h"
#include "render/pixel_scale.h"

namespace ZEMO::UI {
namespace {

constexpr int kModeLayer = 0;
constexpr int kModeWindow = 1;

// Ties an answer to its request. Empty when the system has no identifier to give.
std::string makeRequestId() {
    GUID guid{};
    if (FAILED(CoCreateGuid(&guid))) return {};
    char text[64];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04x-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

}  // namespace

ZEMOWebViewWindow::ZEMOWebViewWindow() : closeGate(CreateMutexW(nullptr, FALSE, nullptr)) {}

ZEMOWebViewWindow::~ZEMOWebViewWindow() {
    isClosed = true;
    if (Core::isProcessEnding()) {
        // A view in a static object of another module: the threads are gone, with whatever locks they held.
        Core::leaveUndestroyed(std::move(layer));
        return;
    }
    if (displayMode == kModeLayer && layer) ZEMOMultiLayerManager::instance().removeLayer(layer);
    layer.reset();
}

void ZEMOWebViewWindow::show() {
    const auto keptAlive = weak_from_this().lock();  // the delegate may drop the view in its call
    isClosed = false;
    if (!layer) {
        createLayer();
        startFirstLoad();
    }
    if (displayMode == kModeLayer) ZEMOMultiLayerManager::instance().addLayer(layer);
    if (const auto delegate = viewDelegate.lock()) delegate->viewDidShow(this);
}

void ZEMOWebViewWindow::createLayer() {
    auto& manager = ZEMOMultiLayerManager::instance();
    const std::shared_ptr<ZEMOWebViewWindow> self = shared_from_this();
    const std::weak_ptr<ZEMOWebViewWindow> weakSelf = self;
    if (displayMode != kModeLayer && displayMode != kModeWindow) return;

    manager.replaceLostMainWindow();
    WebLayer::Settings settings;
    settings.delegate = {self, self};
    settings.windowStyle = static_cast<WindowStyle>(displayMode);
    settings.size = {width, height};
    settings.parentWindow = manager.getMainWindow();
    settings.hookModule = manager.getGraphicsHookModule();
    settings.hookSleepTime = manager.getOpenGLSleepTime();
    settings.hasSteamDeckKeyboard = manager.hasSteamDeckKeyboardCallback();
    settings.steamOverlayActive = manager.getSteamOverlayActive();
    settings.framePresentCallback = manager.getOsrFramePresentCallback();
    if (const auto useCallback = manager.getGameControllerScriptUseCallback()) {
        settings.controllerScriptUseCallback = [useCallback](bool used) {
            if (const auto callback = Core::unlessProcessEnds(useCallback)) callback(used ? 1 : 0);
        };
    }
    // The layer's handlers reach this object weakly: the layer belongs to it, and a strong way back would be a ring.
    if (closeButtonEnabled) {
        settings.closeButtonAction = [weakSelf] {
            if (const auto view = weakSelf.lock()) view->notifyCloseRequested();
        };
    }
    layer = ZEMOWindow::create<WebLayer>(std::move(settings));
}

void ZEMOWebViewWindow::startFirstLoad() {
    if (!layer) return;
    if (pendingContent) {
        layer->loadContent(pendingContent, false);
    } else if (!pendingItems.empty()) {
        layer->loadUrl(pendingUrl, pendingItems, false);
    } else if (pendingUrl.empty() || !pendingHtml.empty()) {
        layer->loadHtml(pendingHtml.c_str(), pendingUrl.c_str(), false);
    } else {
        layer->loadPage(pendingUrl, false);
    }
    const std::weak_ptr<ZEMOWebViewWindow> weakSelf = weak_from_this();
    if (displayMode == kModeWindow) {
        layer->setWindowCloseHandler([weakSelf] {
            const auto view = weakSelf.lock();
            if (!view) return;
            const std::shared_ptr<WebLayer> keptAlive = view->layer;
            if (const auto delegate = view->viewDelegate.lock()) delegate->viewDidClose(view.get());
        });
    }
    layer->setLayerDestroyHandler([weakSelf] {
        if (const auto view = weakSelf.lock()) view->notifyCloseRequested();
    });
    isOpen = true;
}

void ZEMOWebViewWindow::notifyCloseRequested() {
    const std::shared_ptr<WebLayer> keptAlive = layer;  // the delegate may drop the view in this call
    if (const auto delegate = webViewDelegate.lock()) delegate->closeRequested();
}

void ZEMOWebViewWindow::showAndWait() {
    const auto keptAlive = weak_from_this().lock();
    show();
    WaitForSingleObject(closeGate.get(), INFINITE);
}

void ZEMOWebViewWindow::close() {
    const auto keptAlive = weak_from_this().lock();  // the delegate may drop the view in its call
    isClosed = true;
    if (displayMode == kModeLayer && layer) ZEMOMultiLayerManager::instance().removeLayer(layer);
    if (const auto delegate = viewDelegate.lock()) delegate->viewDidClose(this);
    ReleaseMutex(closeGate.get());
}

void ZEMOWebViewWindow::setViewDelegate(std::shared_ptr<ZEMOViewDelegate> delegate) { viewDelegate = delegate; }

void ZEMOWebViewWindow::setSize(float newWidth, float newHeight) {
    width = truncateToInt(newWidth);
    height = truncateToInt(newHeight);
}

void ZEMOWebViewWindow::setWebViewDelegate(std::shared_ptr<ZEMOWebViewDelegate> delegate) {
    webViewDelegate = delegate;
}

void ZEMOWebViewWindow::loadPage(std::string nameOrPath) {
    if (!isOpen) {
        pendingUrl = std::move(nameOrPath);
    } else if (layer) {
        layer->loadPage(std::move(nameOrPath), true);
    }
}

void ZEMOWebViewWindow::loadContent(std::shared_ptr<IZEMOWebContent> content) {
    if (!isOpen) {
        pendingContent = std::move(content);
    } else if (layer) {
        layer->loadContent(std::move(content), true);
    }
}

void ZEMOWebViewWindow::loadHtml(std::string_view html, std::string_view path) {
    if (!isOpen) {
        pendingHtml = html.data() ? html.data() : "";
        pendingUrl = path.data() ? path.data() : "";
    } else if (layer) {
        layer->loadHtml(html, path, true);
    }
}

void ZEMOWebViewWindow::loadUrl(std::string url, std::vector<std::shared_ptr<IZEMOWebContent>> items) {
    if (!isOpen) {
        pendingUrl = std::move(url);
        pendingItems = std::move(items);
    } else if (layer) {
        layer->loadUrl(std::move(url), std::move(items), true);
    }
}

void ZEMOWebViewWindow::reserved(std::string /*text*/) {}

void ZEMOWebViewWindow::evaluateJavascript(std::string script, std::function<void(std::string, std::string)> callback) {
    if (!layer) return;
    const std::weak_ptr<ZEMOWebViewWindow> weakSelf = weak_from_this();
    layer->evaluateJavascript(makeRequestId(), std::move(script),
                              [weakSelf, callback = std::move(callback)](std::string first, std::string second) {
                                  const auto view = weakSelf.lock();
                                  if (view && !view->isClosed && callback)
                                      callback(std::move(first), std::move(second));
                              });
}

void ZEMOWebViewWindow::addJavascriptCallback(std::string name, std::function<void(std::string)> callback) {
    if (layer) layer->addJavascriptCallback(std::move(name), std::move(callback));
}

std::string ZEMOWebViewWindow::bindObject(std::string name, std::string message) {
    if (layer) layer->bindObject(name, message);
    return "window.BindObjectAsync(\"" + name + "\").then(function(result) {" + name + ".postMessage(\"" + name +
           "\",'" + message + "');})";
}

void ZEMOWebViewWindow::goBack() {
    if (layer) layer->goBack();
}

bool ZEMOWebViewWindow::canGoBack() { return layer && layer->canGoBack(); }

void ZEMOWebViewWindow::goForward() {
    if (layer) layer->goForward();
}

bool ZEMOWebViewWindow::canGoForward() { return layer && layer->canGoForward(); }

bool ZEMOWebViewWindow::deleteCookies(const std::string& url) {
    return std::make_shared<CefContextHandler>()->deleteCookies(url);
}

void ZEMOWebViewWindow::setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>> items) {
    if (layer) layer->setContentItems(std::move(items));
}

void ZEMOWebViewWindow::navigationStarting(std::shared_ptr<IZEMOWebView> view) {
    if (const auto delegate = webViewDelegate.lock()) delegate->navigationStarting(view);
    auto& manager = ZEMOMultiLayerManager::instance();
    manager.repaintMainWindow();
    if (!ControllerScripts::isControllerPage(pendingUrl)) return;
    const std::string script = ControllerScripts::buildControllerPageScript(Core::widenNarrowPath(pendingUrl),
                                                                            manager.getGameControllerStatus());
    if (!script.empty() && layer) layer->injectControllerScript(script);
}

void ZEMOWebViewWindow::navigationFailed(std::shared_ptr<IZEMOWebView> view, const std::error_code& error) {
    if (const auto delegate = webViewDelegate.lock()) delegate->navigationFailed(view, error);
}

void ZEMOWebViewWindow::navigationCompleted(std::shared_ptr<IZEMOWebView> view) {
    const auto delegate = webViewDelegate.lock();
    if (!delegate) return;
    delegate->navigationCompleted(view);
    if (const std::shared_ptr<WebLayer> target = layer) target->onNavigationCompleted();
}

bool ZEMOWebViewWindow::navigationRequested(std::shared_ptr<IZEMOWebView> view, std::string url) {
    if (const std::shared_ptr<WebLayer> target = layer; target && target->handleSpecialUrl(url)) return true;
    const auto delegate = webViewDelegate.lock();
    return delegate && delegate->navigationRequested(view, std::move(url));
}

}  // namespace ZEMO::UI
