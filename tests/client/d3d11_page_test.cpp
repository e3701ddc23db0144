#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <format>
#include <mutex>

#include "client/engine_task.h"
#include "client/page_browser.h"
#include "engine/client/cef_handler.h"
#include "engine/game_host.h"
#include "include/cef_browser.h"
#include "render/display_scale.h"
#include "render/osr_renderer.h"
#include "support/d3d11_calls.h"
#include "support/http_server.h"
#include "support/process_usage.h"

// Real pages on the factory's Direct3D renderer, which no game gets by itself: the client of these tests chooses it.
// What the view's own render thread presents is compared with what the engine painted.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

constexpr uint32_t kBehindPage = 0xFFEDEEF6;

int channel(uint32_t pixel, int index) { return static_cast<int>(pixel >> (8 * index) & 0xFF); }

uint32_t over(uint32_t premultiplied, uint32_t under) {
    uint32_t result = 0;
    for (int i = 0; i < 4; ++i) {
        const float rest = 1 - static_cast<float>(channel(premultiplied, 3)) / 255;
        const float sum = static_cast<float>(channel(premultiplied, i)) + static_cast<float>(channel(under, i)) * rest;
        result |= static_cast<uint32_t>(std::lround(sum)) << (8 * i);
    }
    return result;
}

bool alike(uint32_t a, uint32_t b, int tolerance) {
    for (int i = 0; i < 4; ++i) {
        if (std::abs(channel(a, i) - channel(b, i)) > tolerance) return false;
    }
    return true;
}

struct EnginePicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int x, int y) const {
        if (x < 0 || y < 0 || x >= width || y >= height) return 0;
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

/// What the engine painted last, and where its popup stands, in device pixels.
struct EngineFrames {
    std::mutex mutex;
    EnginePicture view, popup;
    FrameRect place;
    bool popupOpen = false;
    size_t paints = 0;
};

class Direct3DClient final : public CefHandler {
public:
    Direct3DClient(HWND window, bool closeButton, float viewScale, std::shared_ptr<EngineFrames> record)
        : CefHandler(window, WindowStyle::Layer, closeButton, nullptr, 0, nullptr),
          scale(viewScale),
          frames(std::move(record)) {
        setLocalRenderer(createOsrRenderer(kRendererD3D11, window, closeButton));
    }
    void OnPaint(CefRefPtr<CefBrowser> source, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override {
        {
            const std::lock_guard lock(frames->mutex);
            EnginePicture& picture = type == PET_VIEW ? frames->view : frames->popup;
            const auto* pixels = static_cast<const uint32_t*>(buffer);
            picture = {width, height, {pixels, pixels + static_cast<size_t>(width) * static_cast<size_t>(height)}};
            ++frames->paints;
        }
        CefHandler::OnPaint(source, type, dirtyRects, buffer, width, height);
    }
    void OnPopupShow(CefRefPtr<CefBrowser> source, bool show) override {
        {
            const std::lock_guard lock(frames->mutex);
            frames->popupOpen = show;
            if (!show) frames->popup = {};
        }
        CefHandler::OnPopupShow(source, show);
    }
    void OnPopupSize(CefRefPtr<CefBrowser> source, const CefRect& rect) override {
        {
            const std::lock_guard lock(frames->mutex);
            frames->place = {logicalToDevice(rect.x, scale), logicalToDevice(rect.y, scale),
                             logicalToDevice(rect.width, scale), logicalToDevice(rect.height, scale)};
        }
        CefHandler::OnPopupSize(source, rect);
    }

private:
    float scale;
    std::shared_ptr<EngineFrames> frames;
};

/// A page on the game's window, drawn there by Direct3D.
class Direct3DPage {
public:
    Direct3DPage(float scale, const std::string& html, bool closeButton = false) {
        SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
        game.emplace(
            GameHost::Options{.clientWidth = px(320, scale), .clientHeight = px(200, scale), .presentCallback = false});
        EXPECT_FLOAT_EQ(getWindowScale(game->window), scale) << "the session's scale";
        server.serveHtml("/", html);
        client = new Direct3DClient(game->window, closeButton, scale, frames);
        createBrowser(game->window, client, server.url("/"));
    }
    ~Direct3DPage() { client->close(); }
    Direct3DPage(const Direct3DPage&) = delete;
    Direct3DPage& operator=(const Direct3DPage&) = delete;

    static int px(float logical, float scale) { return static_cast<int>(logical * scale); }
    /// The window's size in device pixels; the game's own loop brings it to the view here.
    void resize(int width, int height) {
        game->resizeClient(width, height);
        client->onWindowResized();
    }
    void click(int x, int y) {
        CefMouseEvent event;
        event.x = x;
        event.y = y;
        const auto host = client->getBrowser()->GetHost();
        host->SendMouseMoveEvent(event, false);
        host->SendMouseClickEvent(event, MBT_LEFT, false, 1);
        host->SendMouseClickEvent(event, MBT_LEFT, true, 1);
    }
    uint32_t painted(int x, int y) {
        const std::lock_guard lock(frames->mutex);
        return frames->view.at(x, y);
    }
    bool popupOpen() {
        const std::lock_guard lock(frames->mutex);
        return frames->popupOpen && frames->popup.width > 0;
    }
    /// What was presented last is what the engine painted last; pixels inside `except` are not looked at.
    bool samePicture(int tolerance, FrameRect except = {}) {
        const PresentedPicture shown = calls.presented();
        const std::lock_guard lock(frames->mutex);
        const EnginePicture& view = frames->view;
        if (view.width == 0 || shown.width != view.width || shown.height != view.height) return false;
        for (int y = 0; y < view.height; ++y) {
            for (int x = 0; x < view.width; ++x) {
                if (contains(except, x, y)) continue;
                uint32_t expected = over(view.at(x, y), kBehindPage);
                if (frames->popupOpen && contains(frames->place, x, y)) {
                    expected = over(frames->popup.at(x - frames->place.x, y - frames->place.y), expected);
                }
                if (!alike(shown.bgra(x, y), expected, tolerance)) {
                    last = std::format("({}, {}) is {:08X} in place of {:08X}", x, y, shown.bgra(x, y), expected);
                    return false;
                }
            }
        }
        return true;
    }
    bool becomesSame(const char* what, int tolerance = 0, FrameRect except = {}) {
        const bool same = game->waitFor(what, [&] { return samePicture(tolerance, except); });
        if (!same) std::cerr << last << std::endl;
        return same;
    }
    bool popupHasItsRectanglesSize() {
        const std::lock_guard lock(frames->mutex);
        return frames->popup.width == frames->place.width && frames->popup.height == frames->place.height;
    }

    D3D11Calls calls;
    HttpServer server;
    std::optional<GameHost> game;
    std::shared_ptr<EngineFrames> frames = std::make_shared<EngineFrames>();
    CefRefPtr<Direct3DClient> client;

private:
    static bool contains(const FrameRect& r, int x, int y) {
        return x >= r.x && y >= r.y && x < r.x + r.width && y < r.y + r.height;
    }
    std::string last;
};

/// Every pixel another colour, so that a shift or a stretch shows.
const std::string kColours =
    "<!doctype html><style>html,body{margin:0;height:100%;background:repeating-linear-gradient(31deg,#f00 0 3px,#0a0 "
    "5px 7px,#00f 9px 13px,#fff 17px)}select{position:absolute;left:20px;top:10px;width:120px;height:24px}"
    "option{background:#00ff00;color:#00ff00}</style><select><option>a<option>b<option>c<option>d</select>";

void checkPage(float scale) {
    Direct3DPage page(scale, kColours);
    ASSERT_TRUE(
        page.game->waitFor("the page", [&] { return page.painted(5, 60) != 0xFFFFFFFFu && page.painted(5, 60); }));
    EXPECT_TRUE(page.becomesSame("the page on Direct3D"));

    // A page takes no input before its first picture is through; tried until it is heard.
    ASSERT_TRUE(page.game->waitFor("the list", [&] {
        if (!page.popupOpen()) page.click(60, 20), page.game->pass(300ms);
        return page.popupOpen();
    }));
    // Where a fraction of the scale makes picture and place differ by a pixel, the picture is stretched by it.
    ASSERT_TRUE(
        page.game->waitFor("the list's picture", [&] { return page.popupHasItsRectanglesSize(); }, 2s) || scale != 1);
    if (page.popupHasItsRectanglesSize()) {
        EXPECT_TRUE(page.becomesSame("the page with its list"));
    } else {
        const FrameRect place = page.frames->place;
        EXPECT_TRUE(page.becomesSame("the page around its list", 0, place));
        const uint32_t inList = page.calls.presented().bgra(place.x + place.width / 2, place.y + place.height - 8);
        EXPECT_EQ(inList, 0xFF00FF00u);
    }
    page.click(280, 180);
    ASSERT_TRUE(page.game->waitFor("the list's end", [&] { return !page.popupOpen(); }));
    EXPECT_TRUE(page.becomesSame("the page without its list"));

    page.resize(Direct3DPage::px(420, scale), Direct3DPage::px(250, scale));
    EXPECT_TRUE(page.becomesSame("the page in another size"));
}

/// `square`: where the icon must be, in device pixels.
void checkCloseIcon(float scale, FrameRect square) {
    Direct3DPage page(scale, kColours, true);
    ASSERT_TRUE(page.becomesSame("the page around the icon", 0, square));
    const PresentedPicture shown = page.calls.presented();
    int changed = 0;
    for (int y = square.y; y < square.y + square.height; ++y) {
        for (int x = square.x; x < square.x + square.width; ++x) changed += shown.bgra(x, y) != page.painted(x, y);
    }
    EXPECT_GT(changed, square.width * square.height / 4) << "the icon's pixels";
}

}  // namespace

TEST(Direct3DPageTest, PageListAndResize_SamePixelsAsTheEngines) { checkPage(1.0f); }
TEST(Direct3DPageTest, PageListAndResize_SamePixelsAsTheEngines_Scale150) { checkPage(1.5f); }
TEST(Direct3DPageTest, CloseIcon_OverThePageInItsSquare) { checkCloseIcon(1.0f, {320 - 56, 20, 36, 36}); }
TEST(Direct3DPageTest, CloseIcon_OverThePageInItsSquare_Scale150) { checkCloseIcon(1.5f, {480 - 84, 30, 54, 54}); }

TEST(Direct3DPageTest, HalfTransparentPage_OverTheBackgroundColour) {
    Direct3DPage page(1.0f,
                      "<!doctype html><style>html,body{margin:0;height:100%;background:linear-gradient(90deg,"
                      "rgba(255,0,0,.1),rgba(0,128,255,.9))}</style>");
    ASSERT_TRUE(page.game->waitFor("the page", [&] { return page.painted(160, 100) != 0; }));
    EXPECT_LT(page.painted(160, 100) >> 24, 0xFFu) << "the engine paints it transparent";
    EXPECT_TRUE(page.becomesSame("the page", 1));  // the blending unit rounds
}

TEST(Direct3DPageTest, FiveHundredWindowChangesWhileThePageMoves_PictureIsBackAndNothingIsLeft) {
    Direct3DPage page(1.0f,
                      "<!doctype html><style>html,body{margin:0;height:100%;background:#224466}div{width:40px;"
                      "height:40px;background:#fff;animation:m 1s infinite alternate linear}@keyframes m{to{transform:"
                      "translateX(200px)}}</style><div></div>");
    GameHost& game = *page.game;
    const auto settled = [&] {
        page.resize(320, 200);
        const bool back = game.waitFor("the picture", [&] {
            const PresentedPicture shown = page.calls.presented();
            return shown.width == 320 && shown.height == 200 && page.painted(300, 190) == 0xFF224466u &&
                   shown.bgra(300, 190) == 0xFF224466u;
        });
        return back && page.calls.waitForPresents(3);
    };
    const auto handles = [] { return processUsage().handles; };
    ASSERT_TRUE(settled());
    for (int step = 0; step < 20; ++step) page.resize(300 + step, 190);
    ASSERT_TRUE(settled());
    const unsigned long objects = page.calls.deviceReferences();
    const size_t handlesBefore = handles();
    for (int step = 0; step < 500; ++step) {
        if (step % 100 == 50) {
            ShowWindow(game.window, SW_MINIMIZE);
            game.pass(120ms);
            ShowWindow(game.window, SW_RESTORE);
        }
        SetWindowPos(game.window, nullptr, 0, 0, 320 + step * 7 % 200, 240 + step * 5 % 100,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        page.client->onWindowResized();
        game.pass(10ms);
        page.calls.take();
    }
    ASSERT_TRUE(settled());
    // The page's own texture may be on its way from one size to the other.
    EXPECT_NEAR(static_cast<double>(page.calls.deviceReferences()), static_cast<double>(objects), 3);
    // The engine's own services open some twenty meanwhile (its look at the processors comes seconds after the start).
    EXPECT_LE(handles(), handlesBefore + 60);
}

}  // namespace ZEMO::Test
