#include "core/asset_paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/module_paths.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"

namespace ZEMO::Core {
namespace {

using Test::ImportReplaced;

// A library whose place the system can't tell can't be provoked, and this program lies where it lies.
DWORD WINAPI noName(HMODULE, wchar_t*, DWORD) { return SetLastError(ERROR_INVALID_HANDLE), 0u; }
DWORD WINAPI koreanName(HMODULE, wchar_t* buffer, DWORD size) {
    wcscpy_s(buffer, size, L"C:\\게임 폴더\\library.dll");
    return static_cast<DWORD>(wcslen(buffer));
}

}  // namespace

TEST(AssetPaths, CloseIcon_BesideThisModule) {
    const std::wstring expected =
        getOwnModuleDirectory() + L"\\resources\\html\\x_button\\common-btn-icon-webview-x@2x.png";
    EXPECT_EQ(to_wide(closeIconPath()), expected);
}

TEST(AssetPaths, CloseBitmap_BesideThisModule) {
    EXPECT_EQ(closeBitmapPath(), getOwnModuleDirectory() + L"\\resources\\html\\x_button\\xbtn.bmp");
}

TEST(AssetPaths, PathWithKoreanLetters_UtfEightAndWide) {
    const ImportReplaced place("GetModuleFileNameW", &koreanName);
    EXPECT_EQ(closeIconPath(), "C:\\게임 폴더\\resources\\html\\x_button\\common-btn-icon-webview-x@2x.png");
    EXPECT_EQ(closeBitmapPath(), L"C:\\게임 폴더\\resources\\html\\x_button\\xbtn.bmp");
}

TEST(AssetPaths, PlaceUnknown_EmptyWithALogLineEach) {
    const ImportReplaced place("GetModuleFileNameW", &noName);
    ZEMO::Test::DebugLogCapture log;
    EXPECT_EQ(closeIconPath(), "");
    EXPECT_EQ(log.texts().back(), "Error: Could not resolve X Button asset path.") << log.dump();
    EXPECT_EQ(closeBitmapPath(), L"");
    EXPECT_EQ(log.texts().back(), "Error: Could not resolve Alt X Button asset path.") << log.dump();
    EXPECT_EQ(log.count("Error: Could not determine base directory for relative path resolution."), 2u) << log.dump();
}

TEST(AssetPaths, PlaceKnown_NothingLogged) {
    ZEMO::Test::DebugLogCapture log;
    closeIconPath();
    closeBitmapPath();
    EXPECT_TRUE(log.texts().empty()) << log.dump();
}

}  // namespace ZEMO::Core
