#include "core/json_quoted.h"

#include <cstddef>

namespace ZEMO::Core {
namespace {

constexpr bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
constexpr bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

constexpr bool isPlain(char16_t unit) { return (unit >= 0x20) & (unit != u'"') & (unit != u'\\') & !isSurrogate(unit); }

/// Without a branch for each, so that the compiler takes many units at a time.
bool isBlockPlain(const char16_t* block, size_t size) {
    bool all = true;
    for (size_t i = 0; i < size; ++i) all &= isPlain(block[i]);
    return all;
}

size_t plainUnits(std::u16string_view text) {
    constexpr size_t kBlock = 64;
    size_t count = 0;
    while (text.size() - count >= kBlock && isBlockPlain(text.data() + count, kBlock)) count += kBlock;
    while (count < text.size() && isPlain(text[count])) ++count;
    return count;
}

void appendNumber(std::u16string& out, char16_t unit) {
    out += u"\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += u"0123456789abcdef"[(unit >> shift) & 15];
}

void appendEscaped(std::u16string& out, char16_t unit) {
    constexpr std::u16string_view kUnits = u"\"\\\b\f\n\r\t", kLetters = u"\"\\bfnrt";
    const size_t known = kUnits.find(unit);
    if (known == std::u16string_view::npos) return appendNumber(out, unit);
    out += u'\\';
    out += kLetters[known];
}

}  // namespace

std::u16string jsonQuoted(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size() + 2);
    out += u'"';
    for (auto rest = text; !rest.empty();) {
        const size_t plain = plainUnits(rest);
        out += rest.substr(0, plain);
        rest.remove_prefix(plain);
        if (rest.empty()) break;
        const bool isPair = rest.size() > 1 && isHigh(rest[0]) && isLow(rest[1]);
        if (isPair) {
            out += rest.substr(0, 2);
        } else {
            appendEscaped(out, rest[0]);
        }
        rest.remove_prefix(isPair ? 2 : 1);
    }
    out += u'"';
    return out;
}

}  // namespace ZEMO::Core
