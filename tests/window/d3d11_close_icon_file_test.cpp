// The close icon's file is read once in a process: each of these tests has a process of its own. The file beside the
// library is every test's, so the decoder is led to another one.
#include <gtest/gtest.h>

#include "core/module_paths.h"
#include "support/debug_log.h"
#include "support/image_bytes.h"
#include "support/import_replaced.h"
#include "support/scratch_directory.h"
#include "window/d3d11_window.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

std::wstring otherFile;
std::wstring askedFor;

FILE* openOther(const wchar_t* path, const wchar_t* mode) {
    static const auto real = systemFunction<FILE*(const wchar_t*, const wchar_t*)>(L"ucrtbase.dll", "_wfopen");
    askedFor = path;
    return otherFile.empty() ? nullptr : real(otherFile.c_str(), mode);
}

void expectNoIcon(size_t logLines) {
    const ImportReplaced replaced("_wfopen", &openOther);
    DebugLogCapture log;
    D3D11Window window(320, 200, true);
    EXPECT_EQ(askedFor,
              Core::resolveModuleRelativePath(L"resources\\html\\x_button\\common-btn-icon-webview-x@2x.png"));
    EXPECT_EQ(log.count("close icon"), logLines) << log.dump();
    const Picture page = noise(320, 200, 0xFF);
    window.paint(page);
    window.render();
    EXPECT_EQ(window.differences(page), "");
    EXPECT_EQ(window.calls.count("Draw"), 1u);
}

TEST(D3D11CloseIconFile, Missing_PageWithoutIcon) { expectNoIcon(0); }

TEST(D3D11CloseIconFile, NoPicture_PageWithoutIcon) {
    const ScratchDirectory directory;
    otherFile = directory.write(L"icon.png", Bytes(500, 'x')).wstring();
    expectNoIcon(0);
}

// A bitmap of 24 bits: three channels, shorter than the texture that it would have to fill.
TEST(D3D11CloseIconFile, WithoutAlpha_PageWithoutIconAndALogLine) {
    const ScratchDirectory directory;
    Bytes bitmap(54 + 16, 0x40);
    const uint8_t header[54] = {'B', 'M', 70, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0,  40,
                                0,   0,   0,  2, 0, 0, 0, 2, 0, 0, 0,  1, 0, 24, 0};
    std::copy(std::begin(header), std::end(header), bitmap.begin());
    otherFile = directory.write(L"icon.bmp", bitmap).wstring();
    expectNoIcon(1);
}

TEST(D3D11CloseIconFile, SecondRenderer_FileIsNotReadAgain) {
    D3D11Window first(320, 200, true);
    const ImportReplaced replaced("_wfopen", &openOther);
    const auto second = createOsrRenderer(kRendererD3D11, first.game.handle(), true);
    EXPECT_TRUE(askedFor.empty());
}

}  // namespace
}  // namespace ZEMO::Test
