#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "zemo/string_util.h"

using ZEMO::Core::StringUtil;

namespace {

// Bit by bit, without a table: a text of '0' and '1' that is read eight at a time.
std::string decodeSlowly(const std::string& text, bool urlSafe) {
    std::string bits;
    for (char c : text) {
        if (urlSafe && c == '-') c = '+';
        if (urlSafe && c == '_') c = '/';
        int value = 0;
        if (c >= 'A' && c <= 'Z') {
            value = c - 'A';
        } else if (c >= 'a' && c <= 'z') {
            value = c - 'a' + 26;
        } else if (c >= '0' && c <= '9') {
            value = c - '0' + 52;
        } else if (c == '+') {
            value = 62;
        } else if (c == '/') {
            value = 63;
        } else {
            break;
        }
        for (int bit = 5; bit >= 0; --bit) bits += (value >> bit & 1) ? '1' : '0';
    }
    std::string result;
    for (size_t i = 0; i + 8 <= bits.size(); i += 8) {
        int byte = 0;
        for (size_t k = 0; k < 8; ++k) byte = byte * 2 + (bits[i + k] - '0');
        result += static_cast<char>(byte);
    }
    return result;
}

std::string encodeSlowly(const std::string& data) {
    std::string bits;
    for (const char c : data)
        for (int bit = 7; bit >= 0; --bit) bits += (static_cast<unsigned char>(c) >> bit & 1) ? '1' : '0';
    while (bits.size() % 6 != 0) bits += '0';
    std::string result;
    for (size_t i = 0; i < bits.size(); i += 6) {
        const int value = std::stoi(bits.substr(i, 6), nullptr, 2);
        const int letter = value < 26    ? 'A' + value
                           : value < 52  ? 'a' + value - 26
                           : value < 62  ? '0' + value - 52
                           : value == 62 ? '+'
                                         : '/';
        result += static_cast<char>(letter);
    }
    while (result.size() % 4 != 0) result += '=';
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    input.shrink_to_fit();
    const std::vector<unsigned char> bytes(data, data + size);

    // As a text to decode.
    const std::string decoded = StringUtil::base64DecodeString(input);
    FUZZ_CHECK(decoded == decodeSlowly(input, false));
    const std::vector<unsigned char> decodedBytes = StringUtil::base64DecodeVector(input);
    FUZZ_CHECK(std::string(decodedBytes.begin(), decodedBytes.end()) == decoded);
    FUZZ_CHECK(StringUtil::base64URLSafeDecode(input) == decodeSlowly(input, true));

    // As bytes to encode.
    const std::string encoded = StringUtil::base64Encode(input);
    FUZZ_CHECK(encoded == encodeSlowly(input));
    FUZZ_CHECK(StringUtil::base64Encode(bytes) == encoded);
    FUZZ_CHECK(StringUtil::base64DecodeString(encoded) == input);
    std::string urlSafe;
    for (const char c : encoded)
        if (c != '=') urlSafe += c == '+' ? '-' : c == '/' ? '_' : c;
    FUZZ_CHECK(StringUtil::base64URLSafeEncode(input) == urlSafe);
    FUZZ_CHECK(StringUtil::base64URLSafeDecode(urlSafe) == input);
    return 0;
}
