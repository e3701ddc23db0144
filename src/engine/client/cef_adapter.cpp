#include "engine/client/cef_adapter.h"

#include <system_error>
#include <utility>

#include "core/game_callback.h"
#include "core/log.h"
#include "engine/client/input/touch_keyboard.h"
#include "engine/client/script/javascript_processor.h"
#include "engine/engine_thread.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"
#include "include/cef_request.h"
#include "include/cef_task.h"
#include "layers/layer_manager.h"

namespace ZEMO::UI {
namespace {

/// The library's own mark for a page process that died.
constexpr int kRenderProcessGone = -600;

class NavigationFailedTask : public CefTask {
public:
    NavigationFailedTask(CefRefPtr<CefAdapter> browserClient, int code)
        : client(std::move(browserClient)), errorCode(code) {}
    void Execute() override { client->navigationFailed(errorCode); }

private:
    CefRefPtr<CefAdapter> client;
    int errorCode;
    IMPLEMENT_REFCOUNTING(NavigationFailedTask);
};

constexpr int kKeyboardText = 0;
constexpr int kKeyboardEmail = 2;
constexpr int kKeyboardNumeric = 3;

}  // namespace

CefAdapter::CefAdapter(WebViewLink link, HWND window, WindowStyle style, bool closeButton, HMODULE hookModule,
                       uint32_t sleepTime, OsrFramePresentCallback framePresentCallback)
    : CefHandler(window, style, closeButton, hookModule, sleepTime, std::move(framePresentCallback)),
      delegate(std::move(link)) {}

std::shared_ptr<ZEMOWebViewDelegate> CefAdapter::gameDelegate() const {
    return Core::unlessProcessEnds(delegate.delegate.lock());
}

void CefAdapter::navigationStarting() {
    Core::logDebugA("navigationStarting\n");
    if (const auto target = gameDelegate()) target->navigationStarting(delegate.view.lock());
}

void CefAdapter::navigationFailed(int errorCode) {
    Core::logDebugA("navigationFailed: %d\n", errorCode);
    if (const auto target = gameDelegate()) {
        target->navigationFailed(delegate.view.lock(), std::error_code(errorCode, std::generic_category()));
    }
}

void CefAdapter::reportRefusedAddress(const std::string& address) {
    Core::logDebugA("the engine refuses this address of %zu bytes: %.200s\n", address.size(), address.c_str());
    CefPostTask(TID_UI, new NavigationFailedTask(this, ERR_INVALID_URL));
}

void CefAdapter::navigationCompleted() {
    Core::logDebugA("navigationCompleted\n");
    if (!std::exchange(isEndOfFailedLoad, false)) getJavascriptProcessor()->flushQueuedEvaluations();
    if (const auto target = gameDelegate()) target->navigationCompleted(delegate.view.lock());
}

bool CefAdapter::navigationRequested(std::string url) {
    const auto target = gameDelegate();
    return !target || target->navigationRequested(delegate.view.lock(), std::move(url));
}

void CefAdapter::OnLoadStart(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame,
                             TransitionType /*transition_type*/) {
    assert(isOnEngineThread());
    if (frame && frame->IsMain()) failedAddress.clear();
    navigationStarting();
}

void CefAdapter::OnLoadEnd(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int /*httpStatusCode*/) {
    assert(isOnEngineThread());
    isEndOfFailedLoad = frame && frame->IsMain() && !failedAddress.empty() && frame->GetURL() == failedAddress;
    navigationCompleted();
    browser->GetHost()->SetFocus(true);
}

void CefAdapter::OnLoadError(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame, ErrorCode errorCode,
                             const CefString& /*errorText*/, const CefString& failedUrl) {
    assert(isOnEngineThread());
    if (frame && frame->IsMain()) failedAddress = failedUrl;
    switch (errorCode) {
        case ERR_ABORTED:
            return;  // a newer navigation took its place
        case ERR_CACHE_MISS:
            return frame->LoadURL(failedUrl);
        default:
            return navigationFailed(errorCode);
    }
}

bool CefAdapter::OnBeforeBrowse(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                                CefRefPtr<CefRequest> request, bool /*user_gesture*/, bool /*is_redirect*/) {
    assert(isOnEngineThread());
    return navigationRequested(request->GetURL());
}

void CefAdapter::OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser, TerminationStatus /*status*/,
                                           int /*error_code*/, const CefString& /*error_string*/) {
    assert(isOnEngineThread());
    getJavascriptProcessor()->resetPageReady();  // what is asked from now on is for the page that comes back
    browser->Reload();
    getIme().onPageGone(browser);
    navigationFailed(kRenderProcessGone);
}

void CefAdapter::OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> /*browser*/, TextInputMode input_mode) {
    assert(isOnEngineThread());
    followTouchWithKeyboard(viewWindow(), getInput().getLastTouchEvent(), input_mode);
    if (input_mode != CEF_TEXT_INPUT_MODE_NONE) askGameForKeyboard(input_mode);
}

void CefAdapter::askGameForKeyboard(TextInputMode input_mode) {
    auto& manager = ZEMOMultiLayerManager::instance();
    const auto showKeyboard = manager.getSteamDeckKeyboardCallback();
    if (!showKeyboard || manager.getSteamDeckKeyboardShown()) return;
    const int type = input_mode == CEF_TEXT_INPUT_MODE_EMAIL     ? kKeyboardEmail
                     : input_mode == CEF_TEXT_INPUT_MODE_NUMERIC ? kKeyboardNumeric
                                                                 : kKeyboardText;
    showKeyboard(type);
    manager.setSteamDeckKeyboardShown(true);
}

}  // namespace ZEMO::UI
