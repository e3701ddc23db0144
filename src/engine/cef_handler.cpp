#include "engine/cef_handler.h"

#include <shellapi.h>

#include <system_error>
#include <unordered_set>

#include "core/log.h"
#include "core/process_end.h"
#include "core/process_state.h"
#include "engine/close_browser_task.h"
#include "engine/context_menu_handler.h"
#include "engine/javascript_processor.h"
#include "include/cef_browser.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"
#include "layers/layer_manager.h"
#include "layers/window_messages.h"
#include "render/cef_render_hook.h"
#include "render/cef_render_osr.h"
#include "render/display_scale.h"

// The end of a view, in order: no frame is taken any more; the render thread ends; the browser reference is taken out
// of reach and a task closes that browser on the engine thread; the consumer hears that there is nothing left to show.
// The object itself lives on through the engine's references until the browser is gone. A browser that the engine
// creates after that point (the view was dropped right after show) is closed as it arrives.
namespace ZEMO::UI {
namespace {

/// How long the end of a view waits for a frame that the game is just taking. A consumer that blocks longer breaks its
/// contract; the end then goes on, and the notice that nothing is left to show follows that frame.
constexpr auto kPaintGrace = std::chrono::milliseconds(500);

// Never destroyed: views that a game leaks outlive every static object.
struct LiveHandlers {
    std::mutex mutex;
    std::unordered_set<CefHandler*> handlers;
};
LiveHandlers& liveHandlers() {
    static auto* const instance = std::make_unique<LiveHandlers>().release();
    return *instance;
}
int liveBrowserCount = 0;  // engine thread

std::unique_ptr<CefRenderImpl> chooseRenderImpl(HMODULE hookModule, uint32_t hookSleepTime,
                                                OsrFramePresentCallback callback, float scale, bool hasCloseButton) {
    if (!hookModule && callback) {
        return std::make_unique<CefRenderOSR>(std::move(callback), scale, hasCloseButton);
    }
    return std::make_unique<CefRenderHook>(hookModule, hookSleepTime);
}

}  // namespace

CefHandler::CefHandler(HWND viewWindow, WindowStyle style, bool closeButton, HMODULE hookModule, uint32_t sleepTime,
                       OsrFramePresentCallback framePresentCallback)
    : CefHandler(viewWindow, style, closeButton, sleepTime, [&](float scale) {
          return chooseRenderImpl(hookModule, sleepTime, std::move(framePresentCallback), scale, closeButton);
      }) {}

CefHandler::CefHandler(HWND viewWindow, WindowStyle style, bool closeButton, uint32_t sleepTime,
                       const ConsumerFactory& makeConsumer)
    : stopEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      javascriptProcessor(std::make_shared<JavascriptProcessor>()),
      window(viewWindow),
      windowStyle(style),
      hasCloseButton(closeButton),
      hookSleepTime(sleepTime),
      dpiScale(getWindowScale(viewWindow)),
      renderImpl(makeConsumer(dpiScale)) {
    ensureRenderer();
    contextMenuHandler = new CefContextualMenuHandler;
    renderThread = std::thread(&CefHandler::renderThreadMain, this);
    const std::lock_guard lock(liveHandlers().mutex);
    liveHandlers().handlers.insert(this);
}

CefHandler::~CefHandler() {
    {
        const std::lock_guard lock(liveHandlers().mutex);
        liveHandlers().handlers.erase(this);
    }
    stopRenderThread();
    renderImpl.reset();
}

CefRefPtr<CefBrowser> CefHandler::getBrowser() {
    const std::lock_guard lock(browserMutex);
    return browser;
}

void CefHandler::stopRenderThread() {
    stopped.exchange(true);
    SetEvent(stopEvent.get());
    const std::lock_guard lock(renderThreadMutex);
    if (renderThread.joinable()) renderThread.join();
}

void CefHandler::letGoOfBrowser() {
    CefRefPtr<CefBrowser> closedBrowser;
    {
        const std::lock_guard lock(browserMutex);
        closedBrowser.swap(browser);
        javascriptProcessor->setBrowser(nullptr);
    }
    if (closedBrowser) CefPostTask(TID_UI, new CloseBrowserTask(closedBrowser));
}

void CefHandler::leaveEngine() {
    const std::lock_guard lock(liveHandlers().mutex);
    for (CefHandler* const handler : liveHandlers().handlers) {
        handler->markClosing();
        handler->stopRenderThread();
        handler->letGoOfBrowser();
    }
}

int CefHandler::liveBrowsers() { return liveBrowserCount; }

void CefHandler::close() {
    if (Core::isProcessEnding()) {
        AddRef();  // Neither thread nor engine is there any more: the object is left to the end of the process.
        return;
    }
    visible = false;
    stopRenderThread();
    setPasswordFieldFocused(false);

    letGoOfBrowser();

    const bool onGameWindow = windowStyle == WindowStyle::Layer;
    clearPending = onGameWindow;
    std::unique_lock paint(paintMutex, std::defer_lock);
    const bool noPaintRuns = paint.try_lock_for(kPaintGrace);
    if (!closing && onGameWindow && ZEMOMultiLayerManager::instance().getLayerCount() == 0) renderImpl->onViewClosed();
    if (const auto local = renderer.load()) local->onViewHidden();
    // The consumer hears of the end last, and never while it takes a frame: a paint that still runs tells it then.
    if (noPaintRuns && clearPending.exchange(false)) renderImpl->clearFrame();
    InvalidateRect(window, nullptr, TRUE);
    Core::logDebugA("html view is closed\n");
}

void CefHandler::postToWindow(UINT message, WPARAM wParam, LPARAM lParam) const {
    if (IsWindow(window)) PostMessageW(window, message, wParam, lParam);
}

bool CefHandler::OnProcessMessageReceived(CefRefPtr<CefBrowser> source, CefRefPtr<CefFrame> /*frame*/,
                                          CefProcessId /*source_process*/, CefRefPtr<CefProcessMessage> message) {
    if (Core::isProcessEnding()) return false;  // what the game's callbacks use may be gone
    const std::string name = message->GetName();
    if (name == kEvaluateJavascript) {
        const CefRefPtr<CefListValue> arguments = message->GetArgumentList();
        const auto& pending = javascriptProcessor->getPendingResults();
        const auto entry = pending.find(arguments->GetString(0).ToString());
        if (entry != pending.end() && entry->second) {
            // A copy: the callback may ask for a further evaluation, which may move the entries.
            const JavascriptProcessor::ResultCallback callback = entry->second;
            callback(arguments->GetString(2), arguments->GetString(3));
        }
        return true;
    }
    if (name == kBindObjectAsync) {
        javascriptProcessor->invokeObject(message->GetArgumentList()->GetString(0));
        return true;
    }
    if (name == kImePasswordFieldFocus) {
        onPasswordFieldFocus(source, message->GetArgumentList()->GetBool(0));
        return true;
    }
    return false;
}

void CefHandler::onPasswordFieldFocus(CefRefPtr<CefBrowser> source, bool focused) {
    setPasswordFieldFocused(focused);
    postToWindow(kMessageImeFocus, focused ? 0 : 1, 0);
    if (const auto callback = getImeEventCallback()) callback(3, source->GetIdentifier(), focused ? 1 : 0, 0);
}

bool CefHandler::OnBeforePopup(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/, int /*popup_id*/,
                               const CefString& target_url, const CefString& /*target_frame_name*/,
                               CefLifeSpanHandler::WindowOpenDisposition /*target_disposition*/, bool /*user_gesture*/,
                               const CefPopupFeatures& /*popupFeatures*/, CefWindowInfo& /*windowInfo*/,
                               CefRefPtr<CefClient>& /*client*/, CefBrowserSettings& /*settings*/,
                               CefRefPtr<CefDictionaryValue>& /*extra_info*/, bool* /*no_javascript_access*/) {
    // A game has no room for a second browser window: the target belongs to the user's own browser.
    ShellExecuteW(nullptr, L"open", target_url.ToWString().c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return true;
}

void CefHandler::OnAfterCreated(CefRefPtr<CefBrowser> created) {
    if (!CefCurrentlyOn(TID_UI)) return;
    ++liveBrowserCount;
    {
        const std::lock_guard lock(browserMutex);
        if (!stopped) {
            if (!browser) {
                browser = created;
                javascriptProcessor->setBrowser(created);
            }
            return;
        }
    }
    // The view was dropped before its browser came. Not closed here: the engine is still at work on the new browser.
    CefPostTask(TID_UI, new CloseBrowserTask(created));
}

void CefHandler::OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) {
    --liveBrowserCount;
    if (windowStyle != WindowStyle::Window || Core::isProcessEnding()) return;
    // The user may have closed the window long ago, and its handle may name another program's now.
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId()) PostMessageW(window, WM_CLOSE, 0, 0);
}

bool CefHandler::OnCursorChange(CefRefPtr<CefBrowser> /*browser*/, CefCursorHandle cursor, cef_cursor_type_t /*type*/,
                                const CefCursorInfo& /*custom_cursor_info*/) {
    if (!IsWindow(window)) return false;
    if (!renderImpl->isActive() || windowStyle != WindowStyle::Layer) {
        SetClassLongPtrW(window, GCLP_HCURSOR, reinterpret_cast<LONG_PTR>(cursor));
        SetCursor(cursor);
    } else {
        PostMessageW(window, WM_SETCURSOR, kPageCursorMarker, reinterpret_cast<LPARAM>(cursor));
    }
    return true;
}

void CefHandler::OnTextSelectionChanged(CefRefPtr<CefBrowser> source, const CefString& /*selected_text*/,
                                        const CefRange& selected_range) {
    if (const auto callback = getImeEventCallback()) {
        callback(1, source->GetIdentifier(), static_cast<int>(selected_range.from),
                 static_cast<int>(selected_range.to));
    }
}

}  // namespace ZEMO::UI
