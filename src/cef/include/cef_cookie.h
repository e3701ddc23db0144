#pragma once

#include "include/cef_base.h"
#include "include/cef_callback.h"

//@client
class CefCookieVisitor : public virtual CefBaseRefCounted {
public:
    /// Once a cookie, on the UI thread.  False ends the visit.
    virtual bool Visit(const CefCookie& cookie, int count, int total, bool& deleteCookie) = 0;
};

//@client
class CefSetCookieCallback : public virtual CefBaseRefCounted {
public:
    virtual void OnComplete(bool success) = 0;
};

//@client
class CefDeleteCookiesCallback : public virtual CefBaseRefCounted {
public:
    /// -1 when the number is not known.
    virtual void OnComplete(int num_deleted) = 0;
};

//@engine
class CefCookieManager : public virtual CefBaseRefCounted {
public:
    static CefRefPtr<CefCookieManager> GetGlobalManager(CefRefPtr<CefCompletionCallback> callback);
    virtual bool VisitAllCookies(CefRefPtr<CefCookieVisitor> visitor) = 0;
    virtual bool VisitUrlCookies(const CefString& url, bool includeHttpOnly, CefRefPtr<CefCookieVisitor> visitor) = 0;
    virtual bool SetCookie(const CefString& url, const CefCookie& cookie, CefRefPtr<CefSetCookieCallback> callback) = 0;
    //@optional url cookie_name
    virtual bool DeleteCookies(const CefString& url, const CefString& cookie_name,
                               CefRefPtr<CefDeleteCookiesCallback> callback) = 0;
    virtual bool FlushStore(CefRefPtr<CefCompletionCallback> callback) = 0;
};
