#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

namespace ZEMO::Core {

/// Owns a BSTR: a text that COM is given or hands out.
class ComText {
public:
    ComText() = default;
    /// Null when there is no memory.
    explicit ComText(const wchar_t* text) : value(SysAllocString(text)) {}
    ~ComText() { SysFreeString(value); }
    ComText(const ComText&) = delete;
    ComText& operator=(const ComText&) = delete;

    BSTR get() const { return value; }
    /// For a call that fills it; only while it is empty.
    BSTR* out() { return &value; }
    explicit operator bool() const { return value != nullptr; }
    /// The whole text, also behind a NUL.
    std::wstring text() const { return {value ? value : L"", SysStringLen(value)}; }

private:
    BSTR value = nullptr;
};

}  // namespace ZEMO::Core
