#include "core/asset_paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/debug_log.h"

namespace ZEMO::Core {
namespace {

// Stands for a library whose place the system can't tell, which can't be provoked.
std::wstring unknownPlace(const std::wstring&) { return {}; }
std::wstring koreanPlace(const std::wstring& relativePath) { return L"C:\\게임 폴더\\" + relativePath; }

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
    EXPECT_EQ(closeIconPath(&koreanPlace),
              "C:\\게임 폴더\\resources\\html\\x_button\\common-btn-icon-webview-x@2x.png");
    EXPECT_EQ(closeBitmapPath(&koreanPlace), L"C:\\게임 폴더\\resources\\html\\x_button\\xbtn.bmp");
}

TEST(AssetPaths, PlaceUnknown_EmptyWithOneLogLineEach) {
    ZEMO::Test::DebugLogCapture log;
    EXPECT_EQ(closeIconPath(&unknownPlace), "");
    EXPECT_EQ(closeBitmapPath(&unknownPlace), L"");
    EXPECT_EQ(log.texts(), (std::vector<std::string>{"Error: Could not resolve X Button asset path.",
                                                     "Error: Could not resolve Alt X Button asset path."}));
}

TEST(AssetPaths, PlaceKnown_NothingLogged) {
    ZEMO::Test::DebugLogCapture log;
    closeIconPath();
    closeBitmapPath();
    EXPECT_TRUE(log.texts().empty()) << log.dump();
}

}  // namespace ZEMO::Core
