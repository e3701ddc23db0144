#include "render/close_image.h"

#include <gtest/gtest.h>

#include "core/asset_paths.h"
#include "core/module_paths.h"
#include "support/debug_log.h"
#include "support/image_bytes.h"
#include "support/scratch_directory.h"

namespace ZEMO::UI {
namespace {

using Test::Bytes;

std::string utf8(const std::filesystem::path& path) { return Core::toSharedUtf8(path.c_str()).get(); }

}  // namespace

TEST(CloseImage, PngUnderAPathWithKoreanLetters_DecodedAsRgba) {
    const ZEMO::Test::ScratchDirectory directory;
    const auto file = directory.write(L"단추/x 그림.png", ZEMO::Test::makePng(3, 2, [](int x, int y) {
                                          return 0x40000000u + 0x00010203u * static_cast<unsigned>(x + 3 * y);
                                      }));
    const CloseImage image = loadCloseImage(utf8(file));
    ASSERT_EQ(image.width, 3);
    ASSERT_EQ(image.height, 2);
    ASSERT_EQ(image.rgba.size(), 24u);
    const Bytes last(image.rgba.end() - 4, image.rgba.end());
    EXPECT_EQ(last, (Bytes{5, 10, 15, 0x40}));
}

TEST(CloseImage, MissingEmptyAndBrokenFiles_EmptyAndSilent) {
    const ZEMO::Test::ScratchDirectory directory;
    ZEMO::Test::DebugLogCapture log;
    const auto expectEmpty = [](const CloseImage& image) {
        EXPECT_TRUE(image.rgba.empty());
        EXPECT_EQ(image.width, 0);
        EXPECT_EQ(image.height, 0);
    };
    expectEmpty(loadCloseImage(""));
    expectEmpty(loadCloseImage(utf8(directory.path() / "nothing.png")));
    expectEmpty(loadCloseImage(utf8(directory.path())));
    expectEmpty(loadCloseImage(utf8(directory.write(L"empty.png", {}))));
    expectEmpty(loadCloseImage(utf8(directory.write(L"text.png", Bytes(5000, 'x')))));
    const Bytes png = ZEMO::Test::makePng(72, 72, [](int, int) { return 0xFFFFFFFFu; });
    for (const size_t length : {1u, 8u, 20u, 33u, 40u, 60u}) {
        expectEmpty(loadCloseImage(utf8(directory.write(L"cut.png", Bytes(png.begin(), png.begin() + length)))));
    }
    Bytes huge = png;
    huge[16] = 0x7F;  // two billion columns
    expectEmpty(loadCloseImage(utf8(directory.write(L"huge.png", huge))));
    EXPECT_TRUE(log.texts().empty()) << log.dump();
}

TEST(CloseImage, TheIconBesideTheLibrary_IsNeutralWithAlpha) {
    const CloseImage image = loadCloseImage();
    ASSERT_EQ(image.width, 72);
    ASSERT_EQ(image.height, 72);
    bool transparent = false;
    bool opaque = false;
    for (size_t i = 0; i < image.rgba.size(); i += 4) {
        ASSERT_EQ(image.rgba[i], image.rgba[i + 1]);
        ASSERT_EQ(image.rgba[i], image.rgba[i + 2]);
        transparent = transparent || image.rgba[i + 3] == 0;
        opaque = opaque || image.rgba[i + 3] == 255;
    }
    EXPECT_TRUE(transparent);
    EXPECT_TRUE(opaque);
}

TEST(CloseImage, TheAlternativeBitmap_OpaqueSquareOf140) {
    const std::wstring path = Core::closeBitmapPath();
    const CloseImage image = loadCloseImage(Core::toSharedUtf8(path.c_str()).get());
    ASSERT_EQ(image.width, 140);
    ASSERT_EQ(image.height, 140);
    EXPECT_EQ(image.rgba[0], 0);
    EXPECT_EQ(image.rgba[3], 255);
}

}  // namespace ZEMO::UI
