#include "self_test.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

namespace demo {

namespace {

constexpr double kPatience = 20;  // seconds; a first paint takes one or two, more on a busy machine

/// What pages/self_test.html shows, in logical pixels of its window; small enough for a window of 320 x 200 at twice
/// the scale.
struct Block {
    const char* name;
    double x, y;  // the middle
    Colour colour;
};
constexpr Block kRed{"red block", 28, 20, {224, 48, 48, 255}};
constexpr Block kGreen{"green block", 76, 20, {48, 192, 80, 255}};
constexpr Block kHalfBlue{"half transparent block", 124, 20, {0, 0, 128, 128}};
constexpr Block kSwitch{"switching block", 28, 52, {32, 96, 224, 255}};
constexpr Block kBlink{"blinking block", 76, 52, {}};
constexpr Colour kSwitched{240, 160, 32, 255};
constexpr Block kClear{"transparent part", 124, 52, {}};
constexpr double kBlockWidth = 40, kBlockHeight = 24;
constexpr Colour kCorner{200, 200, 40, 255};  // a block, glued to the lower right corner
constexpr Colour kSecondPage{112, 32, 144, 255};
constexpr Colour kReloaded{32, 144, 144, 255};
constexpr Colour kNothing{0, 0, 0, 0};

std::string text(const char* pattern, ...) {
    char line[300];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(line, sizeof line, pattern, arguments);
    va_end(arguments);
    return line;
}

std::string text(const Colour& c) { return text("%d,%d,%d,%d", c.red, c.green, c.blue, c.alpha); }

bool isClose(const Colour& a, const Colour& b, int tolerance) {
    return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
           std::abs(a.blue - b.blue) <= tolerance && std::abs(a.alpha - b.alpha) <= tolerance;
}

PageSource plainPage(const Colour& c) {
    return {PageSource::Kind::Html,
            text("<!doctype html><body style='margin:0;background:rgb(%d,%d,%d)'>", c.red, c.green, c.blue)};
}

class SelfTest {
public:
    SelfTest(Game& game, const Options& options) : game(game), options(options), scale(game.gameWindow().scale()) {
        game.onPageEvent = [this](const PageEvent& event) { ++counts[static_cast<std::size_t>(event.kind)]; };
        game.onSceneDrawn = [this] { readBackBuffer(under); };
        game.onFrameDrawn = [this] { readBackBuffer(drawn); };
    }

    ~SelfTest() { game.onPageEvent = nullptr, game.onSceneDrawn = nullptr, game.onFrameDrawn = nullptr; }

    void run() {
        if (options.mode == Mode::Callback) {
            step("page is shown", [this] { pageIsShown(); });
            step("callback frame holds the page's colours", [this] { callbackFrame(); });
            step("game's frame shows the page over the scene", [this] { gameFrame(); });
            step("display shows the game's frame", [this] { display(game.gameWindow().handle()); });
            step("small change reports a small rectangle", [this] { smallChange(); });
            step("resized window gets a whole frame of its size", [this] { resize(); });
            step("second view covers the first and leaves it unharmed", [this] { secondView(); });
            step("closed page is gone, shown page is back", [this] { closeAndShow(); });
            step("page loads another text", [this] { reload(); });
            step("dropped view hides the page", [this] { drop(); });
        } else {
            step("page is shown", [this] { pageIsShown(); });
            step("display shows the page", [this] { pageOnDisplay(); });
        }
    }

private:
    struct Failure : std::runtime_error {
        using std::runtime_error::runtime_error;
    };

    void step(const char* name, const std::function<void()>& body) {
        const auto begin = Clock::now();
        std::printf("%-58s ", name);
        std::fflush(stdout);
        try {
            body();
        } catch (const Failure& failure) {
            std::printf("FAILED\n");
            throw Failure(std::string(name) + ": " + failure.what());
        }
        std::printf("ok  %.2f s\n", milliseconds(Clock::now() - begin) / 1000);
        std::fflush(stdout);
    }

    /// Plays until `isDone`, or fails with what `missing` says then.
    void await(const std::function<bool()>& isDone, const std::function<std::string()>& missing) {
        if (!game.playUntil(isDone, kPatience)) throw Failure("after 20 s " + missing());
    }

    int px(double logical) const { return static_cast<int>(std::floor(logical * scale)); }
    int count(PageEvent::Kind kind) const { return counts[static_cast<std::size_t>(kind)]; }

    Colour onPage(const Block& block) const { return colourOf(game.pageImage(), px(block.x), px(block.y)); }

    void awaitPage(const char* what, double x, double y, Colour expected, int tolerance = 0) {
        const auto seen = [this, x, y] { return colourOf(game.pageImage(), px(x), px(y)); };
        await([&] { return game.pageUpdate().isVisible && isClose(seen(), expected, tolerance); },
              [&] {
                  return text("the callback's frame (%d x %d) has %s at %.0f,%.0f, %s is %s", game.pageImage().width,
                              game.pageImage().height, text(seen()).c_str(), x, y, what, text(expected).c_str());
              });
    }
    void awaitPage(const Block& block) {
        awaitPage(block.name, block.x, block.y, block.colour, block.colour.alpha < 255);
    }

    void readBackBuffer(Picture& into) {
        if (!isReading) return;
        const PixelSize size = game.gameWindow().clientSize();
        into = pictureOfBackBuffer(size.width, size.height);
    }
    /// The next frame, once as it is without the page and once with it.
    void readNextFrame() {
        isReading = true;
        drawn = {};
        game.playUntil([this] { return !drawn.pixels.empty(); }, kPatience);
        isReading = false;
    }

    void pageIsShown() {
        const int completed = count(PageEvent::Kind::Completed), shown = count(PageEvent::Kind::Shown);
        game.openPage({PageSource::Kind::BuiltIn, "self_test"});
        await([&] { return count(PageEvent::Kind::Shown) > shown; }, [] { return "viewDidShow did not come"; });
        await([&] { return count(PageEvent::Kind::Completed) > completed; },
              [] { return "navigationCompleted did not come"; });
        if (count(PageEvent::Kind::Started) == 0) throw Failure("navigationStarting did not come");
    }

    void callbackFrame() {
        for (const Block& block : {kRed, kGreen, kHalfBlue, kSwitch}) awaitPage(block);
        awaitPage("the page's transparent part", kClear.x, kClear.y, kNothing);
        awaitFrameSize();
        awaitCorner();
    }

    void awaitFrameSize() {
        const PixelSize size = game.gameWindow().clientSize();
        await([&] { return game.pageImage().width == size.width && game.pageImage().height == size.height; },
              [&] {
                  return text("the frame is %d x %d, the window %d x %d", game.pageImage().width,
                              game.pageImage().height, size.width, size.height);
              });
    }

    void awaitCorner() {
        const PixelSize size = game.gameWindow().clientSize();
        awaitPage("the corner block", size.width / scale - kBlockWidth / 2, size.height / scale - kBlockHeight / 2,
                  kCorner);
    }

    void gameFrame() {
        readNextFrame();
        for (const Block& block : {kRed, kGreen, kSwitch}) expectDrawn(block.name, block, block.colour, 0);
        expectDrawn("the scene beside the blocks", kClear, under.at(px(kClear.x), px(kClear.y)), 0);
        // Premultiplied blending: the page's colour plus what lies under it, dimmed by the page's alpha.
        const Colour page = onPage(kHalfBlue), below = under.at(px(kHalfBlue.x), px(kHalfBlue.y));
        const auto blend = [&](int over, int beneath) { return over + (beneath * (255 - page.alpha) + 127) / 255; };
        expectDrawn("the half transparent block over the scene", kHalfBlue,
                    {blend(page.red, below.red), blend(page.green, below.green), blend(page.blue, below.blue), 255}, 1);
    }

    void expectDrawn(const char* what, const Block& block, Colour expected, int tolerance) {
        const Colour seen = drawn.at(px(block.x), px(block.y));
        if (isClose(seen, expected, tolerance)) return;
        throw Failure(
            text("the game's frame has %s for %s, expected %s", text(seen).c_str(), what, text(expected).c_str()));
    }

    void display(HWND window) {
        Picture screen;
        for (const Block& block : {kRed, kGreen, kSwitch}) {
            const auto seen = [&] { return screen.at(px(block.x), px(block.y)); };
            await([&] { return screen = pictureOfDisplay(window), seen() == block.colour; },
                  [&] {
                      return text("the display has %s for the %s, expected %s", text(seen()).c_str(), block.name,
                                  text(block.colour).c_str());
                  });
        }
    }

    void smallChange() {
        // The page changes this block by itself. A forced whole frame may come in between and two changes may meet in
        // one update, so this waits for an update that is the block and nothing else.
        const PixelRect block{px(kBlink.x - kBlockWidth / 2), px(kBlink.y - kBlockHeight / 2), px(kBlockWidth),
                              px(kBlockHeight)};
        const auto isBlock = [&](const PixelRect& r) {
            return std::abs(r.x - block.x) <= 1 && std::abs(r.y - block.y) <= 1 &&
                   std::abs(r.width - block.width) <= 2 && std::abs(r.height - block.height) <= 2;
        };
        PixelRect newest;
        for (int seen = 0; seen < 2; ++seen) {
            await(
                [&] {
                    if (!game.pageUpdate().changed.isEmpty()) newest = game.pageUpdate().changed;
                    return isBlock(game.pageUpdate().changed);
                },
                [&] {
                    return text("the newest update was %d x %d at %d,%d, the page changed %d x %d at %d,%d",
                                newest.width, newest.height, newest.x, newest.y, block.width, block.height, block.x,
                                block.y);
                });
            readNextFrame();
            expectDrawn("the blinking block after a partial upload", kBlink, onPage(kBlink), 0);
            expectDrawn("the red block after a partial upload", kRed, kRed.colour, 0);
        }
    }

    void resize() {
        const PixelSize before = game.gameWindow().clientSize();
        for (const PixelSize size : {PixelSize{before.width * 3 / 4, before.height * 3 / 4}, before}) {
            game.gameWindow().setClientSize(size);
            if (game.gameWindow().clientSize() != size) throw Failure("the window did not take its new size");
            bool wasWhole = false;
            await(
                [&] {
                    return (wasWhole = wasWhole || game.pageUpdate().isNewSize) &&
                           game.pageImage().width == size.width && game.pageImage().height == size.height;
                },
                [&] {
                    return text("the frame is %d x %d, the window %d x %d", game.pageImage().width,
                                game.pageImage().height, size.width, size.height);
                });
            awaitCorner();
            awaitPage(kRed);
        }
    }

    void secondView() {
        const int completed = count(PageEvent::Kind::Completed);
        game.openPage(plainPage(kSecondPage));
        await([&] { return count(PageEvent::Kind::Completed) > completed; },
              [] { return "navigationCompleted of the second view did not come"; });
        awaitPage("the second page", kRed.x, kRed.y, kSecondPage);
        awaitPage("the second page", kClear.x, kClear.y, kSecondPage);
        const int closed = count(PageEvent::Kind::Closed);
        game.closeTopPage();
        await([&] { return count(PageEvent::Kind::Closed) > closed; }, [] { return "viewDidClose did not come"; });
        awaitPage(kRed);
        awaitPage("the first page's transparent part", kClear.x, kClear.y, kNothing);
    }

    void closeAndShow() {
        const int shown = count(PageEvent::Kind::Shown), closed = count(PageEvent::Kind::Closed);
        game.hidePages();
        await([&] { return count(PageEvent::Kind::Closed) > closed; }, [] { return "viewDidClose did not come"; });
        readNextFrame();
        expectDrawn("the scene after close", kRed, under.at(px(kRed.x), px(kRed.y)), 0);
        game.showPages();
        await([&] { return count(PageEvent::Kind::Shown) > shown; }, [] { return "viewDidShow did not come"; });
        awaitPage(kRed);
        readNextFrame();
        expectDrawn("the page after the second show", kRed, kRed.colour, 0);
        const auto frames = game.callbackFigures().frames;
        await([&] { return game.callbackFigures().frames > frames; },
              [] { return "no frame came after the second show"; });
    }

    void reload() {
        const int completed = count(PageEvent::Kind::Completed);
        game.topPage()->load(plainPage(kReloaded));
        await([&] { return count(PageEvent::Kind::Completed) > completed; },
              [] { return "navigationCompleted of the second text did not come"; });
        awaitPage("the second text", kRed.x, kRed.y, kReloaded);
        awaitPage("the second text", kClear.x, kClear.y, kReloaded);
    }

    void drop() {
        game.closeTopPage();
        await([&] { return !game.pageUpdate().isVisible; }, [] { return "the callback got no null frame"; });
        readNextFrame();
        expectDrawn("the scene without a page", kRed, under.at(px(kRed.x), px(kRed.y)), 0);
    }

    /// Where the page isn't the game's to draw, the display is the only witness.
    void pageOnDisplay() {
        HWND window = game.gameWindow().handle();
        if (options.mode == Mode::Window) {
            await([&] { return (window = otherWindow()) != nullptr; },
                  [] { return "there is no window for the view"; });
        }
        display(window);
    }

    HWND otherWindow() const {
        struct Search {
            HWND gameWindow;
            HWND found;
        } search{game.gameWindow().handle(), nullptr};
        EnumWindows(
            [](HWND window, LPARAM parameter) -> BOOL {
                auto* wanted = reinterpret_cast<Search*>(parameter);
                DWORD process = 0;
                GetWindowThreadProcessId(window, &process);
                if (process == GetCurrentProcessId() && window != wanted->gameWindow && IsWindowVisible(window) &&
                    GetWindow(window, GW_OWNER) == wanted->gameWindow) {
                    wanted->found = window;
                }
                return wanted->found == nullptr;
            },
            reinterpret_cast<LPARAM>(&search));
        return search.found;
    }

    Game& game;
    const Options& options;
    const double scale;
    int counts[8] = {};
    bool isReading = false;
    Picture under;
    Picture drawn;
};

}  // namespace

bool runSelfTest(Game& game, const Options& options) {
    try {
        SelfTest(game, options).run();
    } catch (const std::runtime_error& failure) {
        std::printf("self test FAILED: %s\n", failure.what());
        return false;
    }
    std::printf("self test passed\n");
    return true;
}

}  // namespace demo
