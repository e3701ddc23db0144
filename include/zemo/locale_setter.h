#pragma once

#include <zemo/export.h>

#include <string>

namespace ZEMO::UI {

/// Makes the narrow strings of the C runtime UTF-8 and keeps the language and country that the game has chosen in each
/// category. Changes the whole process's locale: call it when no other thread reads that. InitUILibrary does so once.
/// Needs the universal C runtime; with an older one the locale stays as it is.
class LocaleSetter {
public:
    LocaleSetter() = default;
    LocaleSetter(const LocaleSetter&) = default;  ///< There is nothing to copy.
    LocaleSetter(LocaleSetter&&) = default;       ///< There is nothing to move.
    /// Does nothing: there is nothing to assign.
    ZEMO_API LocaleSetter& operator=(const LocaleSetter& other);
    /// Does nothing either.
    ZEMO_API LocaleSetter& operator=(LocaleSetter&& other) noexcept;

    /// Throws nothing. A language that the runtime does not have in UTF-8 stays as it was.
    ZEMO_API void setUTF8PreservePreSettedLocale();

private:
    void setLocales();
    void setLocaleLC(const std::string& locale);
    void setLocaleLCAll(const std::string& locale);
    int getLocaleCategory(const std::string& name);
};

}  // namespace ZEMO::UI
