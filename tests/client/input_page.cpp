#include "client/input_page.h"

#include <atomic>
#include <iostream>
#include <sstream>

#include "client/engine_task.h"
#include "include/cef_browser.h"
#include "layers/window_thread_calls.h"
#include "support/own_window.h"

namespace ZEMO::Test {
namespace {

constexpr int kMostBrowsers = 200;  // that tests of one process make
constexpr WORD kFirstKey = VK_F23;
constexpr WORD kLastKey = VK_F24;

constexpr char kHead[] = R"(<!doctype html><meta charset=utf-8>
<style>html,body{margin:0;height:100%;overflow:hidden;background:#203040;font:16px monospace}</style>
<body>)";

constexpr char kScript[] = R"(<script>
const lines = [];
let gestures = false;
const kFirstKey = 134, kLastKey = 135;
const modifierKeys = {Shift:'S', Control:'C', Alt:'A', Meta:'M', AltGraph:'G', CapsLock:'K', NumLock:'N'};
const modifiers = e => Object.keys(modifierKeys).filter(k => e.getModifierState(k)).map(k => modifierKeys[k]).join('');
const add = (...parts) => lines.push(parts.filter(p => p !== '').join(' '));
const place = e => Math.round(e.clientX * 100) / 100 + ',' + Math.round(e.clientY * 100) / 100;
const side = e => ['', 'left', 'right', 'pad'][e.location];
function tell() { fetch('/log', {method: 'POST', body: lines.splice(0).join('\n') || '-'}); }
const on = (kinds, handler) => kinds.split(' ').forEach(k => addEventListener(k, handler, {capture: true, passive: false}));
on('keydown keypress keyup', e => {
  if (e.keyCode == kFirstKey) { fetch('/ready'); return; }
  if (e.keyCode == kLastKey) { if (e.type == 'keyup') tell(); return; }
  add(e.type, e.keyCode, e.key == ' ' ? 'Space' : e.key, e.code, side(e), e.repeat ? 'repeat' : '', modifiers(e));
  if (e.type == 'keydown' && e.keyCode == 9 && document.activeElement == document.body) e.preventDefault();
});
on('mousedown mouseup click dblclick mousemove contextmenu auxclick', e =>
  e.button < 0 ? add(e.type, 'by key') : add(e.type, place(e), 'button ' + e.button, 'buttons ' + e.buttons, 'detail ' + e.detail, modifiers(e)));
on('pointerdown pointerup pointermove pointercancel', e =>
  add(e.type, e.pointerType, place(e), 'button ' + e.button, 'buttons ' + e.buttons, modifiers(e)));
on('wheel', e => add(e.type, place(e), e.deltaX + ',' + e.deltaY, modifiers(e)));
on('touchstart touchmove touchend touchcancel', e => {
  if (!gestures) e.preventDefault();  // no scrolling, no emulated mouse
  for (const t of e.changedTouches) add(e.type, place(t), 'radius ' + t.radiusX + ',' + t.radiusY, 'force ' + t.force);
});
on('input', e => add('input', e.target.id + '=' + (e.target.value ?? e.target.textContent)));
</script>)";

bool isInput(UINT message) {
    return (message >= WM_KEYFIRST && message <= WM_KEYLAST) || (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) ||
           (message >= WM_POINTERUPDATE && message <= WM_POINTERUP) ||
           (message >= WM_USER + 200 && message <= WM_USER + 206) || message == WM_CONTEXTMENU || message == WM_INPUT;
}

}  // namespace

KeysHeld::KeysHeld(const std::vector<int>& down, const std::vector<int>& toggled) {
    GetKeyboardState(before);
    BYTE keys[256] = {};
    for (const int key : down) keys[key] |= 0x80;
    for (const int key : toggled) keys[key] |= 0x01;
    SetKeyboardState(keys);
}

void tapRealKey(WORD virtualKey, DWORD flags) {
    sendRealKey(virtualKey, flags);
    sendRealKey(virtualKey, flags | KEYEVENTF_KEYUP);
}

InputPage::InputPage(Style pageStyle, float pageScale, const std::string& body, bool presentCallback, SIZE pageSize)
    : game({.clientWidth = static_cast<int>(static_cast<float>(pageSize.cx) * pageScale),
            .clientHeight = static_cast<int>(static_cast<float>(pageSize.cy) * pageScale),
            .presentCallback = presentCallback}),
      style(pageStyle),
      scale(pageScale),
      size(pageSize) {
    server.serveHtml("/", kHead + body + kScript);
    server.serve("/log", {});
    server.serve("/ready", {});
}

InputPage::~InputPage() {
    view.reset();
    if (style == kOwnWindow) game.waitFor("the end of the view's window", [] { return !findViewWindow(); });
}

bool InputPage::open() {
    view = game.makeView(server.url("/"), events);
    view->setDisplayMode(style);
    view->setSize(static_cast<float>(size.cx), static_cast<float>(size.cy));
    view->show();
    window = style == kLayer ? game.window : findViewWindow();
    SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    if (!game.waitFor("completion", [&] { return events.has("completed"); }) || !bringToFront()) return false;
    // The engine drops the input of a page until it has painted it.
    const auto hearsKeys = [&] {
        SendMessageW(window, WM_KEYUP, kFirstKey, 1);
        return server.requestCount("/ready") > 0;
    };
    if (!game.waitFor("the first key", hearsKeys)) return false;
    log([](HWND) {});
    reachedGame();
    return true;
}

bool InputPage::bringToFront() {
    // Asked for again: a window that has just gone, or come, may hand the foreground on after the first time.
    return game.waitFor("the foreground", [&] {
        if (GetForegroundWindow() == window) return true;
        onWindowThread([&] {
            SetForegroundWindow(window);
            SetFocus(window);
        });
        return false;
    });
}

Lines InputPage::log(const std::function<void(HWND)>& act, const std::vector<int>& down,
                     const std::vector<int>& toggled) {
    onWindowThread([&] {
        {
            const KeysHeld keys(down, toggled);
            act(window);
        }
        SendMessageW(window, WM_KEYUP, kLastKey, 1);
    });
    return waitForAnswer(++asked);
}

Lines InputPage::logPosted(const SentMessage& message, size_t expected) {
    PostMessageW(window, message.id, message.wParam, message.lParam);
    return logUntil("what was posted", [&](const Lines& lines) { return lines.size() >= expected; });
}

Lines InputPage::logReal(const std::function<void()>& act) {
    act();
    sendRealKey(kLastKey, KEYEVENTF_KEYUP);  // a press would be a key to what listens in the page
    return waitForAnswer(++asked);
}

Lines InputPage::logUntil(const char* what, const std::function<bool(const Lines&)>& done) {
    Lines lines;
    game.waitFor(what, [&] {
        for (const std::string& line : log([](HWND) {})) lines.push_back(line);
        return done(lines);
    });
    return lines;
}

std::vector<UINT> InputPage::reachedGame() {
    std::vector<UINT> ids;
    for (const GameMessage& message : game.gameMessages) {
        if (isInput(message.id)) ids.push_back(message.id);
    }
    game.gameMessages.clear();
    return ids;
}

std::string InputPage::ask(const std::string& expression) {
    const std::string script = "fetch('/log',{method:'POST',body:String(" + expression + ")})";
    runOnEngine(game, [script] {  // its own: a wait that is given up leaves the task behind
        CefRefPtr<CefBrowser> newest;
        for (int id = 1; id <= kMostBrowsers; ++id) {
            if (const auto browser = CefBrowserHost::GetBrowserByIdentifier(id)) newest = browser;
        }
        if (newest) newest->GetMainFrame()->ExecuteJavaScript(script, "", 0);
    });
    const Lines answer = waitForAnswer(++asked);
    return answer.empty() ? "" : answer.front();
}

std::vector<std::string> InputPage::answers() const {
    std::vector<std::string> bodies;
    for (const HttpServer::Request& request : server.requests()) {
        if (request.target == "/log") bodies.push_back(request.body);
    }
    return bodies;
}

Lines InputPage::waitForAnswer(size_t count) {
    if (!game.waitFor("the page's log", [&] { return server.requestCount("/log") >= count; })) return {"no answer"};
    std::istringstream text(answers()[count - 1]);
    Lines lines;
    for (std::string line; std::getline(text, line);) {
        if (line != "-") lines.push_back(line);
    }
    return lines;
}

bool InputPage::onWindowThread(const std::function<void()>& work) {
    const auto done = std::make_shared<std::atomic<bool>>(false);
    ZEMO::UI::callOnWindowThread(window, [&work, done] {
        work();
        *done = true;
    });
    return game.waitFor("the window's thread", [&] { return done->load(); });
}

LPARAM InputPage::at(int x, int y) const {
    const auto device = [this](int logical) { return static_cast<int>(static_cast<float>(logical) * scale + 0.999f); };
    return MAKELPARAM(device(x), device(y));
}

POINT InputPage::onScreen(int x, int y) const {
    const LPARAM place = at(x, y);
    POINT point{static_cast<SHORT>(LOWORD(place)), static_cast<SHORT>(HIWORD(place))};
    ClientToScreen(window, &point);
    return point;
}

}  // namespace ZEMO::Test
