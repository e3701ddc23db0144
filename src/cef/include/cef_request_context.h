#pragma once

#include "include/cef_callback.h"
#include "include/cef_cookie.h"
#include "include/cef_preference.h"
#include "include/cef_request_context_handler.h"

class CefSchemeHandlerFactory;

//@engine
class CefRequestContext : public CefPreferenceManager {
public:
    static CefRefPtr<CefRequestContext> GetGlobalContext();
    static CefRefPtr<CefRequestContext> CreateContext(const CefRequestContextSettings& settings,
                                                      CefRefPtr<CefRequestContextHandler> handler);
    virtual bool IsSame(CefRefPtr<CefRequestContext> other) = 0;
    virtual bool IsSharingWith(CefRefPtr<CefRequestContext> other) = 0;
    virtual bool IsGlobal() = 0;
    virtual CefString GetCachePath() = 0;
    virtual CefRefPtr<CefCookieManager> GetCookieManager(CefRefPtr<CefCompletionCallback> callback) = 0;
    //@optional domain_name
    virtual bool RegisterSchemeHandlerFactory(const CefString& scheme_name, const CefString& domain_name,
                                              CefRefPtr<CefSchemeHandlerFactory> factory) = 0;
    virtual bool ClearSchemeHandlerFactories() = 0;
    virtual void ClearCertificateExceptions(CefRefPtr<CefCompletionCallback> callback) = 0;
    virtual void ClearHttpAuthCredentials(CefRefPtr<CefCompletionCallback> callback) = 0;
    virtual void CloseAllConnections(CefRefPtr<CefCompletionCallback> callback) = 0;
};
