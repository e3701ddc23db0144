#include <gtest/gtest.h>

#include <windows.h>

#include <format>
#include <iostream>
#include <mutex>

#include "engine/game_host.h"
#include "support/http_server.h"
#include "support/own_window.h"

// The way of the controller between game and page, through the exports and the game's real window. A page's log comes
// as requests to the test's server.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

constexpr char kConnected[] = R"({"isConnected":true,"primaryBtn":"0","secondaryBtn":"1","secondaryBtnText":""})";

// Logs what it is called with, in order, and does what the test asks for.
constexpr char kPage[] = R"(<!doctype html><head><title>page</title></head><body><script>
let queue = Promise.resolve(), done = 0;
const log = text => { queue = queue.then(() => fetch('/log?' + encodeURIComponent(text))); };
window.initClientGamePad = status => log('init ' + JSON.stringify(status));
window.handleControllerInput = data => log('input ' + JSON.stringify(data));
window.handleFocusGained = () => log('focus gained');
window.handleFocusLost = () => log('focus lost');
setInterval(async () => {
  const [number, address] = (await (await fetch('/next')).text()).split(' ');
  if (number > done) { done = number; log('went'); queue.then(() => { location.href = address; }); }
}, 60);
const watch = setInterval(() => {
  if (window.gameControllerStatus === undefined) return;
  clearInterval(watch);
  log('status ' + JSON.stringify(window.gameControllerStatus));
}, 10);
onload = () => log('loaded');
</script></body>)";

std::string percentDecoded(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

/// Another window of the same game.
class OtherWindow {
public:
    OtherWindow()
        : window(CreateWindowExW(0, L"STATIC", L"other", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 400, 300, 200, 150, nullptr,
                                 nullptr, nullptr, nullptr)) {}
    ~OtherWindow() { DestroyWindow(window); }
    OtherWindow(const OtherWindow&) = delete;
    OtherWindow& operator=(const OtherWindow&) = delete;
    HWND handle() const { return window; }

private:
    HWND window;
};

/// A game with a controller, its window in front.
class ControllerForeground : public ::testing::Test {
protected:
    ControllerForeground() {
        server.serve("/log", {.contentType = "text/plain", .body = "ok"});
        server.serve("/next", {.contentType = "text/plain", .body = "0"});
        for (const char* path : {"/plain", "/html/idp_login/index.html", "/html/login_idp/index.html"}) {
            server.serveHtml(path, kPage);
        }
        setUIGameControllerScriptUseCallback([heard = reported](int use) {
            const std::lock_guard lock(heard->mutex);
            heard->uses.push_back(use);
        });
        sendGameControllerStatus(kConnected);
    }
    ~ControllerForeground() override { setUIGameControllerScriptUseCallback(nullptr); }

    bool bringToFront(HWND window) {
        return game.waitFor("the window in front", [&] {
            if (GetForegroundWindow() == window) return true;
            SetForegroundWindow(window);
            return false;
        });
    }
    /// A view on a path of the server, addressed by name as pages are.
    void open(const std::string& path, int displayMode = 0) {
        ASSERT_TRUE(bringToFront(game.window));
        view = createWebViewDefault();
        view->setSize(320, 200);
        view->setDisplayMode(displayMode);
        view->setWebViewDelegate(events);
        view->loadUrl(server.url(path), {addressItem(server.url(path))});
        view->show();
        ASSERT_TRUE(waitForLog("loaded")) << path;
    }
    std::vector<std::string> log() const {
        std::vector<std::string> lines;
        for (const HttpServer::Request& request : server.requests()) {
            if (request.target.starts_with("/log?")) lines.push_back(percentDecoded(request.target.substr(5)));
        }
        return lines;
    }
    size_t logged(const std::string& start) const {
        size_t count = 0;
        for (const std::string& line : log()) count += line.starts_with(start);
        return count;
    }
    bool waitForLog(const std::string& start, size_t times = 1) {
        const bool found = game.waitFor(start.c_str(), [&] { return logged(start) >= times; });
        if (!found) {
            for (const std::string& line : log()) std::cerr << "logged: " << line << std::endl;
        }
        return found;
    }
    /// Has the page ask for `address`; true once it has.
    bool go(const std::string& address) {
        const size_t before = logged("went");
        server.serve("/next", {.contentType = "text/plain", .body = std::format("{} {}", ++command, address)});
        const bool went = waitForLog("went", before + 1);
        // Or the next page, which has gone nowhere yet, ends its own loading with it.
        server.serve("/next", {.contentType = "text/plain", .body = "0"});
        return went;
    }
    std::vector<int> uses() const {
        const std::lock_guard lock(reported->mutex);
        return reported->uses;
    }
    bool waitForUse(int last, size_t atLeast) {
        return game.waitFor("the use callback", [&] {
            const auto list = uses();
            return list.size() >= atLeast && list.back() == last;
        });
    }

    HttpServer server;
    GameHost game;
    std::shared_ptr<NavigationRecorder> events = std::make_shared<NavigationRecorder>();
    std::shared_ptr<IZEMOWebView> view;

private:
    /// Shared with the callback, which the view's last call may outlive.
    struct Reported {
        std::mutex mutex;
        std::vector<int> uses;
    };
    std::shared_ptr<Reported> reported = std::make_shared<Reported>();
    int command = 0;
};

}  // namespace

TEST_F(ControllerForeground, PageOfTheTable_GetsStatusFilesAndInput) {
    open("/html/idp_login/index.html");
    EXPECT_TRUE(waitForLog("status " + std::string(kConnected)));
    ASSERT_FALSE(uses().empty());
    EXPECT_EQ(uses().front(), 1);
    for (const char* file : {"/common/css/focus.css", "/common/css/keymap.min.css", "/common/js/spatial_navigation.js",
                             "/common/js/gamepad_navigation.js"}) {
        EXPECT_TRUE(game.waitFor(file, [&] { return server.requestCount(file) == 1; }));
    }
    sendGameControllerCustomMsgData(R"({"button":"down","text":"한"})");
    sendGameControllerCustomMsgData("[1,2]");
    EXPECT_TRUE(waitForLog("input [1,2]"));
    EXPECT_EQ(logged("input "
                     R"({"button":"down","text":"한"})"),
              1u);
}

TEST_F(ControllerForeground, PageWithoutFocusStyle_AsksForTheKeyHintsOnly) {
    open("/html/login_idp/index.html");
    EXPECT_TRUE(game.waitFor("scripts", [&] { return server.requestCount("/common/js/gamepad_navigation.js") == 1; }));
    EXPECT_EQ(server.requestCount("/common/css/keymap.min.css"), 1u);
    EXPECT_EQ(server.requestCount("/common/css/focus.css"), 0u);
}

TEST_F(ControllerForeground, PageOutsideTheTable_GetsNothingWhateverTheController) {
    open("/plain");
    sendGameControllerCustomMsgData("1");
    ASSERT_TRUE(go("zemosdk://gamepadinit?use=true"));
    ASSERT_TRUE(waitForLog("init "));
    sendGameControllerCustomMsgData("2");
    EXPECT_TRUE(waitForLog("input 2"));
    EXPECT_EQ(logged("input 1"), 0u) << "sent before the page used the controller";
    EXPECT_EQ(server.requestCount("/common/js/gamepad_navigation.js"), 0u);
    EXPECT_EQ(logged("status "), 0u);
}

TEST_F(ControllerForeground, ReservedAddress_TurnsInputOnAndOff) {
    open("/plain");
    size_t calls = uses().size();
    struct Case {
        const char* address;
        bool on;
    };
    const Case cases[] = {
        {"zemosdk://gamepadinit?use=true", true},   {"zemosdk://gamepadinit?use=TRUE", false},
        {"ZEMOSDK://GamePadInit?use=true", true},   {"zemosdk://gamepadinit", false},
        {"zemosdk://GAMEPADINIT?use=true", true},   {"zemosdk://gamepadinit?use=false", false},
        {"zemosdk://gamepadinit?use=true&x", true}, {"zemosdk://gamepadinit?used=true", false},
    };
    size_t inits = 0;
    int number = 0;
    for (const Case& each : cases) {
        ASSERT_TRUE(go(each.address)) << each.address;
        EXPECT_TRUE(waitForUse(each.on, ++calls)) << each.address;
        if (each.on) {
            EXPECT_TRUE(waitForLog("init " + std::string(kConnected), ++inits)) << each.address;
        }
        sendGameControllerCustomMsgData(std::to_string(++number));
        if (each.on) {
            EXPECT_TRUE(waitForLog("input " + std::to_string(number))) << each.address;
        }
        game.pass(50ms);  // the message has been handled before the page turns it round
    }
    EXPECT_EQ(logged("init "), inits);
    EXPECT_EQ(logged("input "), inits) << "input for a page that does not use it is dropped";
}

TEST_F(ControllerForeground, StatusChangedAfterThePage_ReadAtTheNextRequestForIt) {
    open("/html/idp_login/index.html");
    sendGameControllerStatus(R"({"isConnected":false})");
    EXPECT_EQ(logged("init "), 0u) << "nothing is sent to an open page";
    ASSERT_TRUE(go("zemosdk://gamepadinit?use=true"));
    EXPECT_TRUE(waitForLog(R"(init {"isConnected":false})"));
    sendGameControllerStatus("");
    ASSERT_TRUE(go("zemosdk://gamepadinit?use=true"));
    EXPECT_TRUE(waitForLog(R"(init {"isConnected":false,"primaryBtn":"0","secondaryBtn":"1","secondaryBtnText":""})"));
}

TEST_F(ControllerForeground, NoStatusAtAll_IsNullForThePage) {
    sendGameControllerStatus("");
    open("/html/idp_login/index.html");
    EXPECT_TRUE(waitForLog("status null"));
}

TEST_F(ControllerForeground, LaterPageOfTheSameView_ScriptsOnlyAfterItTurnedThemOff) {
    open("/html/idp_login/index.html");
    const auto scripts = [&] { return server.requestCount("/common/js/gamepad_navigation.js"); };
    ASSERT_TRUE(game.waitFor("scripts", [&] { return scripts() == 1; }));
    view->loadContent(addressItem(server.url("/html/idp_login/index.html")));
    ASSERT_TRUE(waitForLog("loaded", 2));
    // Scripts come in order: with this call, those of the page itself would be there.
    ASSERT_TRUE(go("zemosdk://gamepadinit?use=true"));
    ASSERT_TRUE(waitForLog("init "));
    const size_t calls = uses().size();
    ASSERT_TRUE(go("zemosdk://gamepadinit"));
    ASSERT_TRUE(waitForUse(0, calls + 1));
    EXPECT_EQ(logged("status "), 1u);
    EXPECT_EQ(scripts(), 1u);
    view->loadContent(addressItem(server.url("/html/idp_login/index.html")));
    ASSERT_TRUE(waitForLog("status " + std::string(kConnected), 2));
    EXPECT_TRUE(game.waitFor("scripts again", [&] { return scripts() == 2; }));
}

TEST_F(ControllerForeground, FocusLostAndRegained_PageAndGameHearOfIt) {
    open("/html/idp_login/index.html");
    EXPECT_TRUE(waitForLog("focus gained")) << "a page that is loaded in front hears of it";
    const OtherWindow other;
    ASSERT_TRUE(bringToFront(other.handle()));
    EXPECT_TRUE(waitForLog("focus lost"));
    const size_t calls = uses().size(), gained = logged("focus gained");
    sendGameControllerCustomMsgData("1");
    // Left to be seen, it may come to the front once more: the display answers the first request late.
    ShowWindow(other.handle(), SW_HIDE);
    ASSERT_TRUE(bringToFront(game.window));
    EXPECT_TRUE(waitForLog("focus gained", gained + 1));
    EXPECT_TRUE(waitForUse(1, calls + 1));
    sendGameControllerCustomMsgData("2");
    EXPECT_TRUE(waitForLog("input 2"));
    EXPECT_EQ(logged("input 1"), 0u) << "another window of the game was in front";
}

TEST_F(ControllerForeground, FocusOfAPageThatNeverUsedIt_GameHearsZeroAndThePageNothing) {
    open("/plain");
    ASSERT_TRUE(game.waitFor("completion", [&] { return events->has("completed"); }));
    const OtherWindow other;
    ASSERT_TRUE(bringToFront(other.handle()));
    const size_t calls = uses().size();
    ASSERT_TRUE(bringToFront(game.window));
    EXPECT_TRUE(waitForUse(0, calls + 1));
    ASSERT_TRUE(go("zemosdk://gamepadinit?use=true"));
    ASSERT_TRUE(waitForLog("init "));
    EXPECT_EQ(logged("focus "), 0u);
}

TEST_F(ControllerForeground, ViewInAWindowOfItsOwn_GetsInputAndFocusInFront) {
    open("/html/idp_login/index.html", 1);
    ASSERT_TRUE(waitForLog("status "));
    const HWND own = findViewWindow();
    ASSERT_TRUE(own);
    ASSERT_TRUE(bringToFront(own));
    ASSERT_TRUE(waitForLog("focus gained"));
    const size_t lost = logged("focus lost"), gained = logged("focus gained");
    sendGameControllerCustomMsgData("1");
    EXPECT_TRUE(waitForLog("input 1"));
    ASSERT_TRUE(bringToFront(game.window));
    EXPECT_TRUE(waitForLog("focus lost", lost + 1));
    sendGameControllerCustomMsgData("2");  // the game's own window is in front, and there is no page on it
    ASSERT_TRUE(bringToFront(own));
    EXPECT_TRUE(waitForLog("focus gained", gained + 1));
    sendGameControllerCustomMsgData("3");
    EXPECT_TRUE(waitForLog("input 3"));
    EXPECT_EQ(logged("input 2"), 0u);
}

TEST_F(ControllerForeground, LocalPagePlayedByPadAlone_FormReachesTheGame) {
    ASSERT_TRUE(bringToFront(game.window));
    events->decide = [](const std::string& url) { return url.starts_with("game:"); };
    view = createWebViewDefault();
    view->setSize(320, 200);
    view->setWebViewDelegate(events);
    view->loadPage(getLocalHTMLResourcePath().string() + "/idp_login/index");
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events->has("completed"); }));
    ASSERT_EQ(uses().empty() ? -1 : uses().front(), 1);
    const auto requested = [&](const std::string& start) {
        for (const std::string& event : events->events()) {
            if (event.starts_with("requested " + start)) return event.substr(10);
        }
        return std::string();
    };
    // The page's scripts come a moment after the page; what is sent is an expression, which can tell. It asks for an
    // image: a refused navigation that is still under way could take the form's with it.
    const std::string ready =
        "(document.querySelector('.keymap_item') ? new Image().src = '" + server.url("/ready") + "' : 0, null)";
    ASSERT_TRUE(game.waitFor("the page's scripts", [&] {
        sendGameControllerCustomMsgData(ready);
        return server.requestCount("/ready") > 0;
    }));
    const auto press = [](const std::string& button) {
        sendGameControllerCustomMsgData("{\"button\":\"" + button + "\"}");
    };
    press("0");                              // the keyboard for the name
    press("0"), press("right"), press("0");  // "qw"
    press("1");                              // away with it
    press("down"), press("0"), press("0");   // "q"
    press("9"), press("9");                  // keyboard away, submit
    EXPECT_EQ(GetForegroundWindow(), game.window) << "input for another window is dropped";
    EXPECT_TRUE(game.waitFor("the form", [&] { return !requested("game://login").empty(); }));
    EXPECT_EQ(requested("game://login"), "game://login?name=qw&password=q&region=asia");
}

}  // namespace ZEMO::Test
