#include "engine/client_scheme_handler_types.h"

#include "core/resource_names.h"
#include "zemo/string_util.h"

namespace ZEMO::UI {
namespace {

struct ServedType {
    const char* text;
    const char* mimeType;
};

// The first that an address holds decides.
constexpr ServedType kServedTypes[] = {
    {".css", "text/css"},     {".js", "application/x-javascript"},
    {".html", "text/html"},   {".jpg", "image/jpeg"},
    {".png", "image/png"},    {".jpeg", "image/jpeg"},
    {".gif", "image/gif"},    {".bmp", "image/bmp"},
    {".ico", "image/x-icon"}, {".tif", "image/tiff"},
    {".tiff", "image/tiff"},
};

}  // namespace

const char* resourceMimeType(const std::string& url) {
    for (const ServedType& type : kServedTypes) {
        if (url.find(type.text) != std::string::npos) return type.mimeType;
    }
    return nullptr;
}

std::string resourcePath(const std::string& url) {
    const std::string path = Core::StringUtil::replaceAll(url, Core::kCustomSchemeUrlPrefix, "");
    return Core::StringUtil::replaceAll(path, Core::kCustomSchemeDomain, "");
}

}  // namespace ZEMO::UI
