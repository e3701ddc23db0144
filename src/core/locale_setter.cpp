#include "zemo/locale_setter.h"

#include <clocale>
#include <mutex>
#include <utility>

#include "core/locale_names.h"
#include "core/user_locale.h"

namespace ZEMO::UI {
namespace {

constexpr char kUserLanguageInUtf8[] = ".UTF8";
constexpr int kNoCategory = -1;

}  // namespace

LocaleSetter& LocaleSetter::operator=(const LocaleSetter& /*other*/) { return *this; }  // NOLINT: there is no state
LocaleSetter& LocaleSetter::operator=(LocaleSetter&& /*other*/) noexcept { return *this; }

void LocaleSetter::setUTF8PreservePreSettedLocale() {
    const std::lock_guard lock(Core::localeMutex());
    try {
        setLocales();
    } catch (...) {
        std::setlocale(LC_ALL, kUserLanguageInUtf8);
    }
}

void LocaleSetter::setLocales() {
    const char* const told = std::setlocale(LC_ALL, nullptr);
    const std::string current = told ? told : "C";
    if (current == "C") {
        std::setlocale(LC_ALL, kUserLanguageInUtf8);
    } else if (Core::isLocalePerCategory(current)) {
        setLocaleLC(current);
    } else {
        setLocaleLCAll(current);
    }
}

void LocaleSetter::setLocaleLC(const std::string& locale) {
    // First for all: a category that stays "C" below ends on UTF-8 too.
    std::setlocale(LC_ALL, kUserLanguageInUtf8);
    for (const auto& [name, value] : Core::splitLocaleCategories(locale)) {
        const std::string utf8Name = Core::utf8LocaleName(value);
        const int category = getLocaleCategory(name);
        // The runtime ends the process over a category that it does not know.
        if (!utf8Name.empty() && category != kNoCategory) std::setlocale(category, utf8Name.c_str());
    }
}

void LocaleSetter::setLocaleLCAll(const std::string& locale) {
    const std::string utf8Name = Core::utf8LocaleName(locale);
    if (!utf8Name.empty()) std::setlocale(LC_ALL, utf8Name.c_str());
}

int LocaleSetter::getLocaleCategory(const std::string& name) {
    static const std::pair<const char*, int> kCategories[] = {{"LC_COLLATE", LC_COLLATE},
                                                              {"LC_CTYPE", LC_CTYPE},
                                                              {"LC_MONETARY", LC_MONETARY},
                                                              {"LC_NUMERIC", LC_NUMERIC},
                                                              {"LC_TIME", LC_TIME}};
    for (const auto& [known, category] : kCategories)
        if (name == known) return category;
    return kNoCategory;
}

}  // namespace ZEMO::UI
