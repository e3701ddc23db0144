#pragma once

#include "include/cef_browser.h"
#include "include/cef_callback.h"
#include "include/cef_response.h"

//@engine
class CefResourceSkipCallback : public virtual CefBaseRefCounted {
public:
    //@capi cont
    virtual void Continue(int64_t bytes_skipped) = 0;
};

//@engine
class CefResourceReadCallback : public virtual CefBaseRefCounted {
public:
    //@capi cont
    virtual void Continue(int bytes_read) = 0;
};

/// Answers one request; called on the IO thread or a thread of the engine's pool, one call at a time.
//@client
class CefResourceHandler : public virtual CefBaseRefCounted {
public:
    /// False with handle_request false asks the engine to try the older ProcessRequest.
    virtual bool Open(CefRefPtr<CefRequest> request, bool& handle_request, CefRefPtr<CefCallback> callback) {
        handle_request = false;
        return false;
    }
    virtual bool ProcessRequest(CefRefPtr<CefRequest> request, CefRefPtr<CefCallback> callback) { return false; }
    /// response_length -1: not known.
    virtual void GetResponseHeaders(CefRefPtr<CefResponse> response, int64_t& response_length,
                                    CefString& redirectUrl) = 0;
    virtual bool Skip(int64_t bytes_to_skip, int64_t& bytes_skipped, CefRefPtr<CefResourceSkipCallback> callback) {
        bytes_skipped = -2;
        return false;
    }
    virtual bool Read(void* data_out, int bytes_to_read, int& bytes_read, CefRefPtr<CefResourceReadCallback> callback) {
        bytes_read = -1;
        return false;
    }
    virtual bool ReadResponse(void* data_out, int bytes_to_read, int& bytes_read, CefRefPtr<CefCallback> callback) {
        bytes_read = -2;
        return false;
    }
    virtual void Cancel() = 0;
};
