// Bytes a second of the string functions and the URL value, each next to what does the same work elsewhere: the
// system's own coder and splitter of addresses on Windows, the C++ library otherwise. `floor` in the label names that
// neighbour, which runs on the same input in the same program.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "zemo/string_util.h"
#include "zemo/url.h"

#ifdef _WIN32
#include <windows.h>
// after windows.h
#include <wincrypt.h>
#include <wininet.h>
#endif

namespace {

using ZEMO::Core::StringUtil;
using ZEMO::Core::URL;

constexpr int64_t kShort = 64;
constexpr int64_t kLong = 1 << 16;

std::string randomBytes(int64_t size) {
    std::mt19937 generator(1);
    std::string bytes(static_cast<size_t>(size), '\0');
    for (char& c : bytes) c = static_cast<char>(generator() >> 24);
    return bytes;
}

// Words of 1 to 15 letters with a comma behind each.
std::string commaText(int64_t size) {
    std::mt19937 generator(2);
    std::string text;
    while (text.size() < static_cast<size_t>(size)) text += std::string(1 + generator() % 15, 'w') + ',';
    text.resize(static_cast<size_t>(size));
    return text;
}

void finish(benchmark::State& state, size_t bytes, const std::string& floor = {}) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
    if (!floor.empty()) state.SetLabel("floor=" + floor + "/" + std::to_string(state.range(0)));
}

// Runs `work` on `input`; the compiler may neither skip it nor know the input.
template <class Input, class Work>
void repeat(benchmark::State& state, const Input& input, Work work) {
    const Input* hidden = &input;
    for (auto _ : state) {
        benchmark::DoNotOptimize(hidden);
        auto result = work(*hidden);
        benchmark::DoNotOptimize(result);
    }
}

#ifdef _WIN32
// Found at run time: the library itself does not link the two, so neither does this program.
template <class Function>
Function systemFunction(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(GetProcAddress(LoadLibraryW(library), name));
}

std::string systemEncode(const std::string& data, DWORD form) {
    static const auto encode = systemFunction<decltype(&CryptBinaryToStringA)>(L"crypt32.dll", "CryptBinaryToStringA");
    const auto* bytes = reinterpret_cast<const BYTE*>(data.data());
    DWORD length = 0;
    encode(bytes, static_cast<DWORD>(data.size()), form | CRYPT_STRING_NOCRLF, nullptr, &length);
    std::string text(length, '\0');
    encode(bytes, static_cast<DWORD>(data.size()), form | CRYPT_STRING_NOCRLF, text.data(), &length);
    text.resize(length);
    return text;
}

std::string systemDecode(const std::string& text, DWORD form) {
    static const auto decode = systemFunction<decltype(&CryptStringToBinaryA)>(L"crypt32.dll", "CryptStringToBinaryA");
    DWORD length = 0;
    decode(text.data(), static_cast<DWORD>(text.size()), form, nullptr, &length, nullptr, nullptr);
    std::string data(length, '\0');
    decode(text.data(), static_cast<DWORD>(text.size()), form, reinterpret_cast<BYTE*>(data.data()), &length, nullptr,
           nullptr);
    data.resize(length);
    return data;
}

constexpr DWORD kBase64Form = CRYPT_STRING_BASE64;
constexpr DWORD kHexForm = CRYPT_STRING_HEXRAW;
constexpr const char* kEncodeBase64Floor = "systemEncodeBase64";
constexpr const char* kDecodeBase64Floor = "systemDecodeBase64";
constexpr const char* kEncodeHexFloor = "systemEncodeHex";
#else
constexpr const char* kEncodeBase64Floor = "copyBytes";
constexpr const char* kDecodeBase64Floor = "copyBytes";
constexpr const char* kEncodeHexFloor = "copyBytes";
#endif
constexpr const char* kDecodeHexFloor = "strtolHex";

void copyBytes(benchmark::State& state) {
    const std::string data = randomBytes(state.range(0));
    repeat(state, data, [](const std::string& s) { return s; });
    finish(state, data.size());
}

void encodeBase64(benchmark::State& state) {
    const std::string data = randomBytes(state.range(0));
    repeat(state, data, [](const std::string& s) { return StringUtil::base64Encode(s); });
    finish(state, data.size(), kEncodeBase64Floor);
}

void decodeBase64(benchmark::State& state) {
    const std::string text = StringUtil::base64Encode(randomBytes(state.range(0)));
    repeat(state, text, [](const std::string& s) { return StringUtil::base64DecodeString(s); });
    finish(state, text.size(), kDecodeBase64Floor);
}

void encodeUrlSafe(benchmark::State& state) {
    const std::string data = randomBytes(state.range(0));
    repeat(state, data, [](const std::string& s) { return StringUtil::base64URLSafeEncode(s); });
    finish(state, data.size(), kEncodeBase64Floor);
}

void encodeHex(benchmark::State& state) {
    const std::string data = randomBytes(state.range(0));
    repeat(state, data, [](const std::string& s) { return StringUtil::StrToHexStr(s); });
    finish(state, data.size(), kEncodeHexFloor);
}

void decodeHex(benchmark::State& state) {
    const std::string text = StringUtil::StrToHexStr(randomBytes(state.range(0) / 2));
    repeat(state, text, [](const std::string& s) { return StringUtil::hexStrToStr(s); });
    finish(state, text.size(), kDecodeHexFloor);
}

// The system's hexadecimal reader refuses what strtol takes; strtol is what the rules are made of.
void strtolHex(benchmark::State& state) {
    const std::string text = StringUtil::StrToHexStr(randomBytes(state.range(0) / 2));
    repeat(state, text, [](const std::string& s) {
        std::string data(s.size() / 2, '\0');
        for (size_t i = 0; i < data.size(); ++i) {
            const char piece[] = {s[2 * i], s[2 * i + 1], '\0'};
            data[i] = static_cast<char>(std::strtol(piece, nullptr, 16));
        }
        return data;
    });
    finish(state, text.size());
}

#ifdef _WIN32
void systemEncodeBase64(benchmark::State& state) {
    const std::string data = randomBytes(state.range(0));
    if (systemEncode(data, kBase64Form) != StringUtil::base64Encode(data)) state.SkipWithError("not the same text");
    repeat(state, data, [](const std::string& s) { return systemEncode(s, kBase64Form); });
    finish(state, data.size());
}

void systemDecodeBase64(benchmark::State& state) {
    const std::string text = StringUtil::base64Encode(randomBytes(state.range(0)));
    if (systemDecode(text, kBase64Form) != StringUtil::base64DecodeString(text))
        state.SkipWithError("not the same bytes");
    repeat(state, text, [](const std::string& s) { return systemDecode(s, kBase64Form); });
    finish(state, text.size());
}

void systemEncodeHex(benchmark::State& state) {
    const std::string data = randomBytes(state.range(0));
    if (!StringUtil::isEqualCaseInSensitive(systemEncode(data, kHexForm), StringUtil::StrToHexStr(data)))
        state.SkipWithError("not the same digits");
    repeat(state, data, [](const std::string& s) { return systemEncode(s, kHexForm); });
    finish(state, data.size());
}
#endif

void split(benchmark::State& state) {
    const std::string text = commaText(state.range(0));
    repeat(state, text, [](const std::string& s) { return StringUtil::splitString(s, ','); });
    finish(state, text.size(), "getlineSplit");
}

void getlineSplit(benchmark::State& state) {
    const std::string text = commaText(state.range(0));
    repeat(state, text, [](const std::string& s) {
        std::istringstream stream(s);
        std::vector<std::string> pieces;
        for (std::string piece; std::getline(stream, piece, ',');) pieces.push_back(piece);
        return pieces;
    });
    finish(state, text.size());
}

// Half of the text is blanks, a quarter at each end.
std::string blankText(int64_t size) {
    const auto quarter = static_cast<size_t>(size / 4);
    return std::string(quarter, ' ') + std::string(quarter * 2, 'x') + std::string(quarter, '\n');
}

void trim(benchmark::State& state) {
    const std::string text = blankText(state.range(0));
    repeat(state, text, [](std::string s) {
        StringUtil::trimString(s);
        return s;
    });
    finish(state, text.size(), "findNotOfTrim");
}

void findNotOfTrim(benchmark::State& state) {
    const std::string text = blankText(state.range(0));
    repeat(state, text, [](const std::string& s) {
        const size_t first = s.find_first_not_of(" \t\n\v\f\r");
        return s.substr(first, s.find_last_not_of(" \t\n\v\f\r") + 1 - first);
    });
    finish(state, text.size());
}

void replaceAllLonger(benchmark::State& state) {
    const std::string text = commaText(state.range(0));
    repeat(state, text, [](const std::string& s) { return StringUtil::replaceAll(s, ",", "<br>"); });
    finish(state, text.size(), "regexReplaceLonger");
}

void regexReplaceLonger(benchmark::State& state) {
    const std::string text = commaText(state.range(0));
    const std::regex comma(",");
    repeat(state, text, [&comma](const std::string& s) { return std::regex_replace(s, comma, "<br>"); });
    finish(state, text.size());
}

void removeCommas(benchmark::State& state) {
    const std::string text = commaText(state.range(0));
    repeat(state, text, [](std::string s) {
        StringUtil::removeCharacter(s, ',');
        return s;
    });
    finish(state, text.size(), "eraseCommas");
}

void eraseCommas(benchmark::State& state) {
    const std::string text = commaText(state.range(0));
    repeat(state, text, [](std::string s) {
        std::erase(s, ',');
        return s;
    });
    finish(state, text.size());
}

std::string longUrl(int64_t size) {
    std::string text = "https://store.example.com:8443/shop/items/featured";
    for (int i = 0; static_cast<int64_t>(text.size()) < size; ++i)
        text += (i ? "&key" : "?key") + std::to_string(i) + "=value" + std::to_string(i * 7);
    return text + "#top";
}

void parseUrl(benchmark::State& state) {
    const std::string text = longUrl(state.range(0));
    repeat(state, text, [](const std::string& s) { return URL(s); });
#ifdef _WIN32
    finish(state, text.size(), "systemCrackUrl");
#else
    finish(state, text.size(), "regexUrl");
#endif
}

// The rule of RFC 3986, appendix B. It cuts the five parts only and leaves path and query whole.
void regexUrl(benchmark::State& state) {
    const std::string text = longUrl(state.range(0));
    const std::regex rule(R"(^(([^:/?#]+):)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
    repeat(state, text, [&rule](const std::string& s) {
        std::smatch parts;
        std::regex_match(s, parts, rule);
        return parts;
    });
    finish(state, text.size());
}

#ifdef _WIN32
// Answers pointers into the text: no part is copied, the query is not taken apart.
void systemCrackUrl(benchmark::State& state) {
    const std::string text = longUrl(state.range(0));
    const auto crack = systemFunction<decltype(&InternetCrackUrlA)>(L"wininet.dll", "InternetCrackUrlA");
    repeat(state, text, [crack](const std::string& s) {
        URL_COMPONENTSA parts{};
        parts.dwStructSize = sizeof parts;
        parts.dwSchemeLength = parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = 1;
        crack(s.c_str(), static_cast<DWORD>(s.size()), 0, &parts);
        return parts.dwHostNameLength;
    });
    finish(state, text.size());
}
#endif

void joinUrl(benchmark::State& state) {
    const URL url(longUrl(state.range(0)));
    repeat(state, url, [](const URL& u) { return u.getUrl(); });
    finish(state, url.getUrl().size(), "streamJoin");
}

void joinUrlEncoded(benchmark::State& state) {
    const URL url(longUrl(state.range(0)));
    repeat(state, url, [](const URL& u) { return u.toEncodedString(); });
    finish(state, url.getUrl().size(), "streamJoin");
}

// The same text from parts that lie ready.
void streamJoin(benchmark::State& state) {
    const URL url(longUrl(state.range(0)));
    const auto parameters = url.getQueryParameters();
    const std::string path = url.getPath();
    repeat(state, parameters, [&path](const std::map<std::string, std::string>& p) {
        std::ostringstream stream;
        stream << "https" << "://" << "store.example.com" << ':' << "8443" << path;
        char separator = '?';
        for (const auto& [key, value] : p) {
            stream << separator << key << '=' << value;
            separator = '&';
        }
        stream << "#top";
        return stream.str();
    });
    finish(state, url.getUrl().size());
}

#define ZEMO_BENCHMARK(name) BENCHMARK(name)->Arg(kShort)->Arg(kLong)
ZEMO_BENCHMARK(copyBytes);
ZEMO_BENCHMARK(encodeBase64);
ZEMO_BENCHMARK(encodeUrlSafe);
ZEMO_BENCHMARK(decodeBase64);
ZEMO_BENCHMARK(encodeHex);
ZEMO_BENCHMARK(decodeHex);
ZEMO_BENCHMARK(strtolHex);
ZEMO_BENCHMARK(split);
ZEMO_BENCHMARK(getlineSplit);
ZEMO_BENCHMARK(trim);
ZEMO_BENCHMARK(findNotOfTrim);
ZEMO_BENCHMARK(replaceAllLonger);
ZEMO_BENCHMARK(regexReplaceLonger);
ZEMO_BENCHMARK(removeCommas);
ZEMO_BENCHMARK(eraseCommas);
// Addresses: a usual one and one with many parameters. The recursive regex engine would overflow its stack at 64 KiB.
#define ZEMO_URL_BENCHMARK(name) BENCHMARK(name)->Arg(100)->Arg(1500)
ZEMO_URL_BENCHMARK(parseUrl);
ZEMO_URL_BENCHMARK(regexUrl);
ZEMO_URL_BENCHMARK(joinUrl);
ZEMO_URL_BENCHMARK(joinUrlEncoded);
ZEMO_URL_BENCHMARK(streamJoin);
#ifdef _WIN32
ZEMO_BENCHMARK(systemEncodeBase64);
ZEMO_BENCHMARK(systemDecodeBase64);
ZEMO_BENCHMARK(systemEncodeHex);
ZEMO_URL_BENCHMARK(systemCrackUrl);
#endif

}  // namespace
