#pragma once

#include "include/cef_auth_callback.h"
#include "include/cef_browser.h"
#include "include/cef_callback.h"
#include "include/cef_resource_request_handler.h"
#include "include/cef_ssl_info.h"
#include "include/cef_unresponsive_process_callback.h"
#include "include/cef_x509_certificate.h"

/// Known by name only: nothing here makes one or looks into one.
//@engine
class CefSelectClientCertificateCallback : public virtual CefBaseRefCounted {};

/// Navigation and the page's process, on the UI thread; GetResourceRequestHandler and GetAuthCredentials on the IO
/// thread.
//@client
class CefRequestHandler : public virtual CefBaseRefCounted {
public:
    typedef cef_termination_status_t TerminationStatus;
    typedef cef_window_open_disposition_t WindowOpenDisposition;
    typedef std::vector<CefRefPtr<CefX509Certificate>> X509CertificateList;

    /// True cancels the navigation.
    virtual bool OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, CefRefPtr<CefRequest> request,
                                bool user_gesture, bool is_redirect) {
        return false;
    }
    virtual bool OnOpenURLFromTab(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, const CefString& target_url,
                                  WindowOpenDisposition target_disposition, bool user_gesture) {
        return false;
    }
    virtual CefRefPtr<CefResourceRequestHandler> GetResourceRequestHandler(
        CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, CefRefPtr<CefRequest> request, bool is_navigation,
        bool is_download, const CefString& request_initiator, bool& disable_default_handling) {
        return nullptr;
    }
    virtual bool GetAuthCredentials(CefRefPtr<CefBrowser> browser, const CefString& origin_url, bool isProxy,
                                    const CefString& host, int port, const CefString& realm, const CefString& scheme,
                                    CefRefPtr<CefAuthCallback> callback) {
        return false;
    }
    virtual bool OnCertificateError(CefRefPtr<CefBrowser> browser, cef_errorcode_t cert_error,
                                    const CefString& request_url, CefRefPtr<CefSSLInfo> ssl_info,
                                    CefRefPtr<CefCallback> callback) {
        return false;
    }
    virtual bool OnSelectClientCertificate(CefRefPtr<CefBrowser> browser, bool isProxy, const CefString& host, int port,
                                           const X509CertificateList& certificates,
                                           CefRefPtr<CefSelectClientCertificateCallback> callback) {
        return false;
    }
    virtual void OnRenderViewReady(CefRefPtr<CefBrowser> browser) {}
    virtual bool OnRenderProcessUnresponsive(CefRefPtr<CefBrowser> browser,
                                             CefRefPtr<CefUnresponsiveProcessCallback> callback) {
        return false;
    }
    virtual void OnRenderProcessResponsive(CefRefPtr<CefBrowser> browser) {}
    virtual void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser, TerminationStatus status, int error_code,
                                           const CefString& error_string) {}
    virtual void OnDocumentAvailableInMainFrame(CefRefPtr<CefBrowser> browser) {}
};
