#pragma once

#include "include/cef_browser.h"

//@client
class CefDisplayHandler : public virtual CefBaseRefCounted {
public:
    virtual void OnAddressChange(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, const CefString& url) {}
    virtual void OnTitleChange(CefRefPtr<CefBrowser> browser, const CefString& title) {}
    virtual void OnFaviconURLChange(CefRefPtr<CefBrowser> browser, const std::vector<CefString>& icon_urls) {}
    virtual void OnFullscreenModeChange(CefRefPtr<CefBrowser> browser, bool fullscreen) {}
    virtual bool OnTooltip(CefRefPtr<CefBrowser> browser, CefString& text) { return false; }
    virtual void OnStatusMessage(CefRefPtr<CefBrowser> browser, const CefString& value) {}
    /// True keeps the message out of the engine's own log.
    virtual bool OnConsoleMessage(CefRefPtr<CefBrowser> browser, cef_log_severity_t level, const CefString& message,
                                  const CefString& source, int line) {
        return false;
    }
    virtual bool OnAutoResize(CefRefPtr<CefBrowser> browser, const CefSize& new_size) { return false; }
    virtual void OnLoadingProgressChange(CefRefPtr<CefBrowser> browser, double progress) {}
    virtual bool OnCursorChange(CefRefPtr<CefBrowser> browser, CefCursorHandle cursor, cef_cursor_type_t type,
                                const CefCursorInfo& custom_cursor_info) {
        return false;
    }
    virtual void OnMediaAccessChange(CefRefPtr<CefBrowser> browser, bool has_video_access, bool has_audio_access) {}
};
