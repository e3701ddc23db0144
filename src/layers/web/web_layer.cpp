#include "layers/web/web_layer.h"

#include <cstring>
#include <utility>

#include "cef/engine_library.h"
#include "core/process_end.h"
#include "engine/client/create_browser_task.h"
#include "engine/client/script/javascript_processor.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"
#include "layers/web/page_address.h"

namespace ZEMO::UI {
namespace {

// The caller's views end at their first NUL, whatever their length says.
std::string_view untilNul(std::string_view text) {
    return text.data() ? std::string_view(text.data(), std::strlen(text.data())) : std::string_view();
}

bool consumesFrames(const WebLayer::Settings& settings) {
    return settings.hookModule != nullptr || static_cast<bool>(settings.framePresentCallback);
}

}  // namespace

WebLayer::WebLayer(Settings settings)
    : ZEMOWindow("Zemo window", settings.windowStyle, settings.size, settings.parentWindow, consumesFrames(settings),
                 settings.hasSteamDeckKeyboard, settings.steamOverlayActive),
      closeButtonAction(std::move(settings.closeButtonAction)),
      controllerScriptUseCallback(std::move(settings.controllerScriptUseCallback)) {
    adapter = new CefAdapter(std::move(settings.delegate), getViewWindowHandle(), settings.windowStyle,
                             static_cast<bool>(closeButtonAction), settings.hookModule, settings.hookSleepTime,
                             std::move(settings.framePresentCallback));
    adapter->setNoWindow(getViewWindowHandle() == nullptr);
    adapter->setWindowCloser(ownWindowCloser());
}

WebLayer::~WebLayer() {
    adapter->close();
    // An own window closes with its browser. Without an engine there is none, and nobody else would close it.
    if (const auto closeOwnWindow = ownWindowCloser(); closeOwnWindow && !browserRequested) closeOwnWindow();
    controllerScriptUseCallback = nullptr;
    closeButtonAction = nullptr;
    layerDestroyHandler.set(nullptr);
    windowCloseHandler.set(nullptr);
    adapter = nullptr;
}

void WebLayer::createBrowser(const std::string& address) {
    // The engine may be gone. One that was never found would not give the task back, and with it the view.
    if (Core::isProcessEnding() || !cefLibraryModule()) return;
    browserRequested = CefPostTask(TID_UI, new CreateBrowserTask(getViewWindowHandle(), adapter.get(), address));
    if (browserRequested && isRefusedAddress(address)) adapter->reportRefusedAddress(address);
}

void WebLayer::navigate(const std::string& address) {
    adapter->getJavascriptProcessor()->resetPageReady();
    const CefRefPtr<CefBrowser> browser = adapter->getBrowser();
    // A page may have closed its browser by itself, which has no frame then.
    const CefRefPtr<CefFrame> frame = browser ? browser->GetMainFrame() : nullptr;
    if (!frame) return;
    frame->LoadURL(address);
    if (isRefusedAddress(address)) adapter->reportRefusedAddress(address);
}

void WebLayer::loadHtml(std::string_view html, std::string_view path, bool reload) {
    if (reload && !adapter) return;
    const std::string address = htmlDataAddress(untilNul(html), untilNul(path));
    reload ? navigate(address) : createBrowser(address);
}

void WebLayer::loadUrl(std::string url, std::vector<std::shared_ptr<IZEMOWebContent>> items, bool reload) {
    if (!adapter) return;
    adapter->setContentItems(std::move(items));
    // A later load takes names only: web addresses of an open view come as content.
    reload ? navigate(reloadPageAddress(url)) : createBrowser(firstLoadAddress(url));
}

void WebLayer::loadPage(std::string nameOrPath, bool reload) {
    if (!reload) return createBrowser(firstPageAddress(nameOrPath));
    if (adapter) navigate(localPageAddress(nameOrPath));
}

void WebLayer::loadContent(std::shared_ptr<IZEMOWebContent> content, bool reload) {
    if (!content || !adapter) return;
    const std::string address = content->getUrl().toString();
    if (content->getKind() == IZEMOWebContent::kKindPost) adapter->setContentItems({content});
    reload ? navigate(address) : createBrowser(address);
}

void WebLayer::evaluateJavascript(std::string id, std::string script,
                                  std::function<void(std::string, std::string)> callback) {
    adapter->getJavascriptProcessor()->evaluate(std::move(id), std::move(script), std::move(callback));
}

void WebLayer::addJavascriptCallback(std::string name, std::function<void(std::string)> callback) {
    adapter->getJavascriptProcessor()->addObjectCallback(std::move(name), std::move(callback));
}

void WebLayer::bindObject(std::string name, std::string message) {
    adapter->getJavascriptProcessor()->addObjectMessage(std::move(name), std::move(message));
}

void WebLayer::goBack() {
    if (const CefRefPtr<CefBrowser> browser = adapter->getBrowser()) browser->GoBack();
}

void WebLayer::goForward() {
    if (const CefRefPtr<CefBrowser> browser = adapter->getBrowser()) browser->GoForward();
}

bool WebLayer::canGoBack() {
    const CefRefPtr<CefBrowser> browser = adapter->getBrowser();
    return browser && browser->CanGoBack();
}

bool WebLayer::canGoForward() {
    const CefRefPtr<CefBrowser> browser = adapter->getBrowser();
    return browser && browser->CanGoForward();
}

void WebLayer::setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>> items) {
    adapter->setContentItems(std::move(items));
}

void WebLayer::setWindowCloseHandler(std::function<void()> handler) {
    if (handler) windowCloseHandler.setOnce(std::move(handler));
}

void WebLayer::setLayerDestroyHandler(std::function<void()> handler) {
    if (handler) layerDestroyHandler.setOnce(std::move(handler));
}

void WebLayer::runInMainFrame(const std::string& script, bool withFrameUrl) {
    const CefRefPtr<CefBrowser> browser = adapter ? adapter->getBrowser() : nullptr;
    if (!browser || script.empty()) return;
    const CefRefPtr<CefFrame> frame = browser->GetMainFrame();
    if (frame) frame->ExecuteJavaScript(script, withFrameUrl ? frame->GetURL() : CefString(), 0);
}

void WebLayer::onNavigationCompleted() {
    // A page that is loaded while its layer has the focus hears of the focus now; nobody else would tell it.
    if (GetForegroundWindow() == getWindowHandle()) onActivated();
    if (closeButtonAction) {
        createCloseButton(closeButtonAction);
        adapter->showCloseButton();
    }
}

void WebLayer::setVisible(bool show, bool keepHookFrame) { adapter->setVisible(show, keepHookFrame); }

void WebLayer::sendImeCommand(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount) {
    withBrowser([&](const CefRefPtr<CefBrowser>& browser) {
        adapter->getIme().setImeProcess(browser, kind, text, repeatCount);
    });
}

void WebLayer::blurActiveElement() { runInMainFrame("document.activeElement.blur();", false); }

}  // namespace ZEMO::UI
