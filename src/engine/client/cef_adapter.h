#pragma once

#include <memory>
#include <string>

#include "engine/client/cef_handler.h"

namespace ZEMO::UI {

/// The way back from the browser to the view that the game holds, which is reached weakly: a view that is gone hears
/// nothing, and its browser navigates nowhere.
struct WebViewLink {
    std::weak_ptr<IZEMOWebView> view;
    std::weak_ptr<ZEMOWebViewDelegate> delegate;
};

/// The browser client of one web layer. Engine thread, but for the operations of its base.
class CefAdapter : public CefHandler {
public:
    CefAdapter(WebViewLink link, HWND window, WindowStyle windowStyle, bool hasCloseButton, HMODULE hookModule,
               uint32_t hookSleepTime, OsrFramePresentCallback framePresentCallback);

    virtual void navigationStarting();
    virtual void navigationFailed(int errorCode);
    virtual void navigationCompleted();
    /// The engine takes `address` without a word and loads nothing: the delegate hears of it on the engine thread all
    /// the same. Any thread.
    void reportRefusedAddress(const std::string& address);
    /// True: the navigation must not go on.
    virtual bool navigationRequested(std::string url);

    // CefLoadHandler. Every frame of a page reports here, not only the main one.
    void OnLoadStart(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, TransitionType transition_type) override;
    void OnLoadEnd(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int httpStatusCode) override;
    void OnLoadError(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, ErrorCode errorCode,
                     const CefString& errorText, const CefString& failedUrl) override;

    // CefRequestHandler
    bool OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, CefRefPtr<CefRequest> request,
                        bool user_gesture, bool is_redirect) override;
    void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser, TerminationStatus status, int error_code,
                                   const CefString& error_string) override;

    // CefRenderHandler
    void OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> browser, TextInputMode input_mode) override;

private:
    /// Its own on-screen keyboard, which a game has beside the system's. Asked once until it says that it is gone.
    void askGameForKeyboard(TextInputMode input_mode);
    /// Null when the game has dropped it, and once the program exits: what the delegate uses may be gone by then.
    std::shared_ptr<ZEMOWebViewDelegate> gameDelegate() const;

    WebViewLink delegate;
    // A failed load ends as a load of the engine's own error page, a load that a newer one has cut off ends as well:
    // neither is the page that waiting scripts are meant for.
    CefString failedAddress;  ///< of the main frame's last failed load, until another one starts
    bool isEndOfFailedLoad = false;
};

}  // namespace ZEMO::UI
