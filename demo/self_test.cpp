#include "self_test.h"

#include "input_test.h"
#include "test_stage.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace demo {

namespace {

// What pages/self_test.html shows; small enough for a window of 320 x 200 at twice the scale.
constexpr Block kRed{"red block", 28, 20, {224, 48, 48, 255}};
constexpr Block kGreen{"green block", 76, 20, {48, 192, 80, 255}};
constexpr Block kHalfBlue{"half transparent block", 124, 20, {0, 0, 128, 128}};
constexpr Block kSwitch{"switching block", 28, 52, {32, 96, 224, 255}};
constexpr Block kBlink{"blinking block", 76, 52, {}};
constexpr Block kClear{"transparent part", 124, 52, {}};
constexpr double kBlockWidth = 40, kBlockHeight = 24;
constexpr Colour kCorner{200, 200, 40, 255};  // a block, glued to the lower right corner
constexpr Colour kSecondPage{112, 32, 144, 255};
constexpr Colour kReloaded{32, 144, 144, 255};
constexpr Colour kNothing{0, 0, 0, 0};
constexpr Colour kBackground{237, 238, 246, 255};  // what the library puts under a page that it draws itself
/// What pages/outpost.html shows of credits and goods.
constexpr char kStoreText[] =
    "credits.textContent + ' | ' + [...document.querySelectorAll('.take')].map((b) => b.textContent).join(' ')";

/// A dialog of the system that this process shows.
HWND systemDialog() {
    HWND found = nullptr;
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            wchar_t name[16] = {};
            GetClassNameW(window, name, 16);
            const bool isDialog =
                process == GetCurrentProcessId() && IsWindowVisible(window) && wcscmp(name, L"#32770") == 0;
            if (isDialog) *reinterpret_cast<HWND*>(parameter) = window;
            return !isDialog;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

PageSource plainPage(const Colour& c) {
    return {PageSource::Kind::Html,
            text("<!doctype html><body style='margin:0;background:rgb(%d,%d,%d)'>", c.red, c.green, c.blue)};
}

/// What the game's player would see, as pixels.
class SelfTest {
public:
    SelfTest(Game& shown, const Options& options)
        : stage(shown, options), game(shown), scale(stage.scale), input(stage) {
        game.onSceneDrawn = [this] { readBackBuffer(under); };
        game.onFrameDrawn = [this] { readBackBuffer(drawn); };
    }

    ~SelfTest() { game.onSceneDrawn = nullptr, game.onFrameDrawn = nullptr; }

    void run() {
        stage.step("page is shown", [this] { pageIsShown(); });
        if (stage.isCallback()) {
            stage.step("callback frame holds the page's colours", [this] { callbackFrame(); });
            stage.step("game's frame shows the page over the scene", [this] { gameFrame(); });
            stage.step("display shows the game's frame", [this] { display(game.gameWindow().handle()); });
            stage.step("small change reports a small rectangle", [this] { smallChange(); });
        }
        if (stage.isDrawnByLibrary()) {
            stage.step("display shows the page over a plain background", [this] { drawnByLibrary(); });
        }
        stage.step("page takes clicks, text, a choice, the wheel", [this] { input.onThePage(); });
        stage.step("close button closes its page", [this] { input.closeButton(); });
        if (stage.isCallback()) {
            stage.step("store page buys, credits change on both sides", [this] { buy(); });
            stage.step("workshop page: local files, form, object, dialogs", [this] { workshop(); });
            stage.step("controller plays a page made for it", [this] { input.padPage(); });
            stage.step("resized window gets a whole frame of its size", [this] { resize(); });
            stage.step("second view covers the first and leaves it unharmed", [this] { secondView(); });
            stage.step("closed page is gone, shown page is back", [this] { closeAndShow(); });
            stage.step("page loads another text", [this] { reload(); });
            stage.step("dropped view hides the page", [this] { drop(); });
        } else {
            stage.step("display shows the page", [this] { display(stage.pageWindow()); });
        }
        if (stage.isDrawnByLibrary()) {
            stage.step("resized window shows the page in its size", [this] { resizePageWindow(); });
            stage.step("dropped view leaves the display", [this] { dropDrawnByLibrary(); });
        }
    }

private:
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
        const int completed = stage.count(PageEvent::Kind::Completed), shown = stage.count(PageEvent::Kind::Shown);
        game.openPage({PageSource::Kind::BuiltIn, "self_test"});
        stage.awaitMore(PageEvent::Kind::Shown, shown, "viewDidShow did not come");
        stage.awaitMore(PageEvent::Kind::Completed, completed, "navigationCompleted did not come");
        if (stage.count(PageEvent::Kind::Started) == 0) throw Failure("navigationStarting did not come");
    }

    void callbackFrame() {
        for (const Block& block : {kRed, kGreen, kHalfBlue, kSwitch}) stage.awaitPage(block);
        stage.awaitPage("the page's transparent part", kClear.x, kClear.y, kNothing);
        awaitFrameSize();
        awaitCorner();
    }

    void awaitFrameSize() {
        const PixelSize size = game.gameWindow().clientSize();
        stage.await([&] { return game.pageImage().width == size.width && game.pageImage().height == size.height; },
                    [&] {
                        return text("the frame is %d x %d, the window %d x %d", game.pageImage().width,
                                    game.pageImage().height, size.width, size.height);
                    });
    }

    void awaitCorner() {
        const PixelSize size = game.gameWindow().clientSize();
        stage.awaitPage("the corner block", size.width / scale - kBlockWidth / 2,
                        size.height / scale - kBlockHeight / 2, kCorner);
    }

    void gameFrame() {
        readNextFrame();
        for (const Block& block : {kRed, kGreen, kSwitch}) expectDrawn(block.name, block, block.colour, 0);
        expectDrawn("the scene beside the blocks", kClear, under.at(stage.px(kClear.x), stage.px(kClear.y)), 0);
        // Premultiplied blending: the page's colour plus what lies under it, dimmed by the page's alpha.
        const Colour page = stage.onPage(kHalfBlue.x, kHalfBlue.y),
                     below = under.at(stage.px(kHalfBlue.x), stage.px(kHalfBlue.y));
        const auto blend = [&](int over, int beneath) { return over + (beneath * (255 - page.alpha) + 127) / 255; };
        expectDrawn("the half transparent block over the scene", kHalfBlue,
                    {blend(page.red, below.red), blend(page.green, below.green), blend(page.blue, below.blue), 255}, 1);
    }

    void expectDrawn(const char* what, const Block& block, Colour expected, int tolerance) {
        const Colour seen = drawn.at(stage.px(block.x), stage.px(block.y));
        if (isClose(seen, expected, tolerance)) return;
        throw Failure(
            text("the game's frame has %s for %s, expected %s", text(seen).c_str(), what, text(expected).c_str()));
    }

    void display(HWND window) {
        for (const Block& block : {kRed, kGreen}) {
            awaitDisplay(window, block.name, stage.px(block.x), stage.px(block.y), block.colour);
        }
    }

    void awaitDisplay(HWND window, const char* what, int x, int y, Colour expected, int tolerance = 0) {
        Picture screen;
        stage.await([&] { return screen = pictureOfDisplay(window), isClose(screen.at(x, y), expected, tolerance); },
                    [&] {
                        return text("the display has %s for %s, expected %s", text(screen.at(x, y)).c_str(), what,
                                    text(expected).c_str());
                    });
    }

    void drawnByLibrary() {
        const HWND window = stage.pageWindow();
        display(window);
        awaitDisplay(window, "the transparent part", stage.px(kClear.x), stage.px(kClear.y), kBackground);
        const auto onBackground = [](int over, int beneath) {
            return over + beneath * (255 - kHalfBlue.colour.alpha) / 255;
        };
        const Colour& page = kHalfBlue.colour;
        awaitDisplay(window, kHalfBlue.name, stage.px(kHalfBlue.x), stage.px(kHalfBlue.y),
                     {onBackground(page.red, kBackground.red), onBackground(page.green, kBackground.green),
                      onBackground(page.blue, kBackground.blue), 255},
                     1);
    }

    void resizePageWindow() {
        const HWND window = stage.pageWindow();
        RECT outer{}, before{};
        GetWindowRect(window, &outer);
        GetClientRect(window, &before);
        for (const double part : {0.75, 1.0}) {
            const int width = static_cast<int>(before.right * part), height = static_cast<int>(before.bottom * part);
            SetWindowPos(window, nullptr, 0, 0, outer.right - outer.left + width - before.right,
                         outer.bottom - outer.top + height - before.bottom, SWP_NOMOVE | SWP_NOZORDER);
            awaitDisplay(window, "the corner block", width - stage.px(kBlockWidth / 2),
                         height - stage.px(kBlockHeight / 2), kCorner);
        }
    }

    void dropDrawnByLibrary() {
        const HWND window = stage.pageWindow();
        game.closeTopPage();
        stage.await(
            [&] {
                if (window != game.gameWindow().handle()) return !IsWindow(window);
                return !(pictureOfDisplay(window).at(stage.px(kRed.x), stage.px(kRed.y)) == kRed.colour);
            },
            [] { return std::string("the page is still on the display"); });
    }

    void smallChange() {
        // The page changes this block by itself. A forced whole frame may come in between and two changes may meet in
        // one update, so this waits for an update that is the block and nothing else.
        const PixelRect block{stage.px(kBlink.x - kBlockWidth / 2), stage.px(kBlink.y - kBlockHeight / 2),
                              stage.px(kBlockWidth), stage.px(kBlockHeight)};
        const auto isBlock = [&](const PixelRect& r) {
            return std::abs(r.x - block.x) <= 1 && std::abs(r.y - block.y) <= 1 &&
                   std::abs(r.width - block.width) <= 2 && std::abs(r.height - block.height) <= 2;
        };
        PixelRect newest;
        for (int seen = 0; seen < 2; ++seen) {
            stage.await(
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
            expectDrawn("the blinking block after a partial upload", kBlink, stage.onPage(kBlink.x, kBlink.y), 0);
            expectDrawn("the red block after a partial upload", kRed, kRed.colour, 0);
        }
    }

    /// Clicks by script: in a small window the page hides its goods.
    void buy() {
        const int completed = stage.count(PageEvent::Kind::Completed), calls = stage.count(PageEvent::Kind::Called);
        PagePanel& page = game.openPage({PageSource::Kind::BuiltIn, "outpost"});
        stage.awaitMore(PageEvent::Kind::Completed, completed, "navigationCompleted of the store did not come");
        stage.awaitMore(PageEvent::Kind::Called, calls, "the store's object was not bound");
        awaitStore(page, 1250, "\"1,250 | 320 180 90 240 60\"");
        page.run("document.querySelectorAll('.take')[1].click()");
        awaitStore(page, 1070, "\"1,070 | 320 Yours 90 240 60\"");
        page.run("for (const button of document.querySelectorAll('.take')) button.click()");
        awaitStore(page, 360, "\"360 | Yours Yours Yours Yours Yours\"");
        page.run("orders.push(0), store.postMessage(), orders.push(0), store.postMessage()");
        awaitStore(page, 40, "\"40 | Yours Yours Yours Yours Yours\"");
        stage.game.closeTopPage();
    }
    /// A page of files beside the library. Clicks by script, as above; the dialog is the system's, and is cancelled.
    void workshop() {
        const int completed = stage.count(PageEvent::Kind::Completed), calls = stage.count(PageEvent::Kind::Called);
        PagePanel& page = game.openPage({PageSource::Kind::LocalPage, "workshop"});
        stage.awaitMore(PageEvent::Kind::Completed, completed, "navigationCompleted of the workshop did not come");
        stage.awaitMore(PageEvent::Kind::Called, calls, "the workshop's object was not bound");
        const int before = game.playersCredits();
        awaitAnswer(page, "getComputedStyle(document.querySelector('main')).borderRadius + ' ' + hull.naturalWidth",
                    "\"18px 320\"");
        page.run("paint.click()");
        stage.await([&] { return game.playersCredits() == before - 40; },
                    [&] { return text("the game has %d credits, not %d", game.playersCredits(), before - 40); });
        awaitAnswer(page, "said.textContent", "\"It shines.\"");
        page.run("document.forms[0].requestSubmit()");
        stage.await([&] { return stage.command("register?") == "register?name=Comet&captain=&class=Courier"; },
                    [&] { return "the form came as '" + stage.command("") + "'"; });
        const int chosen = stage.count(PageEvent::Kind::Chosen);
        page.run("choose.click()");
        stage.await(
            [&] {
                game.emblemChoice().close();  // nothing before the dialog is there
                return stage.count(PageEvent::Kind::Chosen) > chosen;
            },
            [] { return "the file dialog did not come and go"; });
        awaitAnswer(page, "said.textContent", "\"No emblem, then.\"");
        page.run("plan.click()");
        HWND dialog = nullptr;
        stage.await([&] { return (dialog = systemDialog()) != nullptr; },
                    [] { return "no dialog to save the plan in"; });
        stage.await(
            [&] {
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
                return !IsWindow(dialog);
            },
            [] { return "the dialog to save the plan in stays"; });
        game.closeTopPage();
    }
    void awaitAnswer(PagePanel& page, const std::string& script, const std::string& expected) {
        stage.await(
            [&] {
                if (stage.answer() != expected) page.ask(script);
                return stage.answer() == expected;
            },
            [&] { return "the page says " + stage.answer() + ", not " + expected; });
    }
    void awaitStore(PagePanel& page, int credits, const std::string& shown) {
        const auto hasBoth = [&] { return game.playersCredits() == credits && stage.answer() == shown; };
        stage.await(
            [&] {
                if (!hasBoth()) page.ask(kStoreText);
                return hasBoth();
            },
            [&] {
                return text("the game has %d credits, the page shows %s", game.playersCredits(),
                            stage.answer().c_str());
            });
    }

    void resize() {
        const PixelSize before = game.gameWindow().clientSize();
        for (const PixelSize size : {PixelSize{before.width * 3 / 4, before.height * 3 / 4}, before}) {
            game.gameWindow().setClientSize(size);
            if (game.gameWindow().clientSize() != size) throw Failure("the window did not take its new size");
            bool wasWhole = false;
            stage.await(
                [&] {
                    return (wasWhole = wasWhole || game.pageUpdate().isNewSize) &&
                           game.pageImage().width == size.width && game.pageImage().height == size.height;
                },
                [&] {
                    return text("the frame is %d x %d, the window %d x %d", game.pageImage().width,
                                game.pageImage().height, size.width, size.height);
                });
            awaitCorner();
            stage.awaitPage(kRed);
        }
    }

    void secondView() {
        const int completed = stage.count(PageEvent::Kind::Completed);
        game.openPage(plainPage(kSecondPage));
        stage.awaitMore(PageEvent::Kind::Completed, completed, "navigationCompleted of the second view did not come");
        stage.awaitPage("the second page", kRed.x, kRed.y, kSecondPage);
        stage.awaitPage("the second page", kClear.x, kClear.y, kSecondPage);
        const int closed = stage.count(PageEvent::Kind::Closed);
        game.closeTopPage();
        stage.awaitMore(PageEvent::Kind::Closed, closed, "viewDidClose did not come");
        stage.awaitPage(kRed);
        stage.awaitPage("the first page's transparent part", kClear.x, kClear.y, kNothing);
    }

    void closeAndShow() {
        const int shown = stage.count(PageEvent::Kind::Shown), closed = stage.count(PageEvent::Kind::Closed);
        game.hidePages();
        stage.awaitMore(PageEvent::Kind::Closed, closed, "viewDidClose did not come");
        readNextFrame();
        expectDrawn("the scene after close", kRed, under.at(stage.px(kRed.x), stage.px(kRed.y)), 0);
        game.showPages();
        stage.awaitMore(PageEvent::Kind::Shown, shown, "viewDidShow did not come");
        stage.awaitPage(kRed);
        readNextFrame();
        expectDrawn("the page after the second show", kRed, kRed.colour, 0);
        const auto frames = game.callbackFigures().frames;
        stage.await([&] { return game.callbackFigures().frames > frames; },
                    [] { return "no frame came after the second show"; });
    }

    void reload() {
        const int completed = stage.count(PageEvent::Kind::Completed);
        game.topPage()->load(plainPage(kReloaded));
        stage.awaitMore(PageEvent::Kind::Completed, completed, "navigationCompleted of the second text did not come");
        stage.awaitPage("the second text", kRed.x, kRed.y, kReloaded);
        stage.awaitPage("the second text", kClear.x, kClear.y, kReloaded);
    }

    void drop() {
        game.closeTopPage();
        stage.await([&] { return !game.pageUpdate().isVisible; }, [] { return "the callback got no null frame"; });
        readNextFrame();
        expectDrawn("the scene without a page", kRed, under.at(stage.px(kRed.x), stage.px(kRed.y)), 0);
    }

    TestStage stage;
    Game& game;
    const double scale;
    InputTest input;
    bool isReading = false;
    Picture under;
    Picture drawn;
};

}  // namespace

bool runSelfTest(Game& game, const Options& options) {
    try {
        SelfTest(game, options).run();
    } catch (const Failure& failure) {
        std::printf("self test FAILED: %s\n", failure.what());
        game.savePictures();  // what there was instead
        return false;
    }
    std::printf("self test passed\n");
    return true;
}

}  // namespace demo
