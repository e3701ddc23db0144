#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "client/client_view.h"
#include "client/engine_task.h"
#include "core/asset_paths.h"
#include "core/module_paths.h"
#include "layers/close_button.h"
#include "render/display_scale.h"
#include "support/image_bytes.h"

// Where the close icon stands in a frame, against the place where the window takes the click on it.
namespace ZEMO::Test {
namespace {

constexpr uint32_t kPage = 0xFF224466u, kIcon = 0xFFFF00FFu;

/// An icon that is one colour up to its edges, in place of the library's own for as long as this lives: the real one
/// is transparent at its rim and so doesn't show how large its square is.
class PlainIcon {
public:
    PlainIcon() : file(Core::to_wide(Core::closeIconPath())) {
        std::ifstream in(file, std::ios::binary);
        original.assign(std::istreambuf_iterator<char>(in), {});
        const Bytes plain = makePng(8, 8, [](int, int) { return kIcon; });
        write({plain.begin(), plain.end()});
    }
    ~PlainIcon() { write(original); }
    PlainIcon(const PlainIcon&) = delete;
    PlainIcon& operator=(const PlainIcon&) = delete;

private:
    void write(const std::string& bytes) const {
        std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    std::filesystem::path file;
    std::string original;
};

/// Every pixel of the frame that a press at it would close the view with.
std::vector<uint32_t> pressPicture(float scale, int width, int height) {
    ZEMO::UI::XButton button(scale);
    const RECT client{0, 0, width, height};
    button.onResize(client);
    std::vector<uint32_t> picture;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) picture.push_back(button.hitTest({x, y}, client) ? kIcon : kPage);
    }
    return picture;
}

/// The icon's square by its edges in device pixels.
void checkIcon(float scale, FrameRect square) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const int width = 320;
    const int height = 200;
    const PlainIcon icon;
    GameHost game({.clientWidth = width, .clientHeight = height});
    ASSERT_FLOAT_EQ(ZEMO::UI::getWindowScale(game.window), scale) << "the session's scale";
    ClientView view(game, "data:text/html,<body style='background:rgb(34,68,102)'>", {.closeButton = true});
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(2, 2) == kPage; }));
    runOnEngine(game, [&] { view.adapter->showCloseButton(); });
    ASSERT_TRUE(game.waitFor("the icon", [&] { return game.frames.pixel(square.x, square.y) == kIcon; }));
    int frameWidth = 0;
    int frameHeight = 0;
    const std::vector<uint32_t> picture = game.frames.picture(&frameWidth, &frameHeight);
    ASSERT_EQ(frameWidth, width);
    ASSERT_EQ(frameHeight, height);
    std::vector<uint32_t> expected(picture.size(), kPage);
    for (int y = square.y; y < square.y + square.height; ++y) {
        for (int x = square.x; x < square.x + square.width; ++x) expected[static_cast<size_t>(y) * width + x] = kIcon;
    }
    EXPECT_TRUE(picture == expected) << "the icon is not drawn as exactly this square";
    EXPECT_TRUE(picture == pressPicture(scale, width, height)) << "the icon and its hit area differ";
}

}  // namespace

TEST(CloseIcon, DrawnWhereAPressHits_AtScaleOne) { checkIcon(1.0f, {320 - 20 - 36, 20, 36, 36}); }
TEST(CloseIcon, DrawnWhereAPressHits_Scale150) { checkIcon(1.5f, {320 - 30 - 54, 30, 54, 54}); }
TEST(CloseIcon, DrawnWhereAPressHits_Scale200) { checkIcon(2.0f, {320 - 40 - 72, 40, 72, 72}); }

}  // namespace ZEMO::Test
