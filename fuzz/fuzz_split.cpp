#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "zemo/string_util.h"

using ZEMO::Core::StringSensitive;
using ZEMO::Core::StringUtil;

namespace {

std::vector<std::string> splitSlowly(const std::string& text, char delimiter) {
    if (text.find(delimiter) == std::string::npos) return {text};
    std::istringstream stream(text);
    std::vector<std::string> pieces;
    for (std::string piece; std::getline(stream, piece, delimiter);) pieces.push_back(piece);
    return pieces;
}

std::string trimSlowly(std::string text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.erase(text.begin());
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.pop_back();
    return text;
}

// In the copy itself, hit by hit.
std::string replaceSlowly(std::string text, const std::string& search, const std::string& replacement) {
    for (size_t at = 0; (at = text.find(search, at)) != std::string::npos; at += replacement.size())
        text = text.substr(0, at) + replacement + text.substr(at + search.size());
    return text;
}

bool startsAt(const std::string& text, size_t at, const std::string& part) {
    return at + part.size() <= text.size() &&
           std::equal(part.begin(), part.end(), text.begin() + static_cast<std::ptrdiff_t>(at));
}

size_t findSlowly(const std::string& text, const std::string& part, size_t from) {
    for (size_t at = from; at <= text.size(); ++at)
        if (startsAt(text, at, part)) return at;
    return std::string::npos;
}

}  // namespace

// Input: delimiter, start position, lengths of two markers and of a replacement, then these texts and the rest.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t kHead = 5;
    if (size < kHead) return 0;
    const char delimiter = static_cast<char>(data[0]);
    const size_t start = data[1];
    std::string rest(reinterpret_cast<const char*>(data) + kHead, size - kHead);
    const auto take = [&rest](size_t length) {
        std::string taken = rest.substr(0, std::min(length, rest.size()));
        rest.erase(0, taken.size());
        return taken;
    };
    const std::string begin = take(data[2] % 8), end = take(data[3] % 8), replacement = take(data[4] % 16);
    std::string text = rest;
    text.shrink_to_fit();

    const std::vector<std::string> pieces = StringUtil::splitString(text, delimiter);
    FUZZ_CHECK(pieces == splitSlowly(text, delimiter));
    std::string joined;
    for (const std::string& piece : pieces) joined += piece + delimiter;
    FUZZ_CHECK(joined == text || joined == text + delimiter);

    std::string trimmed = text;
    StringUtil::trimString(trimmed);
    FUZZ_CHECK(trimmed == trimSlowly(text));

    if (!begin.empty())
        FUZZ_CHECK(StringUtil::replaceAll(text, begin, replacement) == replaceSlowly(text, begin, replacement));

    std::string removed = text, kept;
    StringUtil::removeCharacter(removed, delimiter);
    for (const char c : text)
        if (c != delimiter) kept += c;
    FUZZ_CHECK(removed == kept);

    std::string ranged = text;
    const size_t position = StringUtil::replaceRangeBetweenStrings(ranged, begin, end, replacement, start);
    const size_t beginAt = findSlowly(text, begin, start);
    const size_t endAt = beginAt == std::string::npos ? beginAt : findSlowly(text, end, beginAt + begin.size());
    FUZZ_CHECK(position == endAt);
    FUZZ_CHECK(ranged == (endAt == std::string::npos
                              ? text
                              : text.substr(0, beginAt + begin.size()) + replacement + text.substr(endAt)));

    std::string upper = text, lower = text;
    StringUtil::changeLetterCase(upper, StringUtil::LetterCase::Upper);
    StringUtil::changeLetterCase(lower, StringUtil::LetterCase::Lower);
    FUZZ_CHECK(StringUtil::isEqualCaseInSensitive(upper, lower));
    FUZZ_CHECK(StringUtil::isEqual(upper, lower, StringSensitive::Sensitive) == (upper == lower));
    return 0;
}
