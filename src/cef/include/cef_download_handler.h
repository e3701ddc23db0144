#pragma once

#include "include/cef_browser.h"
#include "include/cef_download_item.h"

//@engine
class CefBeforeDownloadCallback : public virtual CefBaseRefCounted {
public:
    //@capi cont
    //@optional download_path
    virtual void Continue(const CefString& download_path, bool show_dialog) = 0;
};

//@engine
class CefDownloadItemCallback : public virtual CefBaseRefCounted {
public:
    virtual void Cancel() = 0;
    virtual void Pause() = 0;
    virtual void Resume() = 0;
};

//@client
class CefDownloadHandler : public virtual CefBaseRefCounted {
public:
    virtual bool CanDownload(CefRefPtr<CefBrowser> browser, const CefString& url, const CefString& request_method) {
        return true;
    }
    /// True when the handler runs, or drops, the callback; false leaves it to the engine.
    virtual bool OnBeforeDownload(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDownloadItem> download_item,
                                  const CefString& suggested_name, CefRefPtr<CefBeforeDownloadCallback> callback) {
        return false;
    }
    virtual void OnDownloadUpdated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDownloadItem> download_item,
                                   CefRefPtr<CefDownloadItemCallback> callback) {}
};
