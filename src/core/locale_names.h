#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The texts in which the C runtime tells a locale. No system call: any thread.
namespace ZEMO::Core {

/// `locale` with ".UTF8" in the place of its code page; empty for the locale "C", which has no such form.
std::string utf8LocaleName(std::string_view locale);

/// True for the form that tells one locale for each category: "LC_COLLATE=C;LC_CTYPE=...".
bool isLocalePerCategory(std::string_view locale);

/// Category names with their locales, in the order of the text. Pieces without a "=" are left out.
std::vector<std::pair<std::string, std::string>> splitLocaleCategories(std::string_view locale);

}  // namespace ZEMO::Core
