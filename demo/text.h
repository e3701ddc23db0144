#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace demo {

std::wstring toWide(std::string_view utf8);
std::string toUtf8(std::wstring_view wide);

/// A path from UTF-8 text; std::filesystem::path would read a plain std::string in the system's own code page.
inline std::filesystem::path toPath(std::string_view utf8) { return std::filesystem::path(toWide(utf8)); }

}  // namespace demo
