#pragma once

#include <string>

namespace ZEMO::Core {

/// The strict conversions of the platform functions. Both raise std::range_error for text that is not valid; this is
/// the difference to to_wide(), which replaces what it can't convert. Any thread.
std::string wideToUtf8(const std::wstring& text);
std::wstring utf8ToWide(const std::string& text);

}  // namespace ZEMO::Core
