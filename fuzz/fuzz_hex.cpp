#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "zemo/string_util.h"

using ZEMO::Core::StringUtil;

namespace {

int digitOf(char c) {
    const std::string digits = "0123456789abcdef";
    const size_t found = digits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

// What a number of at most two characters can be, spelt out: blanks, one sign, digits up to the first other character.
// ("0x" has no room for a digit behind it and so is the number 0.)
char byteOf(const std::string& piece) {
    size_t i = 0;
    while (i < piece.size() && std::string(" \t\n\v\f\r").find(piece[i]) != std::string::npos) ++i;
    bool negative = false;
    if (i < piece.size() && (piece[i] == '-' || piece[i] == '+')) negative = piece[i++] == '-';
    int value = 0;
    for (; i < piece.size() && digitOf(piece[i]) >= 0; ++i) value = value * 16 + digitOf(piece[i]);
    return static_cast<char>(negative ? 256 - value : value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    input.shrink_to_fit();
    const std::vector<unsigned char> bytes(data, data + size);

    std::string expected;
    for (size_t i = 0; i < input.size(); i += 2) expected += byteOf(input.substr(i, 2));
    FUZZ_CHECK(StringUtil::hexStrToStr(input) == expected);
    const std::vector<unsigned char> decoded = StringUtil::hexStrToByte(input);
    FUZZ_CHECK(std::string(decoded.begin(), decoded.end()) == expected);

    std::string hex;
    for (const unsigned char byte : bytes) {
        char text[3] = {};
        std::snprintf(text, sizeof text, "%02X", byte);
        hex += text;
    }
    FUZZ_CHECK(StringUtil::StrToHexStr(input) == hex);
    FUZZ_CHECK(StringUtil::byteToHexStr(bytes) == hex);
    FUZZ_CHECK(StringUtil::hexStrToStr(hex) == input);
    return 0;
}
