#include <gtest/gtest.h>

#include <new>
#include <string>
#include <type_traits>

#include "zemo/winrt_error.h"

namespace {

// hresult_error has no virtual functions, so the exact class shows only in the catch clause.
template <class Type>
bool caughtAs(uint32_t code) {
    try {
        winrt::throw_hresult(static_cast<int32_t>(code));
    } catch (const Type& error) {
        return static_cast<uint32_t>(error.code().value) == code;
    } catch (...) {
    }
    return false;
}

TEST(WinrtError, EachCode_RaisesItsClass) {
    EXPECT_TRUE(caughtAs<winrt::hresult_access_denied>(0x80070005));
    EXPECT_TRUE(caughtAs<winrt::hresult_wrong_thread>(0x8001010E));
    EXPECT_TRUE(caughtAs<winrt::hresult_not_implemented>(0x80004001));
    EXPECT_TRUE(caughtAs<winrt::hresult_invalid_argument>(0x80070057));
    EXPECT_TRUE(caughtAs<winrt::hresult_out_of_bounds>(0x8000000B));
    EXPECT_TRUE(caughtAs<winrt::hresult_no_interface>(0x80004002));
    EXPECT_TRUE(caughtAs<winrt::hresult_class_not_available>(0x80040111));
    EXPECT_TRUE(caughtAs<winrt::hresult_class_not_registered>(0x80040154));
    EXPECT_TRUE(caughtAs<winrt::hresult_changed_state>(0x8000000C));
    EXPECT_TRUE(caughtAs<winrt::hresult_illegal_state_change>(0x8000000D));
    EXPECT_TRUE(caughtAs<winrt::hresult_illegal_method_call>(0x8000000E));
    EXPECT_TRUE(caughtAs<winrt::hresult_illegal_delegate_assignment>(0x80000018));
    EXPECT_TRUE(caughtAs<winrt::hresult_canceled>(0x800704C7));
}

TEST(WinrtError, OtherCode_RaisesTheBase) {
    for (const uint32_t code : {0x80004005u, 0x8000FFFFu, 0x800401F0u}) {
        EXPECT_TRUE(caughtAs<winrt::hresult_error>(code)) << code;
        EXPECT_FALSE(caughtAs<winrt::hresult_not_implemented>(code)) << code;
    }
}

TEST(WinrtError, DerivedClass_CaughtByItsBase) { EXPECT_TRUE(caughtAs<winrt::hresult_error>(0x80004001)); }

TEST(WinrtError, OutOfMemory_RaisesBadAlloc) {
    EXPECT_THROW(winrt::throw_hresult(static_cast<int32_t>(0x8007000E)), std::bad_alloc);
}

TEST(WinrtError, WithoutMessage_TellsTheSystemsText) {
    wchar_t text[512] = {};
    ASSERT_GT(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, 0x80070005, 0, text,
                             512, nullptr),
              0u);
    const std::wstring message(winrt::hresult_access_denied().message());
    ASSERT_FALSE(message.empty());
    EXPECT_TRUE(std::wstring(text).starts_with(message));
    EXPECT_NE(message.back(), L'\n');
}

TEST(WinrtError, WithMessage_TellsIt) {
    EXPECT_EQ(winrt::hresult_error(static_cast<int32_t>(0x80004005), L"한글").message(), L"한글");
    EXPECT_EQ(winrt::hresult_canceled(L"by the user").message(), L"by the user");
}

TEST(WinrtError, UnknownCode_MessageIsEmpty) {
    EXPECT_EQ(winrt::hresult_error(static_cast<int32_t>(0xA0123456)).message(), L"");
}

TEST(WinrtError, NoStandardException) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, winrt::hresult_error>));
    EXPECT_TRUE((std::is_copy_constructible_v<winrt::hresult_error>));
}

}  // namespace
