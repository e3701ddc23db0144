#include "options.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace demo {
namespace {

std::string complaint(const std::vector<std::string>& arguments) {
    try {
        parseOptions(arguments);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return {};
}

TEST(DemoOptions, NoArguments_BuiltInPageAtDefaultSize) {
    const Options options = parseOptions({});
    EXPECT_EQ(options.page.kind, PageSource::Kind::BuiltIn);
    EXPECT_EQ(options.size, (PixelSize{1280, 720}));
    EXPECT_EQ(options.mode, Mode::Callback);
    EXPECT_FALSE(options.hasGpuCompositing);
    EXPECT_EQ(options.quitWay, QuitWay::Close);
}

TEST(DemoOptions, ValuesInBothForms_AreTaken) {
    const Options options = parseOptions({"--url", "https://example.org/?a=1", "--size=800x600", "--mode", "window",
                                          "--views=2", "--seconds", "3", "--quit-way", "exitprocess", "--self-test"});
    EXPECT_EQ(options.page.kind, PageSource::Kind::Address);
    EXPECT_EQ(options.page.text, "https://example.org/?a=1");
    EXPECT_EQ(options.size, (PixelSize{800, 600}));
    EXPECT_EQ(options.mode, Mode::Window);
    EXPECT_EQ(options.views, 2);
    EXPECT_EQ(options.seconds, 3);
    EXPECT_EQ(options.quitWay, QuitWay::ExitProcess);
    EXPECT_TRUE(options.isSelfTest);
    EXPECT_FALSE(options.hasPadKeys);
}

TEST(DemoOptions, PadPage_PlayedByKeys) {
    const Options options = parseOptions({"--pad-page", "idp_login", "--pad-keys"});
    EXPECT_EQ(options.page.kind, PageSource::Kind::PadPage);
    EXPECT_EQ(options.page.text, "idp_login");
    EXPECT_TRUE(options.hasPadKeys);
}

TEST(DemoOptions, KoreanFileName_KeepsItsLetters) {
    const Options options = parseOptions({"--out", "\xEA\xB7\xB8\xEB\xA6\xBC"});
    EXPECT_EQ(options.out.wstring(), L"\uADF8\uB9BC");
}

TEST(DemoOptions, WrongArguments_AreNamedInTheComplaint) {
    EXPECT_EQ(complaint({"--frobnicate"}), "there is no option '--frobnicate'; --help lists them");
    EXPECT_EQ(complaint({"--size", "800"}), "'800' is not a size like 1280x720");
    EXPECT_EQ(complaint({"--size", "1x1"}), "'1' is not a number from 64 to 16384");
    EXPECT_EQ(complaint({"--views", "3"}), "'3' is not a number from 1 to 2");
    EXPECT_EQ(complaint({"--mode", "wall"}), "'wall' is none of callback, window, local, hook");
    EXPECT_EQ(complaint({"--url"}), "'--url' needs ADDRESS");
    EXPECT_EQ(complaint({"--self-test=yes"}), "'--self-test' takes no value");
    EXPECT_EQ(complaint({"--html-file", "no such file"}), "cannot read 'no such file'");
}

TEST(DemoOptions, Help_NamesEachOptionOnce) {
    const std::string help = helpText();
    for (const char* name : {"--url ",
                             "--page ",
                             "--html ",
                             "--html-file ",
                             "--size ",
                             "--mode ",
                             "--views ",
                             "--seconds ",
                             "--screenshot ",
                             "--figures ",
                             "--json ",
                             "--out ",
                             "--self-test ",
                             "--close-button ",
                             "--gpu-compositing ",
                             "--no-gpu-compositing ",
                             "--direct3d ",
                             "--quit-way ",
                             "--pad-page ",
                             "--pad-keys "}) {
        const auto first = help.find(std::string("  ") + name);
        EXPECT_NE(first, std::string::npos) << name;
        EXPECT_EQ(help.find(std::string("\n  ") + name, first + 1), std::string::npos) << name;
    }
}

}  // namespace
}  // namespace demo
