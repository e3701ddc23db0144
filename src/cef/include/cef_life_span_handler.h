#pragma once

#include "include/cef_browser.h"

/// Birth and death of browsers, on the UI thread.
//@client
class CefLifeSpanHandler : public virtual CefBaseRefCounted {
public:
    typedef cef_window_open_disposition_t WindowOpenDisposition;

    /// True keeps the popup from being made.
    virtual bool OnBeforePopup(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int popup_id,
                               const CefString& target_url, const CefString& target_frame_name,
                               WindowOpenDisposition target_disposition, bool user_gesture,
                               const CefPopupFeatures& popupFeatures, CefWindowInfo& windowInfo,
                               CefRefPtr<CefClient>& client, CefBrowserSettings& settings,
                               CefRefPtr<CefDictionaryValue>& extra_info, bool* no_javascript_access) {
        return false;
    }
    virtual void OnBeforePopupAborted(CefRefPtr<CefBrowser> browser, int popup_id) {}
    virtual void OnBeforeDevToolsPopup(CefRefPtr<CefBrowser> browser, CefWindowInfo& windowInfo,
                                       CefRefPtr<CefClient>& client, CefBrowserSettings& settings,
                                       CefRefPtr<CefDictionaryValue>& extra_info, bool* use_default_window) {}
    virtual void OnAfterCreated(CefRefPtr<CefBrowser> browser) {}
    /// True when the closing goes on elsewhere.
    virtual bool DoClose(CefRefPtr<CefBrowser> browser) { return false; }
    /// The last call about a browser: every reference to it must be given up here.
    virtual void OnBeforeClose(CefRefPtr<CefBrowser> browser) {}
};
