#include "include/internal/cef_string.h"

#include <windows.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "binding_functions.h"

// Characters are allocated here and freed through the structure's own dtor, so that either side of the border can clear
// a string that the other one filled, and so that strings work before the engine is loaded.

namespace {

void freeCharacters(char16_t* text) { std::free(text); }

/// Ends what the structure holds.  Characters without a dtor are only referred to.
void clearStruct(cef_string_t& text) {
    if (text.dtor && text.str) text.dtor(text.str);
    text = {};
}

void assignCopy(cef_string_t& target, const char16_t* text, size_t length) {
    cef_string_t fresh{};
    if (text && length) {
        fresh.str = static_cast<char16_t*>(std::malloc((length + 1) * sizeof(char16_t)));
        if (!fresh.str) throw std::bad_alloc();
        std::memcpy(fresh.str, text, length * sizeof(char16_t));
        fresh.str[length] = 0;
        fresh.length = length;
        fresh.dtor = &freeCharacters;
    }
    clearStruct(target);  // last: `text` may lie inside the target
    target = fresh;
}

// Text longer than an int's worth of characters can't be converted by Windows in one call; it is cut there.
constexpr size_t kMaxUnits = 0x7fffffff;

/// Texts of megabytes, such as a script's result, are mostly ASCII: a loop over them costs a tenth of the system's
/// call.
template <class Target, class Source>
bool copyAscii(const Source* text, size_t length, Target& target) {
    Source all = 0;
    for (size_t i = 0; i < length; ++i) all |= text[i];
    if (all & ~0x7f) return false;
    target.resize(length);
    for (size_t i = 0; i < length; ++i) target[i] = static_cast<typename Target::value_type>(text[i]);
    return true;
}

std::u16string widen(const char* utf8, size_t length) {
    if (!utf8 || !length) return {};
    if (std::u16string plain; copyAscii(utf8, length, plain)) return plain;
    const int size = static_cast<int>(length < kMaxUnits ? length : kMaxUnits);
    const int units = MultiByteToWideChar(CP_UTF8, 0, utf8, size, nullptr, 0);
    std::u16string result(static_cast<size_t>(units > 0 ? units : 0), 0);
    if (units > 0) MultiByteToWideChar(CP_UTF8, 0, utf8, size, reinterpret_cast<wchar_t*>(result.data()), units);
    return result;
}

std::string narrow(const char16_t* text, size_t length) {
    if (!text || !length) return {};
    if (std::string plain; copyAscii(text, length, plain)) return plain;
    const int size = static_cast<int>(length < kMaxUnits ? length : kMaxUnits);
    const auto* wide = reinterpret_cast<const wchar_t*>(text);
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide, size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(bytes > 0 ? bytes : 0), 0);
    if (bytes > 0) WideCharToMultiByte(CP_UTF8, 0, wide, size, result.data(), bytes, nullptr, nullptr);
    return result;
}

}  // namespace

CefString::CefString(const CefString& other) { assignCopy(own_, other.c_str(), other.length()); }

CefString::CefString(CefString&& other) noexcept {
    if (other.string_ == &other.own_) {
        std::swap(own_, other.own_);
    } else if (other.owner_) {
        string_ = std::exchange(other.string_, &other.own_);
        owner_ = std::exchange(other.owner_, false);
    } else {
        assignCopy(own_, other.c_str(), other.length());  // the structure may not live as long as this string
    }
}

CefString::CefString(const char* utf8) { FromString(utf8); }
CefString::CefString(const std::string& utf8) { FromString(utf8); }
CefString::CefString(const wchar_t* text) { *this = text; }
CefString::CefString(const std::wstring& text) { FromWString(text); }
CefString::CefString(const char16_t* text) { *this = text; }
CefString::CefString(const std::u16string& text) { FromString16(text); }
CefString::CefString(const struct_type* text) {
    if (text) string_ = const_cast<struct_type*>(text);
}
CefString::CefString(const char16_t* text, size_t length, bool copy) { FromString(text, length, copy); }

int CefString::compare(const CefString& other) const { return view().compare(other.view()); }

void CefString::clear() { clearStruct(*string_); }

void CefString::ClearAndFree() {
    clearStruct(own_);
    if (owner_) {
        if (cef_binding::engine.cef_string_userfree_utf16_free) {
            cef_binding::engine.cef_string_userfree_utf16_free(string_);
        } else {
            clearStruct(*string_);
        }
    }
    string_ = &own_;
    owner_ = false;
}

void CefString::Attach(struct_type* text, bool owner) {
    ClearAndFree();
    if (!text) return;
    string_ = text;
    owner_ = owner;
}

void CefString::AttachToUserFree(userfree_struct_type text) { Attach(text, true); }

bool CefString::FromString(const char* utf8, size_t length) { return FromString16(widen(utf8, length)); }

bool CefString::FromString(const char* utf8) { return FromString(utf8, utf8 ? std::strlen(utf8) : 0); }

bool CefString::FromWString(const wchar_t* text, size_t length) {
    static_assert(sizeof(wchar_t) == sizeof(char16_t));
    return FromString(reinterpret_cast<const char16_t*>(text), length, true);
}

bool CefString::FromString(const char16_t* text, size_t length, bool copy) {
    if (copy) {
        assignCopy(*string_, text, length);
    } else {
        clearStruct(*string_);
        *string_ = {const_cast<char16_t*>(text), length, nullptr};
    }
    return true;
}

std::string CefString::ToString() const { return narrow(c_str(), length()); }

std::wstring CefString::ToWString() const {
    const auto text = view();
    return std::wstring(text.begin(), text.end());
}

std::u16string CefString::ToString16() const { return std::u16string(view()); }

// To itself it keeps its text here; the engine's own string loses it then, so nothing may be built on that.
CefString& CefString::operator=(const CefString& other) {
    if (this != &other) FromString(other.c_str(), other.length(), true);
    return *this;
}

// A string that refers to a structure keeps referring to it: the characters are what is assigned.
CefString& CefString::operator=(CefString&& other) {
    if (this == &other) return *this;
    if (string_ == &own_ && other.string_ == &other.own_) {
        std::swap(own_, other.own_);
        return *this;
    }
    return *this = static_cast<const CefString&>(other);
}

CefString& CefString::operator=(const char* utf8) {
    FromString(utf8);
    return *this;
}
CefString& CefString::operator=(const std::string& utf8) {
    FromString(utf8);
    return *this;
}
CefString& CefString::operator=(const wchar_t* text) {
    FromWString(text, text ? std::char_traits<wchar_t>::length(text) : 0);
    return *this;
}
CefString& CefString::operator=(const std::wstring& text) {
    FromWString(text);
    return *this;
}
CefString& CefString::operator=(const char16_t* text) {
    FromString(text, text ? std::char_traits<char16_t>::length(text) : 0, true);
    return *this;
}
CefString& CefString::operator=(const std::u16string& text) {
    FromString16(text);
    return *this;
}

void CefString::swap(CefString& other) {
    CefString third(std::move(other));
    other = std::move(*this);
    *this = std::move(third);
}
