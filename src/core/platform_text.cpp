#include "core/platform_text.h"

#include <codecvt>
#include <locale>

// Deprecated for want of a better error report, which nobody needs here, and without a successor that throws.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#elif defined(_MSC_VER)
#pragma warning(disable : 4996)
#endif

namespace ZEMO::Core {
namespace {

using Converter = std::wstring_convert<std::codecvt_utf8_utf16<wchar_t>>;

}  // namespace

std::string wideToUtf8(const std::wstring& text) { return Converter().to_bytes(text); }

std::wstring utf8ToWide(const std::string& text) { return Converter().from_bytes(text); }

}  // namespace ZEMO::Core

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
