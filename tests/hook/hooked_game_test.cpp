#include <gtest/gtest.h>

#include <chrono>
#include <format>
#include <string>
#include <utility>

#include "hook/hooked_game.h"
#include "hook/painter_objects.h"
#include "support/process_usage.h"

// The reference module in games of every API: what holds for all.
namespace ZEMO::Test {
namespace {

struct ApiName {
    template <class Game>
    static std::string GetName(int) {  // NOLINT(readability-identifier-naming): GoogleTest's name
        return Game::kName;
    }
};
using Games = testing::Types<GlGame, D3D11Game, D3D12Game>;

constexpr char kAnimated[] =
    "<!doctype html><style>html,body{margin:0;height:100%;background:#112233}i{position:absolute;left:40px;top:40px;"
    "width:30px;height:30px;background:#fff;animation:move 1s linear infinite}@keyframes move{to{left:140px;background:"
    "#00f}}</style><i></i>";

constexpr char kList[] =
    "<!doctype html><style>html,body{margin:0;height:100%;background:#112233}select{position:absolute;left:20px;top:"
    "10px;width:120px;height:24px}option{background:#00ff00;color:#103010}</"
    "style><select><option>one<option>two<option>"
    "three<option>four</select>";

/// The same list on a page that never rests.
const std::string kListOnALivelyPage =
    std::string(kList) +
    "<div id=d style='position:absolute;left:200px;top:120px;width:80px;height:60px'></div><script>let n=0;setInterval("
    "()=>{d.style.background=n++%2?'#f00':'#00f'},50)</script>";

/// Where the game's frame is other than what the engine handed over, popup over page; empty when they are equal.
std::string differenceToEngine(const Presented& frame) {
    const HandedFrames::Picture view = HandedFrames::view();
    const HandedFrames::Picture popup = HandedFrames::popup();
    const Rect16 place = HandedFrames::popupPlace();
    if (frame.width != view.width || frame.height != view.height) return "another size";
    if (popup.width != place.right - place.left || popup.height != place.bottom - place.top) return "no whole list";
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x) {
            const bool inside = x >= place.left && x < place.right && y >= place.top && y < place.bottom;
            const uint32_t wanted =
                inside ? popup.pixels[static_cast<size_t>(y - place.top) * popup.width + x - place.left]
                       : view.pixels[static_cast<size_t>(y) * view.width + x];
            if (frame.at(x, y) != (wanted & 0xFFFFFF))
                return std::format("({}, {}) is {:06x}, not {:08x}", x, y, frame.at(x, y), wanted);
        }
    }
    return {};
}

/// Input that may come too early for a page is given again. By the clock: on a busy machine a frame takes what it
/// takes.
class Again {
public:
    explicit Again(std::chrono::milliseconds firstIn = 0ms) : due(std::chrono::steady_clock::now() + firstIn) {}
    bool isDue() {
        if (std::chrono::steady_clock::now() < due) return false;
        due = std::chrono::steady_clock::now() + 2s;
        return true;
    }

private:
    std::chrono::steady_clock::time_point due;
};

}  // namespace

template <class Game>
class HookModule : public HookedGame<Game> {
protected:
    void press(int x, int y) {
        PostMessageW(this->game.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
        PostMessageW(this->game.window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    }
    /// The list of kList, until its green shows, and until the page shows in its place again.
    bool openList() {
        Again press;
        return this->playUntil("the list", [&] {
            if (press.isDue()) this->press(60, 20);
            return this->frame.at(130, 75) == 0x00FF00;
        });
    }
    bool closeList() {
        // A press that was late may open it once more. The one beside it needs no focus.
        Again escape;
        Again beside(1s);
        return this->playUntil("the page without the list", [&] {
            if (escape.isDue()) PostMessageW(this->game.window, WM_KEYDOWN, VK_ESCAPE, 1);
            if (beside.isDue()) this->press(310, 10);
            return this->frame.at(130, 75) == 0x112233;
        });
    }
    /// Down to the bar and back, another size and all made anew. How many presents later `corner` shows again.
    int cycle(int step, uint32_t corner) {
        const HWND window = this->game.window;
        SetWindowPos(window, nullptr, 0, 0, 280 + step * 37 % 140, 200 + step * 53 % 100,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        this->game.pass(3ms);
        EXPECT_TRUE(this->scene->followWindow());
        this->scene->present();
        ShowWindow(window, SW_MINIMIZE);
        this->game.pass(3ms);
        this->scene->present();
        ShowWindow(window, SW_RESTORE);
        this->game.pass(3ms);
        this->scene->remake();
        int presents = 0;
        do {
            this->scene->present();
            this->game.pass(1ms);
        } while (++presents < 100 && !this->cornerIs(corner));
        return presents;
    }
};
TYPED_TEST_SUITE(HookModule, Games, ApiName);

TYPED_TEST(HookModule, Page_StandsInTheGamesFrame) {
    auto view = this->show(quarteredPage());
    ASSERT_TRUE(this->playUntil("the page", [&] { return this->cornerIs(0x112233); }));
    ASSERT_TRUE(this->playUntil("all of it", [&] { return this->frame.at(300, 190) != kScene; }));
    ASSERT_EQ(this->frame.width, 320);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 320; ++x) {
            const int allowed = x >= 160 && y >= 100 ? 2 : 0;  // where it is blended
            ASSERT_LE(distance(this->frame.at(x, y), quarterAt(x, y, 320, 200)), allowed)
                << x << ", " << y << ": " << std::hex << this->frame.at(x, y);
        }
    }
    this->game.resizeClient(400, 260);
    ASSERT_TRUE(this->scene->followWindow()) << "a back buffer is still held";
    EXPECT_TRUE(this->playUntil("the page at another size", [&] { return this->frame.at(201, 129) == 0xFF0080; }));
    view->close();
    view.reset();
    EXPECT_TRUE(this->playUntil("the bare scene", [&] { return this->cornerIs(kScene); }));
    EXPECT_EQ(this->scene->end(), 0u) << "something holds the device";
}

TYPED_TEST(HookModule, CloseButton_DrawnWhereThePressIsTaken) {
    auto view = this->show(solidPage("#112233"), true);
    ASSERT_TRUE(this->playUntil("the page", [&] { return this->cornerIs(0x112233); }));
    ASSERT_TRUE(this->playUntil("the icon", [&] {
        size_t other = 0;
        for (int y = 20; y < 56; ++y)
            for (int x = 264; x < 300; ++x) other += this->frame.at(x, y) != 0x112233;
        return other > 50;
    }));
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 320; ++x) {
            const bool inside = x >= 264 && x < 300 && y >= 20 && y < 56;
            ASSERT_TRUE(inside || this->frame.at(x, y) == 0x112233u) << x << ", " << y;
        }
    }
}

TYPED_TEST(HookModule, ListOpensForeground_FrameIsTheEnginesPixelByPixelAndWithoutItAfterwards) {
    HandedFrames::watch(this->module);
    auto view = this->show(kList);
    ASSERT_TRUE(this->playUntil("the page", [&] { return this->cornerIs(0x112233); }));
    ASSERT_TRUE(this->openList());
    std::string difference;
    EXPECT_TRUE(this->playUntil("the engine's pixels", [&] {
        difference = differenceToEngine(this->frame);
        return difference.empty();
    })) << difference;
    EXPECT_TRUE(this->closeList()) << std::hex << this->frame.at(130, 75);
}

// The list gets a frame of its own after each of the page's, which the engine paints inside of that one.
TYPED_TEST(HookModule, ListOverALivelyPageForeground_BothGoOnUntilItCloses) {
    auto view = this->show(kListOnALivelyPage);
    ASSERT_TRUE(this->playUntil("the page", [&] { return this->cornerIs(0x112233); }));
    ASSERT_TRUE(this->openList());
    uint32_t last = this->frame.at(240, 150);
    int changes = 0;
    EXPECT_TRUE(this->playUntil("the page's changes beside the list", [&] {
        changes += std::exchange(last, this->frame.at(240, 150)) != last;
        return changes == 20;
    })) << changes;
    EXPECT_EQ(this->frame.at(130, 75), 0x00FF00u) << "the list has gone";
    EXPECT_TRUE(this->closeList()) << std::hex << this->frame.at(130, 75);
    last = this->frame.at(240, 150);
    EXPECT_TRUE(this->playUntil("a later change", [&] { return this->frame.at(240, 150) != last; }));
}

TYPED_TEST(HookModule, GameWindowDestroyedWhileShown_NewWindowGetsTheNextPage) {
    auto view = this->show(solidPage("#112233"));
    ASSERT_TRUE(this->playUntil("the page", [&] { return this->cornerIs(0x112233); }));
    EXPECT_EQ(this->scene->end(), 0u);
    this->game.remakeWindow(360, 220);
    this->scene = std::make_unique<TypeParam>(this->game.window);
    this->scene->present();
    view->close();
    EXPECT_TRUE(this->playUntil("the bare scene", [&] { return this->cornerIs(kScene); }));
    view = this->show(solidPage("#332211"));
    EXPECT_TRUE(this->playUntil("the new page", [&] { return this->cornerIs(0x332211); }));
}

TYPED_TEST(HookModule, MinimisedResizedAndRemadeAgainAndAgainWhileAPageAnimates_BackAtOnceAndNothingLeft) {
    PainterObjects::watch(this->module);
    struct Held {
        ProcessUsage process;
        size_t game = 0;
    };
    const auto settled = [&](uint32_t corner) {
        this->game.resizeClient(320, 200);
        EXPECT_TRUE(this->scene->followWindow());
        EXPECT_TRUE(this->playUntil("the whole frame", [&] { return this->frame.at(315, 195) == corner; }));
        return Held{processUsage(), this->scene->liveObjects()};
    };
    const auto cycles = [&](int count, uint32_t corner) {
        for (int step = 0; step < count; ++step)
            ASSERT_LE(this->cycle(step, corner), 3) << "presents in cycle " << step;
    };
    // What is made once, by the engine in its first half minute too.
    constexpr int kTenth = TypeParam::kCycles / 10;
    auto view = this->show(kAnimated);
    ASSERT_TRUE(this->playUntil("the page", [&] { return this->cornerIs(0x112233); }));
    view->close();
    view.reset();
    ASSERT_TRUE(this->playUntil("the bare scene", [&] { return this->cornerIs(kScene); }));
    cycles(3 * kTenth, kScene);
    view = this->show(kAnimated);
    ASSERT_TRUE(this->playUntil("the page again", [&] { return this->cornerIs(0x112233); }));
    cycles(kTenth, 0x112233);
    const Held before = settled(0x112233);
    cycles(TypeParam::kCycles, 0x112233);
    if (this->HasFatalFailure()) return;
    const Held after = settled(0x112233);
    ASSERT_GT(before.process.handles, 20u) << "the count works";
    EXPECT_LE(after.game, before.game + TypeParam::kComeAndGo);
    EXPECT_LE(PainterObjects::contextsLeft(), 1u);
    EXPECT_EQ(PainterObjects::texturesMade(), PainterObjects::contextsMade() * 3) << "page, list and close button";
    EXPECT_LE(after.process.handles, before.process.handles + 20);
    EXPECT_LE(after.process.sections, before.process.sections + 20);
    EXPECT_LE(after.process.threads, before.process.threads + 10);
    // Each context has its region.
    const auto besideContexts = [](const ProcessUsage& usage) { return usage.gdi - 2 * usage.deviceContexts; };
    EXPECT_LE(after.process.deviceContexts, before.process.deviceContexts + TypeParam::kContextsKept);
    EXPECT_LE(besideContexts(after.process), besideContexts(before.process) + 20);
    EXPECT_EQ(after.process.windows, before.process.windows);
    EXPECT_LE(after.process.bytes, before.process.bytes + 30'000'000) << "a frame in each cycle would be 128 MB";
    std::cerr << std::format(
        "handles {} {}, sections {} {}, threads {} {}, GDI objects {} {}, device contexts {} {}, bytes {} {}, game {} "
        "{}\n",
        before.process.handles, after.process.handles, before.process.sections, after.process.sections,
        before.process.threads, after.process.threads, before.process.gdi, after.process.gdi,
        before.process.deviceContexts, after.process.deviceContexts, before.process.bytes, after.process.bytes,
        before.game, after.game);
}

}  // namespace ZEMO::Test
