#pragma once

#include <compare>
#include <cstring>
#include <string>
#include <string_view>

#include "include/internal/cef_types.h"

typedef cef_string_utf16_t cef_string_t;
typedef cef_string_t* cef_string_userfree_t;

/// UTF-16 string of the engine's shape.  It owns its characters, or refers to a structure that the engine (or a
/// settings structure) owns; copying it always makes an owner of its own characters.
class CefString {
public:
    typedef char16_t char_type;
    typedef cef_string_t struct_type;
    typedef cef_string_userfree_t userfree_struct_type;

    CefString() = default;
    CefString(const CefString& other);
    CefString(CefString&& other) noexcept;
    CefString(const char* utf8);
    CefString(const std::string& utf8);
    CefString(const wchar_t* text);
    CefString(const std::wstring& text);
    CefString(const char16_t* text);
    CefString(const std::u16string& text);
    /// Refers to `text` without taking it over: assigning to this string assigns to `text`, also to a constant one.
    CefString(const struct_type* text);
    /// Copies the characters, or refers to them, which then must live longer than this string.
    CefString(const char16_t* text, size_t length, bool copy);
    ~CefString() { ClearAndFree(); }

    const char16_t* c_str() const { return string_->str; }
    size_t length() const { return string_->length; }
    size_t size() const { return string_->length; }
    bool empty() const { return string_->length == 0; }
    /// Less than, equal to or greater than 0, by UTF-16 unit.
    int compare(const CefString& other) const;

    void clear();
    /// Whether it has characters of its own, or a structure that it gives back.
    bool IsOwner() const { return owner_ || own_.str; }
    /// Drops this string's hold on a structure and makes it empty.
    void ClearAndFree();
    void Attach(struct_type* text, bool owner);
    void AttachToUserFree(userfree_struct_type text);
    /// The structure for a call that only reads it.
    const struct_type* GetStruct() const { return string_; }
    /// The structure for a call that may write it.
    struct_type* GetWritableStruct() { return string_; }

    bool FromString(const char* utf8, size_t length);
    bool FromString(const std::string& utf8) { return FromString(utf8.data(), utf8.size()); }
    bool FromString(const char* utf8);
    bool FromASCII(const char* text) { return FromString(text); }
    bool FromWString(const wchar_t* text, size_t length);
    bool FromWString(const std::wstring& text) { return FromWString(text.data(), text.size()); }
    bool FromString(const char16_t* text, size_t length, bool copy);
    bool FromString16(const char16_t* text, size_t length) { return FromString(text, length, true); }
    bool FromString16(const std::u16string& text) { return FromString(text.data(), text.size(), true); }

    /// UTF-8.  Half a surrogate pair becomes U+FFFD.
    std::string ToString() const;
    std::wstring ToWString() const;
    std::u16string ToString16() const;

    operator std::string() const { return ToString(); }
    operator std::wstring() const { return ToWString(); }
    operator std::u16string() const { return ToString16(); }

    CefString& operator=(const CefString& other);
    CefString& operator=(CefString&& other);
    CefString& operator=(const char* utf8);
    CefString& operator=(const std::string& utf8);
    CefString& operator=(const wchar_t* text);
    CefString& operator=(const std::wstring& text);
    CefString& operator=(const char16_t* text);
    CefString& operator=(const std::u16string& text);
    void swap(CefString& other);

    friend bool operator==(const CefString& a, const CefString& b) { return a.compare(b) == 0; }
    friend std::strong_ordering operator<=>(const CefString& a, const CefString& b) { return a.compare(b) <=> 0; }

private:
    std::u16string_view view() const { return {string_->str ? string_->str : u"", string_->length}; }

    struct_type own_{};
    struct_type* string_ = &own_;  // own_, or a structure that is referred to
    bool owner_ = false;           // the structure that is referred to came from the engine's heap and is given back
};
