#include "zemo/url.h"

#include <array>

#include "zemo/string_util.h"

namespace ZEMO::Core {
namespace {

constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";
constexpr char kHexDigits[] = "0123456789ABCDEF";

constexpr std::array<bool, 256> kIsUnreserved = [] {
    std::array<bool, 256> table{};
    for (const char c : kUnreserved) table[static_cast<unsigned char>(c)] = true;
    return table;
}();

// The two ways to join a URL. Plain functions: they work in any static constructor and destructor.
using Formatter = std::string (*)(const std::string& text);
std::string rawFormatter(const std::string& text) { return text; }

std::string percentEncoder(const std::string& text) {
    size_t escaped = 0;
    for (const char c : text) escaped += !kIsUnreserved[static_cast<unsigned char>(c)];
    if (escaped == 0) return text;
    std::string result(text.size() + escaped * 2, '%');
    char* out = result.data();
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (kIsUnreserved[byte]) {
            *out++ = c;
        } else {
            out[1] = kHexDigits[byte >> 4];
            out[2] = kHexDigits[byte & 15];
            out += 3;
        }
    }
    return result;
}

// Without the copy that the raw formatter would make.
void appendFormatted(std::string& result, const std::string& text, Formatter format) {
    if (format == rawFormatter) {
        result += text;
    } else {
        result += format(text);
    }
}

// Digits and letters of either case give their hexadecimal value once `digitZero` and `letterZero` are taken off; any
// other byte gives what the same sum makes of it. Modulo 256 the offsets of the high digit vanish apart from the 7.
constexpr int escapeDigit(char c, int digitZero, int letterZero) {
    const int value = static_cast<signed char>(c);
    return value < 'A' ? value - digitZero : (value & ~0x20) - letterZero;
}

static_assert(static_cast<unsigned char>(escapeDigit('f', 0, 7) * 16 + escapeDigit('7', '0', '7')) == 0xF7);
static_assert(static_cast<unsigned char>(escapeDigit('9', 0, 7) * 16 + escapeDigit('B', '0', '7')) == 0x9B);

// Escapes are not validated. One that is cut off by the end of the text takes NULs for the digits that are missing.
std::string percentDecode(const std::string& text) {
    std::string result(text.size(), '\0');
    char* out = result.data();
    const char* in = text.data();
    const char* const end = in + text.size();
    while (in != end) {
        const char c = *in++;
        if (c != '%') {
            *out++ = c;
            continue;
        }
        const char high = in != end ? *in++ : '\0';
        const char low = in != end ? *in++ : '\0';
        *out++ =
            static_cast<char>(static_cast<unsigned char>(escapeDigit(high, 0, 7) * 16 + escapeDigit(low, '0', '7')));
    }
    result.resize(static_cast<size_t>(out - result.data()));
    return result;
}

}  // namespace

// What reaches into a URL's fields. A class of its own, so that only the public operations leave the library.
struct UrlText {
    static void parse(URL& url, std::string_view window);
    static void parseQuery(URL& url, std::string_view query);
    static std::string join(const URL& url, Formatter format);
    static void appendPath(std::string& result, const URL& url, Formatter format);
    static void appendQuery(std::string& result, const URL& url, Formatter format);
};

// Works on a window that shrinks from the right (fragment, query), then from the left (scheme). Each search takes the
// first hit in what is left: a colon in the path counts for the scheme where none comes before it.
void UrlText::parse(URL& url, std::string_view window) {
    if (const size_t hash = window.find('#'); hash != std::string_view::npos) {
        url.fragment = window.substr(hash + 1);
        window = window.substr(0, hash);
    }
    if (const size_t question = window.find('?'); question != std::string_view::npos) {
        parseQuery(url, window.substr(question + 1));
        window = window.substr(0, question);
    }
    if (const size_t colon = window.find(':'); colon != std::string_view::npos) {
        url.scheme = window.substr(0, colon);
        window = window.substr(colon + 1);
        if (window.starts_with("//")) window.remove_prefix(2);
    }
    std::string_view authority = window;
    if (const size_t slash = window.find('/'); slash != std::string_view::npos) {
        authority = window.substr(0, slash);
        const std::string_view path = window.substr(slash + 1);
        if (!path.empty()) url.pathSegments = StringUtil::splitString(std::string(path), '/');
    }
    const size_t colon = authority.find(':');
    url.host = authority.substr(0, colon);
    if (colon != std::string_view::npos) url.port = authority.substr(colon + 1);
}

void UrlText::parseQuery(URL& url, std::string_view query) {
    for (std::string_view left = query; !left.empty();) {
        const size_t ampersand = left.find('&');
        const std::string_view piece = left.substr(0, ampersand);
        left = ampersand == std::string_view::npos ? std::string_view() : left.substr(ampersand + 1);

        const size_t equals = piece.find('=');
        if (equals == std::string_view::npos || equals == 0 || equals + 1 == piece.size()) continue;
        url.queryParameters.try_emplace(std::string(piece.substr(0, equals)), piece.substr(equals + 1));
    }
    if (url.queryParameters.empty()) url.rawQuery = query;
}

// Goes through the virtual getters where there is one, so that a derived class that answers otherwise is heard.
std::string UrlText::join(const URL& url, Formatter format) {
    const std::string hostText = format(url.getHost());
    const std::string portText = url.getPort();
    std::string result = format(url.getScheme());
    if (!result.empty()) {
        const bool slashes = !hostText.empty() || result == "file";
        result += slashes ? "://" : ":";
    }
    result += hostText;
    if (!portText.empty()) {
        result += ':';
        result += portText;
    }
    appendPath(result, url, format);
    if (const size_t querySize = url.getQuery().size(); querySize != 0) {
        result.reserve(result.size() + querySize + 1);
        result += '?';
        appendQuery(result, url, format);
    }
    if (const std::string fragmentText = format(url.getFragment()); !fragmentText.empty()) {
        result += '#';
        result += fragmentText;
    }
    return result;
}

void UrlText::appendPath(std::string& result, const URL& url, Formatter format) {
    for (const std::string& segment : url.pathSegments) {
        result += '/';
        appendFormatted(result, segment, format);
    }
}

void UrlText::appendQuery(std::string& result, const URL& url, Formatter format) {
    if (url.queryParameters.empty()) {
        result += url.rawQuery;
        return;
    }
    bool first = true;
    for (const auto& [key, value] : url.queryParameters) {
        if (!first) result += '&';
        first = false;
        appendFormatted(result, key, format);
        result += '=';
        appendFormatted(result, value, format);
    }
}

IURL::~IURL() = default;
URL::~URL() = default;
URL::URL(const URL&) = default;
URL& URL::operator=(const URL&) = default;

URL::URL(const std::string& url) { UrlText::parse(*this, url); }

bool URL::isEqual(const std::string& other) const { return getUrl() == other; }
bool URL::isEqual(std::string_view other) const { return getUrl() == other; }
bool URL::isEqual(const IURL& other) const { return percentDecode(other.getUrl()) == percentDecode(getUrl()); }

std::string URL::getUrl() const { return UrlText::join(*this, rawFormatter); }
std::string URL::toString() const { return getUrl(); }
std::string URL::toEncodedString() const { return UrlText::join(*this, percentEncoder); }

std::string URL::getScheme() const { return scheme; }
std::string URL::getHost() const { return host; }
std::string URL::getPort() const { return port; }
std::string URL::getFragment() const { return fragment; }
std::map<std::string, std::string> URL::getQueryParameters() const { return queryParameters; }

std::string URL::getPath() const {
    std::string result;
    UrlText::appendPath(result, *this, rawFormatter);
    return result;
}

std::string URL::getQuery() const {
    std::string result;
    UrlText::appendQuery(result, *this, rawFormatter);
    return result;
}

std::string URL::getQueryParameter(const std::string& key) const {
    const auto found = queryParameters.find(key);
    return found == queryParameters.end() ? std::string() : found->second;
}

void URL::addQueryParameter(const std::string& key, const std::string& value) {
    queryParameters.try_emplace(key, value);
}

void URL::addPathSegment(const std::string& segment) { pathSegments.push_back(segment); }
void URL::setScheme(const std::string& newScheme) { scheme = newScheme; }
void URL::setHost(const std::string& newHost) { host = newHost; }
void URL::setPort(const std::string& newPort) { port = newPort; }

}  // namespace ZEMO::Core
