#include "browser/loopback_request.h"

namespace ZEMO::UI {

std::optional<std::string> requestedId(std::string_view received) {
    const std::string_view text = received.substr(0, received.find('\0'));
    const auto keyword = text.find(kRequestIdKeyword);
    if (keyword == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(keyword + kRequestIdKeyword.size(), kRequestIdLength));
}

std::string redirectResponse(std::string_view url) {
    constexpr std::string_view kHead = "HTTP/1.1 302 Found\r\nLocation: ";
    constexpr std::string_view kEnd = "\r\n\r\n";
    std::string response;
    response.reserve(kHead.size() + url.size() + kEnd.size());
    response.append(kHead).append(url).append(kEnd);
    return response;
}

}  // namespace ZEMO::UI
