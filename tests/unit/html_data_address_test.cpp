#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

#include "cef/engine_library.h"
#include "layers/web/page_address.h"

// The engine's own encoders make the address: its library is loaded here, and not started.
namespace ZEMO::UI {
namespace {

class HtmlDataAddress : public ::testing::Test {
protected:
    void SetUp() override {
        wchar_t path[1024];
        GetModuleFileNameW(nullptr, path, 1024);
        std::string reason;
        ASSERT_TRUE(cefLoadLibrary(std::filesystem::path(path).parent_path().c_str(), &reason)) << reason;
    }
};

}  // namespace

TEST_F(HtmlDataAddress, EmptyText_OnlyTheHead) { EXPECT_EQ(htmlDataAddress("", ""), "data:text/html;base64,"); }

TEST_F(HtmlDataAddress, PlusSlashAndEqualsSigns_PercentEncoded) {
    // In base64: Pz8/Pj4+YQ==
    EXPECT_EQ(htmlDataAddress("\?\?\?>>>a", ""), "data:text/html;base64,Pz8%2FPj4%2BYQ%3D%3D");
}

TEST_F(HtmlDataAddress, KoreanLettersAndReservedCharacters_EncodedAsUtf8BytesAndWhole) {
    // In base64: 7ZWc6riAKyUjJj8=
    EXPECT_EQ(htmlDataAddress("한글+%#&?", ""), "data:text/html;base64,7ZWc6riAKyUjJj8%3D");
}

TEST_F(HtmlDataAddress, ReferenceThatLeavesThePagesDirectory_RebasedBeforeTheEncoding) {
    // In base64 of: zemosdkcustomscheme://resources/html/a
    EXPECT_EQ(htmlDataAddress("../a", "C:/x/html/p.html"),
              "data:text/html;base64,emVtb3Nka2N1c3RvbXNjaGVtZTovL3Jlc291cmNlcy9odG1sL2E%3D");
}

}  // namespace ZEMO::UI
