#include "engine/client_scheme_handler.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>

#include "core/log.h"
#include "core/module_paths.h"
#include "engine/client_scheme_handler_types.h"
#include "include/wrapper/cef_helpers.h"

namespace ZEMO::UI {
namespace {

// Never a part of a file: all or nothing.
std::string readWholeFile(const std::filesystem::path& file) {
    try {
        std::ifstream stream;
        stream.exceptions(std::ios::failbit | std::ios::badbit);
        stream.open(file, std::ios::binary);
        stream.seekg(0, std::ios::end);
        std::string bytes(static_cast<size_t>(stream.tellg()), '\0');
        stream.seekg(0);
        stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    } catch (const std::exception& error) {
        Core::logDebugA("resource can't be read: %s\n", error.what());
        return {};
    }
}

// A narrow file name, read by the active code page as any: a base folder with letters that this code page does not have
// is not found, unless the game's manifest makes that page UTF-8.
std::filesystem::path resourceFile(const std::string& url) {
    const auto base = Core::toSharedUtf8(Core::resolveModuleRelativePath(L"resources\\html").c_str());
    std::string path = (base ? base.get() : std::string()) + resourcePath(url);
    std::replace(path.begin(), path.end(), '\\', '/');
    return Core::widenNarrowPath(path);
}

std::string readResourceFile(const std::string& url) {
    const std::filesystem::path file = resourceFile(url);
    if (std::filesystem::is_regular_file(std::filesystem::status(file))) return readWholeFile(file);
    Core::logDebugA("resource is missing: %.300s\n", url.c_str());
    return {};
}

}  // namespace

bool ClientSchemeHandler::loadResource(const std::string& url) {
    const char* const type = resourceMimeType(url);
    if (!type) {
        Core::logDebugA("resource of a type that is not served: %.300s\n", url.c_str());
        return false;
    }
    data = readResourceFile(url);
    mimeType = type;
    return true;
}

bool ClientSchemeHandler::Open(CefRefPtr<CefRequest> request, bool& handle_request,
                               CefRefPtr<CefCallback> /*callback*/) {
    handle_request = true;  // decided here and now: false cancels the request
    return loadResource(request->GetURL());
}

void ClientSchemeHandler::GetResponseHeaders(CefRefPtr<CefResponse> response, int64_t& response_length,
                                             CefString& /*redirectUrl*/) {
    response->SetMimeType(mimeType);
    response->SetStatus(200);
    response_length = static_cast<int64_t>(data.size());
}

bool ClientSchemeHandler::Read(void* data_out, int bytes_to_read, int& bytes_read,
                               CefRefPtr<CefResourceReadCallback> /*callback*/) {
    bytes_read = 0;
    if (offset >= data.size() || bytes_to_read < 0) return false;
    const size_t count = std::min(data.size() - offset, static_cast<size_t>(bytes_to_read));
    std::memcpy(data_out, data.data() + offset, count);
    offset += count;
    bytes_read = static_cast<int>(count);
    return true;
}

CefRefPtr<CefResourceHandler> ClientSchemeHandlerFactory::Create(CefRefPtr<CefBrowser> /*browser*/,
                                                                 CefRefPtr<CefFrame> /*frame*/,
                                                                 const CefString& /*scheme_name*/,
                                                                 CefRefPtr<CefRequest> /*request*/) {
    CEF_REQUIRE_IO_THREAD();
    return new ClientSchemeHandler;
}

}  // namespace ZEMO::UI
