#include <gtest/gtest.h>

#include <format>
#include <stop_token>
#include <thread>

#include "engine/game_host.h"
#include "support/http_server.h"

// What reaches a game's frame consumer, from real pages. Every picture is rebuilt from the reported rectangles alone
// and compared with the frame that was handed out.
namespace ZEMO::Test {
namespace {

struct Screen {
    int width, height;
    float scale;
};

/// Four blocks of known colour: opaque red, green and blue, and half-transparent white over nothing.
std::string blocksPage() {
    return "<!doctype html><style>html,body{margin:0;background:transparent}div{position:absolute;width:50%;height:50%}"
           "</style><div style='left:0;top:0;background:#ff0000'></div>"
           "<div style='left:50%;top:0;background:#00ff00'></div>"
           "<div style='left:0;top:50%;background:#0000ff'></div>"
           "<div style='left:50%;top:50%;background:rgba(255,255,255,0.5)'></div>";
}

constexpr uint32_t kRed = 0xFFFF0000u, kGreen = 0xFF00FF00u, kBlue = 0xFF0000FFu, kHalfWhite = 0x80808080u;

/// Pixels that differ from the blocks page at this size; the middle lines, where blocks meet, are left out.
size_t wrongBlockPixels(const FrameRecorder& frames, int width, int height) {
    int w = 0;
    int h = 0;
    const std::vector<uint32_t> picture = frames.picture(&w, &h);
    if (w != width || h != height) return static_cast<size_t>(-1);
    size_t wrong = 0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (std::abs(2 * x - w) < 4 || std::abs(2 * y - h) < 4) continue;
            const bool right = x >= w / 2;
            const bool low = y >= h / 2;
            const uint32_t expected = low ? (right ? kHalfWhite : kBlue) : (right ? kGreen : kRed);
            wrong += picture[static_cast<size_t>(y) * w + x] != expected;
        }
    }
    return wrong;
}

void checkBlocks(int width, int height) {
    HttpServer server;
    server.serveHtml("/", blocksPage());
    GameHost game({.clientWidth = width, .clientHeight = height});
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    EXPECT_TRUE(game.waitFor("the blocks", [&] { return wrongBlockPixels(game.frames, width, height) == 0; }))
        << wrongBlockPixels(game.frames, width, height) << " pixels differ";
    EXPECT_TRUE(game.frames.replayMatches());
}

void checkScaledBlocks(int width, int height) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    checkBlocks(width, height);
    HDC screen = GetDC(nullptr);
    EXPECT_EQ(GetDeviceCaps(screen, LOGPIXELSX), 144) << "the session's scale";
    ReleaseDC(nullptr, screen);
}

}  // namespace

TEST(Frames, ColourBlocksAt320x200_PixelForPixel) { checkBlocks(320, 200); }
TEST(Frames, ColourBlocksAt1280x720_PixelForPixel) { checkBlocks(1280, 720); }
TEST(Frames, ColourBlocksAt1920x1080_PixelForPixel) { checkBlocks(1920, 1080); }

// At one and a half times the pixels the page is laid out in logical pixels; the frame comes in device pixels.
TEST(Frames, ColourBlocksAt320x200_PixelForPixel_Scale150) { checkScaledBlocks(320, 200); }
TEST(Frames, ColourBlocksAt1280x720_PixelForPixel_Scale150) { checkScaledBlocks(1280, 720); }
TEST(Frames, ColourBlocksAt1920x1080_PixelForPixel_Scale150) { checkScaledBlocks(1920, 1080); }

TEST(Frames, OneBlockChanges_ThatRectangleIsReported) {
    HttpServer server;
    // The block changes for good half a second after loading, so that the frames of loading are over.
    server.serveHtml(
        "/",
        "<!doctype html><style>html,body{margin:0;background:#fff}div{position:absolute;left:40px;top:70px;"
        "width:10px;height:10px;background:#000}</style><div id=b></div><script>onload=()=>setTimeout(()=>"
        "{b.style.background='#f00';document.title='x'},1500)</script>");
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the black block", [&] { return game.frames.pixel(45, 75) == 0xFF000000u; }));
    ASSERT_TRUE(game.waitFor("the red block", [&] { return game.frames.pixel(45, 75) == 0xFFFF0000u; }));
    bool seen = false;
    for (const Frame& frame : game.frames.frames()) seen = seen || frame.dirty == FrameRect{40, 70, 10, 10};
    EXPECT_TRUE(seen) << "no frame reported (40, 70) 10x10";
    EXPECT_TRUE(game.frames.replayMatches());
}

TEST(Frames, StillPage_EmptyRectanglesGoOnAndWholeFramesComeAtMostEveryTwoSeconds) {
    HttpServer server;
    server.serveHtml("/", solidPage("#123456"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(10, 10) == 0xFF123456u; }));
    game.pass(1s);
    game.frames.forgetFrames();
    // A thread of the test's own counts the cycles that this machine grants just now.
    size_t cycles = 0;
    std::jthread clock([&](const std::stop_token& stop) {
        for (; !stop.stop_requested(); ++cycles) Sleep(100);
    });
    game.pass(6s);
    clock.request_stop();
    clock.join();
    size_t empty = 0;
    size_t other = 0;
    std::vector<std::chrono::steady_clock::time_point> whole;
    for (const Frame& frame : game.frames.frames()) {
        if (frame.wholeFrame()) {
            whole.push_back(frame.at);
        } else if (frame.dirty == FrameRect{}) {
            ++empty;
        } else {
            ++other;
        }
    }
    // The paint of one cycle's refresh is younger than a cycle when the next one looks, and so makes that one pass:
    // every second refreshes, on a busy machine every third.
    EXPECT_GE(3 * (empty + whole.size()), cycles) << "the callback must keep running on a still page";
    EXPECT_EQ(other, 0u);
    ASSERT_GE(whole.size(), 2u) << "a consumer that lost its copy must get a whole frame";
    // The frames are asked for two seconds apart at least; the engine delivers one a little later than another.
    constexpr auto kDelivery = 700ms;
    EXPECT_GE(whole.back() - whole.front() + kDelivery, (whole.size() - 1) * 2s) << whole.size() << " whole frames";
}

TEST(Frames, WindowResized_WholeFrameOfTheNewSize) {
    HttpServer server;
    server.serveHtml("/", blocksPage());
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the first size", [&] { return wrongBlockPixels(game.frames, 320, 200) == 0; }));
    for (const auto& [width, height] : {std::pair{500, 400}, {333, 201}, {800, 600}}) {
        game.frames.forgetFrames();
        game.resizeClient(width, height);
        EXPECT_TRUE(game.waitFor("the new size", [&] { return wrongBlockPixels(game.frames, width, height) == 0; }))
            << width << "x" << height;
        bool whole = false;
        for (const Frame& frame : game.frames.frames()) {
            whole = whole || (frame.width == width && frame.height == height && frame.wholeFrame());
        }
        EXPECT_TRUE(whole) << "no whole frame of " << width << "x" << height;
    }
    EXPECT_TRUE(game.frames.replayMatches());
}

TEST(Frames, ViewDropped_NullFrameIsTheLastCall) {
    HttpServer server;
    server.serveHtml("/", solidPage("#abcdef"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(10, 10) == 0xFFABCDEFu; }));
    view->close();
    view.reset();
    // Not at once when the engine thread still holds the view for an event.
    ASSERT_TRUE(game.waitFor("the notice of the end", [&] { return game.frames.lastFrame().cleared; }));
    const size_t count = game.frames.frameCount();
    game.pass(500ms);
    EXPECT_EQ(game.frames.frameCount(), count) << "a frame came after the notice of the end";
}

TEST(Frames, CloseAndShowAgain_SamePageWithoutALoad) {
    HttpServer server;
    server.serveHtml("/", solidPage("#102030"));
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(10, 10) == 0xFF102030u; }));
    ASSERT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    view->close();
    game.pass(300ms);
    game.frames.forgetFrames();
    game.pass(500ms);
    EXPECT_EQ(game.frames.frameCount(), 0u) << "a closed view must not present";
    view->show();
    EXPECT_TRUE(game.waitFor("frames again", [&] { return game.frames.frameCount() > 0; }));
    EXPECT_EQ(server.requestCount("/"), 1u);
    EXPECT_EQ(events.count("starting"), 1u);
}

TEST(Frames, AnimatedPage_NoMoreThanThirtyFramesASecond) {
    HttpServer server;
    server.serveHtml(
        "/",
        "<!doctype html><style>html,body{margin:0;background:#fff}div{position:absolute;width:20px;height:20px;"
        "background:#000}</style><div id=b></div><script>let x=0;(function f(){x=(x+1)%200;b.style.left=x+'px';"
        "requestAnimationFrame(f)})()</script>");
    GameHost game;
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("frames", [&] { return game.frames.frameCount() > 20; }));
    // How many come of those asked for depends on the machine, but there are never more. Each frame moves the block, so
    // each must report a change.
    size_t changed = 0;
    game.frames.forgetFrames();
    ASSERT_TRUE(game.waitFor("90 more frames", [&] { return game.frames.frameCount() > 90; }));
    const std::vector<Frame> frames = game.frames.frames();
    for (const Frame& frame : frames) changed += frame.dirty.width > 0;
    EXPECT_GE(changed, frames.size() * 5 / 6);
    const std::chrono::duration<double> span = frames.back().at - frames.front().at;
    // Some of those that wait for the busy engine thread come at once.
    EXPECT_LE(static_cast<double>(frames.size() - 1), 30 * 1.1 * span.count() + 5) << "in " << span.count() << " s";
    EXPECT_TRUE(game.frames.replayMatches());
}

}  // namespace ZEMO::Test
