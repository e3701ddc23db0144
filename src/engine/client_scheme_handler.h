#pragma once

#include <string>

#include "include/cef_scheme.h"

namespace ZEMO::UI {

/// Answers one request for a file of resources\html beside the library: read-only, the whole file at once, no cache.
/// What is asked for decides the type (client_scheme_handler_types.h); a file that is missing or can't be read is an
/// empty answer. Nothing keeps a page inside that folder.
///
/// The engine calls it on its IO thread or a thread of its pool, one call at a time.
class ClientSchemeHandler : public CefResourceHandler {
public:
    bool Open(CefRefPtr<CefRequest> request, bool& handle_request, CefRefPtr<CefCallback> callback) override;
    void GetResponseHeaders(CefRefPtr<CefResponse> response, int64_t& response_length, CefString& redirectUrl) override;
    bool Read(void* data_out, int bytes_to_read, int& bytes_read, CefRefPtr<CefResourceReadCallback> callback) override;
    void Cancel() override {}

    /// Takes the file that `url` asks for. False: an address of no served type. Throws
    /// std::filesystem::filesystem_error where the system does not tell what stands there (access denied).
    bool loadResource(const std::string& url);

private:
    std::string data;
    std::string mimeType;
    size_t offset = 0;  ///< next byte to hand out

    IMPLEMENT_REFCOUNTING(ClientSchemeHandler);
};

/// Makes a handler for each request of the scheme. IO thread.
class ClientSchemeHandlerFactory : public CefSchemeHandlerFactory {
public:
    CefRefPtr<CefResourceHandler> Create(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                         const CefString& scheme_name, CefRefPtr<CefRequest> request) override;

private:
    IMPLEMENT_REFCOUNTING(ClientSchemeHandlerFactory);
};

}  // namespace ZEMO::UI
