#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "fuzz_check.h"
#include "zemo/url.h"

using ZEMO::Core::URL;

namespace {

// The same value made by cutting copies of the text, and joined from a list of pieces.
struct SlowUrl {
    std::string scheme, host, port, fragment, rawQuery;
    std::vector<std::string> segments;
    std::map<std::string, std::string> parameters;
};

// What stands before and behind the first `separator`; nothing if there is none.
std::optional<std::pair<std::string, std::string>> cut(const std::string& text, char separator) {
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] == separator) return std::pair(std::string(text, 0, i), std::string(text, i + 1));
    return std::nullopt;
}

SlowUrl parseSlowly(std::string text) {
    SlowUrl url;
    if (const auto parts = cut(text, '#')) std::tie(text, url.fragment) = *parts;
    if (const auto parts = cut(text, '?')) {
        text = parts->first;
        std::string left = parts->second + '&';
        while (const auto pieces = cut(left, '&')) {
            left = pieces->second;
            const auto pair = cut(pieces->first, '=');
            if (pair && !pair->first.empty() && !pair->second.empty()) url.parameters.insert(*pair);
        }
        if (url.parameters.empty()) url.rawQuery = parts->second;
    }
    if (const auto parts = cut(text, ':')) {
        std::tie(url.scheme, text) = *parts;
        if (text.substr(0, 2) == "//") text.erase(0, 2);
    }
    if (const auto parts = cut(text, '/')) {
        text = parts->first;
        std::string left = parts->second;
        while (const auto pieces = cut(left, '/')) {
            url.segments.push_back(pieces->first);
            left = pieces->second;
        }
        if (!left.empty()) url.segments.push_back(left);
    }
    url.host = text;
    if (const auto parts = cut(text, ':')) std::tie(url.host, url.port) = *parts;
    return url;
}

std::string encodeSlowly(const std::string& text, bool encode) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= 'a' && byte <= 'z') || byte == '-' || byte == '_' || byte == '.' || byte == '~';
        char escape[4] = {c, 0, 0, 0};
        if (encode && !plain) std::snprintf(escape, sizeof escape, "%%%02X", byte);
        if (escape[1] == 0) {
            result += c;
        } else {
            result += escape;
        }
    }
    return result;
}

std::string joinSlowly(const SlowUrl& url, bool encode) {
    const auto format = [encode](const std::string& text) { return encodeSlowly(text, encode); };
    std::vector<std::string> pieces;
    if (!url.scheme.empty()) pieces.push_back(format(url.scheme) + ":");
    if (!url.scheme.empty() && (!url.host.empty() || url.scheme == "file")) pieces.push_back("//");
    pieces.push_back(format(url.host));
    if (!url.port.empty()) pieces.push_back(":" + url.port);
    for (const std::string& segment : url.segments) pieces.push_back("/" + format(segment));
    std::string separator = "?";
    for (const auto& [key, value] : url.parameters) {
        pieces.push_back(separator + format(key) + "=" + format(value));
        separator = "&";
    }
    if (url.parameters.empty() && !url.rawQuery.empty()) pieces.push_back("?" + url.rawQuery);
    if (!url.fragment.empty()) pieces.push_back("#" + format(url.fragment));
    std::string result;
    for (const std::string& piece : pieces) result += piece;
    return result;
}

// Well-formed escapes only; nullopt where the text holds another one.
std::optional<std::string> decodeSlowly(const std::string& text) {
    const std::string digits = "0123456789ABCDEFabcdef";
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        if (i + 2 >= text.size() || digits.find(text[i + 1]) == std::string::npos ||
            digits.find(text[i + 2]) == std::string::npos || text[i + 1] == 0 || text[i + 2] == 0)
            return std::nullopt;
        result += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
        i += 2;
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    text.shrink_to_fit();
    const URL url(text);
    const SlowUrl slow = parseSlowly(text);

    FUZZ_CHECK(url.getScheme() == slow.scheme);
    FUZZ_CHECK(url.getHost() == slow.host);
    FUZZ_CHECK(url.getPort() == slow.port);
    FUZZ_CHECK(url.getFragment() == slow.fragment);
    FUZZ_CHECK(url.getQueryParameters() == slow.parameters);
    std::string path;
    for (const std::string& segment : slow.segments) path += "/" + segment;
    FUZZ_CHECK(url.getPath() == path);
    FUZZ_CHECK(url.getUrl() == joinSlowly(slow, false));
    FUZZ_CHECK(url.toEncodedString() == joinSlowly(slow, true));
    FUZZ_CHECK(url.isEqual(url.getUrl()));
    FUZZ_CHECK(url.isEqual(url));

    // Query and fragment lie behind separators that nothing before them can hold, so they survive a second parse.
    const URL again(url.getUrl());
    FUZZ_CHECK(again.getFragment() == url.getFragment());
    FUZZ_CHECK(again.getQuery() == url.getQuery());
    FUZZ_CHECK(again.getQueryParameters() == url.getQueryParameters());

    // Two texts that are equal when decoded are equal addresses, and the other way round.
    const size_t half = text.size() / 2;
    URL left(""), right("");
    left.setHost(text.substr(0, half));
    right.setHost(text.substr(half));
    const auto leftDecoded = decodeSlowly(left.getUrl()), rightDecoded = decodeSlowly(right.getUrl());
    const bool equal = left.isEqual(right);
    FUZZ_CHECK(equal == right.isEqual(left));
    if (leftDecoded && rightDecoded) FUZZ_CHECK(equal == (*leftDecoded == *rightDecoded));
    return 0;
}
