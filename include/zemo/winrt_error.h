#pragma once

/// \file
/// What the functions of <zemo/platform.h> that ask the Windows Runtime raise.
///
/// The classes have the names and the behaviour of the runtime's C++ projection, and one layout in library and game: it
/// depends on the compiler alone (ZEMO_WINRT_PROJECTION), not on what lies on an include path. With Microsoft's
/// compiler they are the projection's own classes, so that its headers have to be there. With any other they are the
/// classes below, declared without anything of the projection. Both ways they are found in ZEMO::Platform::WinRt.
///
/// They are found as winrt::hresult_error and so on as well, unless the program includes the projection itself: then
/// those names are the projection's, whose classes this library does not raise with such a compiler. Catch by the names
/// of ZEMO::Platform::WinRt there, or call through raisedByProjection.
#ifndef ZEMO_WINRT_PROJECTION
#ifdef _MSC_VER
/// 1: the projection's own classes, 0: those of this header.
#define ZEMO_WINRT_PROJECTION 1  // library and game must agree on it
#else
#define ZEMO_WINRT_PROJECTION 0
#endif
#endif

#if ZEMO_WINRT_PROJECTION
#include <winrt/base.h>

namespace ZEMO::Platform::WinRt {

using namespace ::winrt;

}  // namespace ZEMO::Platform::WinRt
#else

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <utility>

// NOLINTBEGIN(readability-identifier-naming): the projection's names
namespace ZEMO::Platform::WinRt {

/// Text of the runtime: UTF-16, converts to std::wstring_view.
using hstring = std::wstring;

/// A result code that converts to and from the plain HRESULT.
struct hresult {
    int32_t value = 0;  ///< the plain HRESULT
    constexpr hresult() noexcept = default;
    /// From the plain HRESULT.
    constexpr hresult(int32_t code) noexcept : value(code) {}
    /// To the plain HRESULT.
    constexpr operator int32_t() const noexcept { return value; }
};

/// A call into the Windows Runtime failed. As in the projection it is no std::exception: catch it by its own name, or
/// by the name of a class derived from it. A value: copyable, bound to no thread and to no COM object.
struct hresult_error {
    hresult_error() noexcept : hresult_error(E_FAIL) {}
    /// With the system's text for `code`.
    explicit hresult_error(hresult code) noexcept : failure(code) {}
    /// With a text of the failing side.
    hresult_error(hresult code, hstring message) noexcept : failure(code), told(std::move(message)) {}

    /// The failing HRESULT.
    hresult code() const noexcept { return failure; }

    /// What the failing side said about it, else the system's text for the code, without spaces or line end behind it.
    /// Empty when the system has none.
    hstring message() const noexcept {
        try {
            return told.empty() ? systemMessage() : told;
        } catch (...) {
            return {};
        }
    }

private:
    hstring systemMessage() const {
        wchar_t* text = nullptr;
        constexpr DWORD kFlags =
            FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
        const DWORD length = FormatMessageW(kFlags, nullptr, static_cast<DWORD>(failure.value), 0,
                                            reinterpret_cast<wchar_t*>(&text), 0, nullptr);
        struct Free {
            wchar_t* text;
            ~Free() { LocalFree(text); }
        } const owner{text};
        std::wstring_view view(text ? text : L"", text ? length : 0);
        while (!view.empty() &&
               (view.back() == L' ' || view.back() == L'\r' || view.back() == L'\n' || view.back() == L'\t')) {
            view.remove_suffix(1);
        }
        return hstring(view);
    }

    hresult failure;
    hstring told;
};

// The failures that have a class of their own. As numbers, because not every compiler's headers name them all.
#define ZEMO_WINRT_ERRORS(ERROR_CLASS)                            \
    ERROR_CLASS(hresult_access_denied, 0x80070005u)               \
    ERROR_CLASS(hresult_wrong_thread, 0x8001010Eu)                \
    ERROR_CLASS(hresult_not_implemented, 0x80004001u)             \
    ERROR_CLASS(hresult_invalid_argument, 0x80070057u)            \
    ERROR_CLASS(hresult_out_of_bounds, 0x8000000Bu)               \
    ERROR_CLASS(hresult_no_interface, 0x80004002u)                \
    ERROR_CLASS(hresult_class_not_available, 0x80040111u)         \
    ERROR_CLASS(hresult_class_not_registered, 0x80040154u)        \
    ERROR_CLASS(hresult_changed_state, 0x8000000Cu)               \
    ERROR_CLASS(hresult_illegal_state_change, 0x8000000Du)        \
    ERROR_CLASS(hresult_illegal_method_call, 0x8000000Eu)         \
    ERROR_CLASS(hresult_illegal_delegate_assignment, 0x80000018u) \
    ERROR_CLASS(hresult_canceled, 0x800704C7u)

#define ZEMO_WINRT_CLASS(name, hr)                                                            \
    struct name : hresult_error {                                                             \
        static constexpr int32_t kCode = static_cast<int32_t>(hr);                            \
        name() noexcept : hresult_error(kCode) {}                                             \
        explicit name(hstring message) noexcept : hresult_error(kCode, std::move(message)) {} \
    };
ZEMO_WINRT_ERRORS(ZEMO_WINRT_CLASS)
#undef ZEMO_WINRT_CLASS

/// Raises the class that stands for `code`: a derived one where there is one, std::bad_alloc for E_OUTOFMEMORY, else
/// hresult_error itself.
[[noreturn]] inline void throw_hresult(hresult code, const hstring& message = {}) {
    switch (static_cast<uint32_t>(code.value)) {
        case 0x8007000Eu:
            throw std::bad_alloc();
#define ZEMO_WINRT_THROW(name, hr) \
    case hr:                       \
        throw name(message);
            ZEMO_WINRT_ERRORS(ZEMO_WINRT_THROW)
#undef ZEMO_WINRT_THROW
        default:
            throw hresult_error(code, message);
    }
}
#undef ZEMO_WINRT_ERRORS

#ifdef CPPWINRT_VERSION
/// For a program that has included the projection before: calls `call`, and raises its failure as the projection's own
/// class for the same code. Any thread, inline; what else `call` raises or answers passes through.
template <class Call>
decltype(auto) raisedByProjection(Call&& call) {
    try {
        return std::forward<Call>(call)();
    } catch (const hresult_error& error) {
        ::winrt::throw_hresult(::winrt::hresult(error.code().value));
    }
}
#endif

}  // namespace ZEMO::Platform::WinRt
// NOLINTEND(readability-identifier-naming)

namespace winrt {

using namespace ::ZEMO::Platform::WinRt;  // a name of the projection itself comes first

}  // namespace winrt
#endif
