#pragma once

#include <cstdint>
#include <string_view>

// Stands for the C++ projection of the Windows Runtime on a game's include path, which the build machine does not have:
// the names that a game catches by, with a layout that is nobody else's.
#define CPPWINRT_VERSION "made up"

namespace winrt {

struct hresult {
    int32_t value = 0;
    constexpr hresult(int32_t code) noexcept : value(code) {}
};

struct hresult_error {
    explicit hresult_error(hresult failing) noexcept : result(failing) {}
    hresult code() const noexcept { return result; }
    std::wstring_view message() const noexcept { return L"of the projection"; }

    const uint64_t reference[5] = {1, 2, 3, 4, 5};
    hresult result;
};

struct hresult_class_not_registered : hresult_error {
    hresult_class_not_registered() noexcept : hresult_error(hresult(static_cast<int32_t>(0x80040154))) {}
};

[[noreturn]] inline void throw_hresult(hresult failing) {
    if (static_cast<uint32_t>(failing.value) == 0x80040154u) throw hresult_class_not_registered();
    throw hresult_error(failing);
}

}  // namespace winrt
