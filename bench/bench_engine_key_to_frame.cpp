// From a key's press to the frame that shows what the page made of it. The library's view in a layer and a client that
// does nothing but take its paints show the same page in the same engine, and are pressed in turn, so that what the
// machine does meanwhile hits both alike. The library's time runs from the message to the game's window to its present
// callback, the other's from the engine's call to the engine's paint.
//
// The engine paints in steps of a thirtieth of a second, so a time depends mostly on where in a step the press fell:
// the pauses between the presses wander through it, and only many presses tell anything.
#include <stdexcept>

#include "engine/game_host.h"
#include "engine_bench/bare_engine.h"
#include "engine_bench/frame_watch.h"
#include "engine_bench/measured.h"
#include "support/http_server.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;

constexpr int kWidth = 1280, kHeight = 720;
constexpr int kPairs = 400;
constexpr WPARAM kKey = 'A';
constexpr LPARAM kPress = 0x001E0001, kRelease = 0xC01E0001;

/// Each press is another plain colour, all over.
std::string pressedPage() {
    return "<!doctype html><style>html,body{margin:0;height:100%;background:#203040}</style><script>let n=0;"
           "onkeydown=()=>{n=(n+1)%120;document.documentElement.style.background=document.body.style.background="
           "`rgb(${n*2},40,${250-n*2})`}</script>";
}

class Hosts {
public:
    explicit Hosts(const std::string& address) {
        UI::setUIOsrFramePresentCallback([this](const void* pixels, int width, int height, int, int, int, int) {
            ofLibrary.frame(pixels, width, height);
        });
        view = game.makeView(address, events);
        view->show();
        require("the library's first frame", ofLibrary);
        client = new BareClient(kWidth, kHeight, [this](const void* pixels, int width, int height) {
            ofBare.frame(pixels, width, height);
        });
        client->open(game.window, address);
        require("the bare engine's first frame", ofBare);
        untilHeard([this] { pressLibrary(); }, ofLibrary);
        untilHeard([this] { pressBare(); }, ofBare);
    }
    ~Hosts() {
        client->close();
        game.waitFor("the browser's end", [this] { return client->closed(); });
        view->close();
        view.reset();
    }
    Hosts(const Hosts&) = delete;
    Hosts& operator=(const Hosts&) = delete;

    double library() {
        return timed([this] { pressLibrary(); }, ofLibrary);
    }
    double bare() {
        return timed([this] { pressBare(); }, ofBare);
    }

private:
    void pressLibrary() {
        SendMessageW(game.window, WM_KEYDOWN, kKey, kPress);
        SendMessageW(game.window, WM_KEYUP, kKey, kRelease);
    }
    void pressBare() {
        client->sendKey(KEYEVENT_RAWKEYDOWN, kKey, kPress);
        client->sendKey(KEYEVENT_KEYUP, kKey, kRelease);
    }
    void require(const char* what, FrameWatch& watch) {
        if (!game.waitFor(what, [&] { return watch.firstFrame().has_value(); })) throw std::runtime_error(what);
    }
    /// A page feels no input before its first paint.
    void untilHeard(const std::function<void()>& press, FrameWatch& watch) {
        game.pass(1s);
        (void)watch.takePictures();
        if (!game.waitFor("a frame after a press", [&] {
                press();
                game.pass(100ms);
                return watch.pictureCount() > 0;
            })) {
            throw std::runtime_error("a page does not hear its keys");
        }
        game.pass(300ms);
    }
    double timed(const std::function<void()>& press, FrameWatch& watch) {
        game.pass(std::chrono::milliseconds(40 + ++presses * 7 % 33));
        (void)watch.takePictures();
        const Clock::time_point pressed = Clock::now();
        press();
        if (!game.waitFor("the frame", [&] { return watch.pictureCount() > 0; })) throw std::runtime_error("no frame");
        return milliseconds(watch.takePictures().front() - pressed);
    }

    Test::GameHost game{{.clientWidth = kWidth, .clientHeight = kHeight, .presentCallback = false}};
    Test::NavigationRecorder events;
    FrameWatch ofLibrary{kWidth, kHeight, 0}, ofBare{kWidth, kHeight, 0};
    std::shared_ptr<UI::IZEMOWebView> view;
    CefRefPtr<BareClient> client;
    int presses = 0;
};

int run() {
    Test::HttpServer server;
    server.serveHtml("/", pressedPage());
    Hosts hosts(server.url("/"));
    std::vector<double> library, bare, difference;
    for (int pair = 0; pair < kPairs; ++pair) {
        const bool libraryFirst = pair % 2 == 0;
        if (libraryFirst) library.push_back(hosts.library());
        bare.push_back(hosts.bare());
        if (!libraryFirst) library.push_back(hosts.library());
        difference.push_back(library.back() - bare.back());
    }
    report("key_to_frame/library", "ms", library, "key_to_frame/bare_engine");
    report("key_to_frame/bare_engine", "ms", bare);
    report("key_to_frame/library_minus_bare", "ms", difference);
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
