#pragma once

#include "include/cef_base.h"

//@engine
class CefResponse : public virtual CefBaseRefCounted {
public:
    typedef std::multimap<CefString, CefString> HeaderMap;

    static CefRefPtr<CefResponse> Create();
    virtual bool IsReadOnly() = 0;
    virtual cef_errorcode_t GetError() = 0;
    virtual void SetError(cef_errorcode_t error) = 0;
    virtual int GetStatus() = 0;
    virtual void SetStatus(int status) = 0;
    virtual CefString GetStatusText() = 0;
    //@optional statusText
    virtual void SetStatusText(const CefString& statusText) = 0;
    virtual CefString GetMimeType() = 0;
    //@optional mimeType
    virtual void SetMimeType(const CefString& mimeType) = 0;
    virtual CefString GetCharset() = 0;
    //@optional charset
    virtual void SetCharset(const CefString& charset) = 0;
    virtual CefString GetHeaderByName(const CefString& name) = 0;
    //@optional value
    virtual void SetHeaderByName(const CefString& name, const CefString& value, bool overwrite) = 0;
    virtual void GetHeaderMap(HeaderMap& headerMap) = 0;
    virtual void SetHeaderMap(const HeaderMap& headerMap) = 0;
    virtual CefString GetURL() = 0;
    //@optional url
    virtual void SetURL(const CefString& url) = 0;
};
