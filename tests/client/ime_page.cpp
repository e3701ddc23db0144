#include "client/ime_page.h"

#include <algorithm>
#include <atomic>
#include <iostream>

#include "client/engine_task.h"
#include "include/cef_browser.h"
#include "layers/window_thread_calls.h"
#include "support/own_window.h"

namespace ZEMO::Test {
namespace {

constexpr char kPage[] = R"(<!doctype html><meta charset=utf-8>
<style>body{margin:0;background:#203040;font:16px monospace}input{position:absolute;left:20px;width:260px;height:24px;margin:0;padding:0;
border:0;font:16px monospace}#a{top:40px}#b{top:80px}#p{top:120px}</style>
<input id=a><input id=b><input id=p type=password>
<script>
let last = Promise.resolve();
// One request at a time: they arrive in the order in which things happened.
function say(text) { last = last.then(() => fetch('/said?' + encodeURIComponent(text))); }
for (const kind of ['compositionstart', 'compositionupdate', 'compositionend'])
  a.addEventListener(kind, e => say(kind + ' ' + e.data));
for (const field of [a, b, p])
  field.addEventListener('input', e => say(field.id + '=' + field.value));
for (const field of [a, b, p]) field.addEventListener('focus', e => say('focus ' + field.id));
onload = () => { a.focus(); requestAnimationFrame(() => requestAnimationFrame(() => say('painted'))); };
</script>)";

int hexDigit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

std::string decoded(const std::string& text) {
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
        i += 2;
    }
    return plain;
}

}  // namespace

ImePage::ImePage(GameHost::Options options, int mode) : game(options), displayMode(mode) {
    server.serveHtml("/", kPage);
    server.serve("/said", {});
}

ImePage::~ImePage() { view.reset(); }

bool ImePage::open() {
    view = game.makeView(server.url("/"), events);
    view->setDisplayMode(displayMode);
    view->setSize(320, 240);
    view->show();
    window = displayMode == 0 ? game.window : findViewWindow();
    SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    // The engine drops the keys of a page that it has not painted yet.
    const auto painted = [&] { return displayMode == 1 || game.frames.pixel(2, 2) == 0xFF203040u; };
    return waitUntilSaid("painted") && game.waitFor("the page's pixels", painted) &&
           game.waitFor("completion", [&] { return events.has("completed"); }) && onWindowThread([&] {
               SetForegroundWindow(window);
               SetFocus(window);
           }) &&
           game.waitFor("the foreground", [&] { return GetForegroundWindow() == window; });
}

void ImePage::run(const std::string& script) {
    runOnEngine(game,
                [&] { CefBrowserHost::GetBrowserByIdentifier(1)->GetMainFrame()->ExecuteJavaScript(script, "", 0); });
}

std::vector<std::string> ImePage::all() const {
    std::vector<std::string> lines;
    for (const HttpServer::Request& request : server.requests()) {
        if (request.target.starts_with("/said?")) lines.push_back(decoded(request.target.substr(6)));
    }
    return lines;
}

std::vector<std::string> ImePage::said() const {
    std::vector<std::string> lines = all();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(forgotten));
    return lines;
}

bool ImePage::waitUntilSaid(const std::string& line) {
    const bool there = game.waitFor(line.c_str(), [&] { return std::ranges::count(said(), line) > 0; });
    if (!there) {
        for (const std::string& other : said()) std::cerr << "  said: " << other << "\n";
    }
    return there;
}

bool ImePage::onWindowThread(const std::function<void()>& work) {
    std::atomic<bool> done = false;
    ZEMO::UI::callOnWindowThread(window, [&] {
        work();
        done = true;
    });
    return game.waitFor("the window's thread", [&] { return done.load(); });
}

}  // namespace ZEMO::Test
