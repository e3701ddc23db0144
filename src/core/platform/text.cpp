#include "core/platform/text.h"

#include <codecvt>
#include <locale>
#include <stdexcept>
#include <utility>

// Deprecated for want of a better error report, which nobody needs here, and without a successor that throws.
#if defined(__GNUC__) || defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#elif defined(_MSC_VER)
#pragma warning(disable : 4996)
#endif

namespace ZEMO::Core {
namespace {

using Converter = std::wstring_convert<std::codecvt_utf8_utf16<wchar_t>>;

// The converter itself raises std::range_error for what is wrong, but not everywhere for a character that the text's
// end cuts off: that one shows in what it converted.
template <class Result, class Text>
Result whole(const Converter& converter, Result result, const Text& text) {
    if (converter.converted() != text.size()) throw std::range_error("text ends within a character");
    return result;
}

}  // namespace

std::string wideToUtf8(const std::wstring& text) {
    Converter converter;
    auto result = converter.to_bytes(text);
    return whole(converter, std::move(result), text);
}

std::wstring utf8ToWide(const std::string& text) {
    Converter converter;
    auto result = converter.from_bytes(text);
    return whole(converter, std::move(result), text);
}

}  // namespace ZEMO::Core

#if defined(__GNUC__) || defined(__clang__)
#pragma GCC diagnostic pop
#endif
