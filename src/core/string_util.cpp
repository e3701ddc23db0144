#include "zemo/string_util.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>

namespace ZEMO::Core {
namespace {

constexpr char kBase64Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kUrlSafeAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr char kUpperHexDigits[] = "0123456789ABCDEF";
constexpr char kLowerHexDigits[] = "0123456789abcdef";

// Value of each byte as a digit, -1 where it is none.
using DigitTable = std::array<int8_t, 256>;

constexpr DigitTable makeDigitTable(std::string_view digits) {
    DigitTable table{};
    table.fill(-1);
    for (size_t i = 0; i < digits.size(); ++i) table[static_cast<unsigned char>(digits[i])] = static_cast<int8_t>(i);
    return table;
}

constexpr DigitTable kBase64Values = makeDigitTable(kBase64Alphabet);

// The URL-safe decoder takes both alphabets: it is the standard one after a replacement of `-` and `_`.
constexpr DigitTable kUrlSafeValues = [] {
    DigitTable table = kBase64Values;
    table[static_cast<unsigned char>('-')] = table[static_cast<unsigned char>('+')];
    table[static_cast<unsigned char>('_')] = table[static_cast<unsigned char>('/')];
    return table;
}();

constexpr DigitTable kHexValues = [] {
    DigitTable table = makeDigitTable(kUpperHexDigits);
    for (unsigned char c = 'a'; c <= 'f'; ++c) table[c] = static_cast<int8_t>(c - 'a' + 10);
    return table;
}();

constexpr unsigned char toByte(char c) { return static_cast<unsigned char>(c); }

std::string encodeBase64(const unsigned char* data, size_t size, const char* alphabet, bool padded) {
    const size_t rest = size % 3;
    const size_t restLength = rest == 0 ? 0 : padded ? 4 : rest + 1;
    std::string result(size / 3 * 4 + restLength, '=');
    char* out = result.data();
    const unsigned char* const wholeEnd = data + (size - rest);
    for (; data != wholeEnd; data += 3, out += 4) {
        const uint32_t bits = uint32_t{data[0]} << 16 | uint32_t{data[1]} << 8 | data[2];
        out[0] = alphabet[bits >> 18];
        out[1] = alphabet[bits >> 12 & 63];
        out[2] = alphabet[bits >> 6 & 63];
        out[3] = alphabet[bits & 63];
    }
    if (rest != 0) {
        const uint32_t bits = uint32_t{data[0]} << 16 | (rest == 2 ? uint32_t{data[1]} << 8 : 0);
        out[0] = alphabet[bits >> 18];
        out[1] = alphabet[bits >> 12 & 63];
        if (rest == 2) out[2] = alphabet[bits >> 6 & 63];
    }
    return result;
}

template <class Bytes>
Bytes decodeBase64(const std::string& text, const DigitTable& values) {
    const auto* in = reinterpret_cast<const unsigned char*>(text.data());
    size_t left = text.size();
    Bytes result(left / 4 * 3 + left % 4 * 6 / 8, typename Bytes::value_type{});
    auto* const first = reinterpret_cast<unsigned char*>(result.data());
    unsigned char* out = first;
    for (; left >= 4; in += 4, left -= 4, out += 3) {
        // A foreign byte is -1, which stays negative through shift and or.
        const int bits = values[in[0]] << 18 | values[in[1]] << 12 | values[in[2]] << 6 | values[in[3]];
        if (bits < 0) break;
        out[0] = static_cast<unsigned char>(bits >> 16);
        out[1] = static_cast<unsigned char>(bits >> 8);
        out[2] = static_cast<unsigned char>(bits);
    }
    // At most four characters remain that count: a short end, or a group with a foreign byte in it.
    uint32_t bits = 0;
    int bitCount = 0;
    for (; left > 0 && values[*in] >= 0; ++in, --left) {
        bits = bits << 6 | static_cast<uint32_t>(values[*in]);
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            *out++ = static_cast<unsigned char>(bits >> bitCount);
        }
    }
    result.resize(static_cast<size_t>(out - first));
    return result;
}

std::string encodeHex(const unsigned char* data, size_t size) {
    std::string result(size * 2, '\0');
    char* out = result.data();
    for (const unsigned char* const end = data + size; data != end; ++data, out += 2) {
        out[0] = kUpperHexDigits[*data >> 4];
        out[1] = kUpperHexDigits[*data & 15];
    }
    return result;
}

template <class Bytes>
Bytes decodeHex(const std::string& hex) {
    Bytes result((hex.size() + 1) / 2, typename Bytes::value_type{});
    for (size_t i = 0; i < result.size(); ++i) {
        const char high = hex[2 * i];
        const char low = 2 * i + 1 < hex.size() ? hex[2 * i + 1] : '\0';
        int value = kHexValues[toByte(high)] << 4 | kHexValues[toByte(low)];
        if (value < 0) {
            // Not two digits: blanks, signs and a missing digit have a meaning of their own to strtol.
            const char piece[] = {high, low, '\0'};
            value = static_cast<int>(std::strtol(piece, nullptr, 16));
        }
        result[i] = static_cast<typename Bytes::value_type>(static_cast<unsigned char>(value));
    }
    return result;
}

bool sameLetters(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(),
                      [](char x, char y) { return x == y || std::tolower(toByte(x)) == std::tolower(toByte(y)); });
}

// The answer for ASCII is the same in every locale; only the other bytes are worth a call.
bool isSpace(char c) {
    const unsigned char byte = toByte(c);
    return byte < 0x80 ? byte == ' ' || (byte >= '\t' && byte <= '\r') : std::isspace(byte) != 0;
}

}  // namespace

StringUtil& StringUtil::operator=(const StringUtil&) { return *this; }
StringUtil& StringUtil::operator=(StringUtil&&) { return *this; }

std::string StringUtil::base64Encode(const std::string& data) {
    return encodeBase64(reinterpret_cast<const unsigned char*>(data.data()), data.size(), kBase64Alphabet, true);
}

std::string StringUtil::base64Encode(const std::vector<unsigned char>& data) {
    return encodeBase64(data.data(), data.size(), kBase64Alphabet, true);
}

std::string StringUtil::base64DecodeString(const std::string& text) {
    return decodeBase64<std::string>(text, kBase64Values);
}

std::vector<unsigned char> StringUtil::base64DecodeVector(const std::string& text) {
    return decodeBase64<std::vector<unsigned char>>(text, kBase64Values);
}

std::string StringUtil::base64URLSafeEncode(const std::string& data) {
    return encodeBase64(reinterpret_cast<const unsigned char*>(data.data()), data.size(), kUrlSafeAlphabet, false);
}

std::string StringUtil::base64URLSafeDecode(const std::string& text) {
    return decodeBase64<std::string>(text, kUrlSafeValues);
}

std::string StringUtil::byteToHexStr(const std::vector<unsigned char>& data) {
    return encodeHex(data.data(), data.size());
}

std::string StringUtil::StrToHexStr(const std::string& data) {
    return encodeHex(reinterpret_cast<const unsigned char*>(data.data()), data.size());
}

std::string StringUtil::hexStrToStr(const std::string& hex) { return decodeHex<std::string>(hex); }

std::vector<unsigned char> StringUtil::hexStrToByte(const std::string& hex) {
    return decodeHex<std::vector<unsigned char>>(hex);
}

std::string StringUtil::getRandomData(size_t count) {
    const auto bytes = static_cast<uint32_t>(count);
    std::string result;
    result.reserve(size_t{bytes} * 2);
    std::random_device source;
    for (uint32_t i = 0; i < bytes; ++i) {
        // A generator for each byte, so that no state outlives it.
        std::mt19937 generator(source());
        const auto value = static_cast<uint32_t>(generator()) >> 24;
        result += kLowerHexDigits[value >> 4];
        result += kLowerHexDigits[value & 15];
    }
    return result;
}

std::string StringUtil::generateUUID() {
    std::string result = getRandomData(8);
    for (const size_t bytes : {4, 4, 4, 12}) {
        result += '-';
        result += getRandomData(bytes);
    }
    return result;
}

std::string StringUtil::getUrlSafeRandomString(size_t length) {
    std::string result;
    result.reserve(length);
    std::mt19937 generator(std::random_device{}());
    for (size_t i = 0; i < length; ++i) result += kUrlSafeAlphabet[static_cast<uint32_t>(generator()) >> 26];
    return result;
}

bool StringUtil::isEmptyString(const std::string& s) { return s.empty(); }

bool StringUtil::isEqual(const std::string& a, const std::string& b, StringSensitive mode) {
    return isEqual(std::string_view(a), std::string_view(b), mode);
}

bool StringUtil::isEqual(std::string_view a, std::string_view b, StringSensitive mode) {
    if (a.size() != b.size()) return false;
    return mode == StringSensitive::Sensitive ? a == b : sameLetters(a, b);
}

bool StringUtil::isEqualCaseInSensitive(const std::string& a, const std::string& b) {
    return isEqual(a, b, StringSensitive::Insensitive);
}

bool StringUtil::isEqualCaseInSensitive(std::string_view a, std::string_view b) {
    return isEqual(a, b, StringSensitive::Insensitive);
}

void StringUtil::changeLetterCase(std::string& s, LetterCase to) {
    if (to == LetterCase::Upper) {
        for (char& c : s) c = static_cast<char>(std::toupper(toByte(c)));
    } else {
        for (char& c : s) c = static_cast<char>(std::tolower(toByte(c)));
    }
}

std::string StringUtil::longlongToString(long long value) { return std::to_string(value); }

void StringUtil::removeCharacter(std::string& s, const char& c) {
    const char wanted = c;  // a copy: `c` may lie in `s` and change under the search
    s.erase(std::remove(s.begin(), s.end(), wanted), s.end());
}

std::string StringUtil::replaceAll(const std::string& text, const std::string& search, const std::string& replacement) {
    size_t found = search.empty() ? std::string::npos : text.find(search);
    if (found == std::string::npos) return text;
    std::string result;
    result.reserve(text.size() + (replacement.size() > search.size() ? replacement.size() - search.size() : 0));
    size_t kept = 0;
    for (; found != std::string::npos; found = text.find(search, kept)) {
        result.append(text, kept, found - kept);
        result += replacement;
        kept = found + search.size();
    }
    result.append(text, kept);
    return result;
}

size_t StringUtil::replaceRangeBetweenStrings(std::string& text, const std::string& begin, const std::string& end,
                                              const std::string& replacement, size_t startPosition) {
    const size_t beginPosition = text.find(begin, startPosition);
    if (beginPosition == std::string::npos) return std::string::npos;
    const size_t rangeStart = beginPosition + begin.size();
    const size_t rangeEnd = text.find(end, rangeStart);
    if (rangeEnd == std::string::npos) return std::string::npos;
    text.replace(rangeStart, rangeEnd - rangeStart, replacement);
    return rangeEnd;
}

std::vector<std::string> StringUtil::splitString(const std::string& text, char delimiter) {
    const auto delimiters = static_cast<size_t>(std::count(text.begin(), text.end(), delimiter));
    std::vector<std::string> pieces;
    if (delimiters == 0) {
        pieces.push_back(text);
        return pieces;
    }
    pieces.reserve(delimiters + 1);
    size_t start = 0;
    for (size_t i = 0; i < delimiters; ++i) {
        const size_t end = text.find(delimiter, start);
        pieces.emplace_back(text, start, end - start);
        start = end + 1;
    }
    if (start < text.size()) pieces.emplace_back(text, start);
    return pieces;
}

void StringUtil::trimString(std::string& s) {
    size_t end = s.size();
    while (end > 0 && isSpace(s[end - 1])) --end;
    size_t start = 0;
    while (start < end && isSpace(s[start])) ++start;
    s.erase(end);
    s.erase(0, start);
}

}  // namespace ZEMO::Core
