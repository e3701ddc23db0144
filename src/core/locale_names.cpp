#include "core/locale_names.h"

#include <algorithm>

namespace ZEMO::Core {

std::string utf8LocaleName(std::string_view locale) {
    const std::string_view language = locale.substr(0, locale.find('.'));
    return language == "C" ? std::string() : std::string(language) + ".UTF8";
}

bool isLocalePerCategory(std::string_view locale) { return locale.find('=') != std::string_view::npos; }

std::vector<std::pair<std::string, std::string>> splitLocaleCategories(std::string_view locale) {
    std::vector<std::pair<std::string, std::string>> categories;
    while (!locale.empty()) {
        const std::string_view piece = locale.substr(0, locale.find(';'));
        if (const size_t equals = piece.find('='); equals != std::string_view::npos)
            categories.emplace_back(piece.substr(0, equals), piece.substr(equals + 1));
        locale.remove_prefix(std::min(piece.size() + 1, locale.size()));
    }
    return categories;
}

}  // namespace ZEMO::Core
