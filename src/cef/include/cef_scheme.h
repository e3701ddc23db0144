#pragma once

#include "include/cef_browser.h"
#include "include/cef_resource_handler.h"

/// Only valid inside CefApp::OnRegisterCustomSchemes.
//@scoped
class CefSchemeRegistrar : public CefBaseScoped {
public:
    virtual bool AddCustomScheme(const CefString& scheme_name, int options) = 0;
};

/// Makes a handler for each request of its scheme, on the IO thread.
//@client
class CefSchemeHandlerFactory : public virtual CefBaseRefCounted {
public:
    virtual CefRefPtr<CefResourceHandler> Create(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                                 const CefString& scheme_name, CefRefPtr<CefRequest> request) = 0;
};

//@function
//@optional domain_name
bool CefRegisterSchemeHandlerFactory(const CefString& scheme_name, const CefString& domain_name,
                                     CefRefPtr<CefSchemeHandlerFactory> factory);
//@function
bool CefClearSchemeHandlerFactories();
