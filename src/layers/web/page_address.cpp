#include "layers/web/page_address.h"

#include <algorithm>
#include <cctype>

#include "core/module_paths.h"
#include "core/resource_names.h"
#include "core/resource_paths.h"
#include "include/cef_parser.h"
#include "zemo/string_util.h"

namespace ZEMO::UI {
namespace {

std::string toUtf8(const std::wstring& text) {
    const auto utf8 = Core::toSharedUtf8(text.c_str());
    return utf8 ? std::string(utf8.get()) : std::string();
}

std::string withForwardSlashes(std::string text) {
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

// Everything before the last separator of either kind; the whole text when there is none.
std::string_view parentOf(std::string_view path) { return path.substr(0, path.find_last_of("/\\")); }

std::string_view lastComponentOf(std::string_view path) {
    const size_t cut = path.find_last_of("/\\");
    return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

}  // namespace

std::string localPageAddress(const std::string& name) {
    return withForwardSlashes(
        toUtf8(L"file:///" + Core::libraryBaseDirectory() + L"/resources/html/" + Core::to_wide(name) + L".html"));
}

std::string reloadPageAddress(const std::string& name) {
    return "file:///" + toUtf8(Core::getLocalHtmlDirectory().wstring()) + "/" + name + ".html";
}

std::string firstLoadAddress(const std::string& url) {
    std::string folded = url;
    std::transform(folded.begin(), folded.end(), folded.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (folded.starts_with("http://") || folded.starts_with("https://")) return url;
    return localPageAddress(url);
}

std::string firstPageAddress(const std::string& nameOrPath) {
    if (nameOrPath.find(':') == std::string::npos) return localPageAddress(nameOrPath);
    return withForwardSlashes(nameOrPath + ".html");
}

std::string rebaseHtml(std::string_view html, std::string_view path) {
    const std::string_view directoryName = lastComponentOf(parentOf(path));
    std::string prefix = Core::kCustomSchemeUrlPrefix;
    prefix += Core::kCustomSchemeDomain;
    prefix += '/';
    prefix += directoryName;
    prefix += '/';
    return Core::StringUtil::replaceAll(std::string(html), "../", prefix);
}

bool isRefusedAddress(const std::string& address) {
    if (address.size() > kLongestAddress) return true;
    if (address.find_first_not_of(" \t\r\n") == std::string::npos) return true;
    // Text without a scheme is completed by the engine.
    if (address.find("://") == std::string::npos) return false;
    CefURLParts parts;
    return !CefParseURL(address, parts);
}

std::string htmlDataAddress(std::string_view html, std::string_view path) {
    const std::string text = rebaseHtml(html, path);
    return "data:text/html;base64," + CefURIEncode(CefBase64Encode(text.data(), text.size()), false).ToString();
}

}  // namespace ZEMO::UI
