// From a message's arrival at the game's window to the engine's call, with a real page in a layer: what the library
// puts between a player's hand and the engine. The clock starts where the system calls the window's procedure, which
// here is called as a function, and stops at the first instruction of the engine's function: while the samples are
// taken that function is the clock. The rest of the way is all real: the subclass, the layer, the browser's host from
// the engine.
//
// The floor of each is what the rules make it ask of the system, and the call that every subclass makes anyway: a key's
// state costs a round trip to another process here, and next to nothing where it lies in shared memory.
#include <array>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <stdexcept>

#include "engine/client/cef_adapter.h"
#include "engine/game_host.h"
#include "engine_bench/measured.h"
#include "engine_bench/pages.h"
#include "include/cef_browser.h"
#include "include/cef_task.h"
#include "support/http_server.h"
#include "support/wrapped_browser.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;

constexpr int kSamples = 5000;
constexpr int kWarmUp = 500;

Clock::time_point engineCalled;
bool wasCalled = false;

void noteCall() {
    engineCalled = Clock::now();
    wasCalled = true;
}

/// The first instructions of a function replaced by a jump to another one; the old ones are back at the end.
class EntryReplaced {
public:
    EntryReplaced(void* functionEntry, void (*with)()) : entry(functionEntry) {
        std::memcpy(before.data(), entry, before.size());
        std::array<uint8_t, 12> jump{0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xE0};  // mov rax, with; jmp rax
        std::memcpy(jump.data() + 2, &with, sizeof with);
        write(jump);
    }
    ~EntryReplaced() { write(before); }
    EntryReplaced(const EntryReplaced&) = delete;
    EntryReplaced& operator=(const EntryReplaced&) = delete;

private:
    void write(const std::array<uint8_t, 12>& code) {
        DWORD protection = 0;
        VirtualProtect(entry, code.size(), PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(entry, code.data(), code.size());
        VirtualProtect(entry, code.size(), protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), entry, code.size());
    }
    void* entry;
    std::array<uint8_t, 12> before{};
};

/// The engine's functions for input, which all its browsers share.
struct EngineEntries {
    void *move = nullptr, *wheel = nullptr, *key = nullptr;
};

class Finder final : public CefTask {
public:
    explicit Finder(EngineEntries& place, std::atomic<bool>& set) : entries(place), done(set) {}
    void Execute() override {
        const CefRefPtr<CefBrowserHost> host = CefBrowserHost::GetBrowserByIdentifier(1)->GetHost();
        auto* const raw = Test::structureOf(host);
        entries = {reinterpret_cast<void*>(raw->send_mouse_move_event),
                   reinterpret_cast<void*>(raw->send_mouse_wheel_event), reinterpret_cast<void*>(raw->send_key_event)};
        raw->base.release(&raw->base);
        done = true;
    }

private:
    EngineEntries& entries;
    std::atomic<bool>& done;
    IMPLEMENT_REFCOUNTING(Finder);
};

EngineEntries findEntries(Test::GameHost& game) {
    static EngineEntries entries;
    static std::atomic<bool> done{false};
    CefPostTask(TID_UI, new Finder(entries, done));
    if (!game.waitFor("the engine's functions", [] { return done.load(); })) throw std::runtime_error("no browser");
    return entries;
}

struct Case {
    const char* name;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    void* engine;
    std::function<void()> questions;  ///< what its floor asks of the system
};

LRESULT CALLBACK emptyProcedure(HWND, UINT, WPARAM, LPARAM) {
    noteCall();
    return 0;
}

void askKeys(std::initializer_list<int> keys) {
    for (const int key : keys) (void)GetKeyState(key);
}

/// A message and its floor in turn: a question to the system's other process costs a tenth while that process is awake
/// on the same core, which changes within a run.
void measure(HWND window, const Case& one) {
    const auto procedure = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
    const EntryReplaced replaced(one.engine, noteCall);
    std::vector<double> samples, floorSamples;
    for (int i = 0; i < kWarmUp + kSamples; ++i) {
        wasCalled = false;
        Clock::time_point arrived = Clock::now();
        procedure(window, one.message, one.wParam, one.lParam);
        if (!wasCalled) throw std::runtime_error(std::string(one.name) + " did not reach the engine");
        if (i >= kWarmUp) samples.push_back(microseconds(engineCalled - arrived));
        arrived = Clock::now();
        one.questions();
        CallWindowProcW(emptyProcedure, window, WM_MOUSEMOVE, 0, 0);
        if (i >= kWarmUp) floorSamples.push_back(microseconds(engineCalled - arrived));
    }
    const std::string name = std::string("to_engine/") + one.name;
    report(name, "us", samples, name + "_floor");
    report(name + "_floor", "us", floorSamples);
}

int run() {
    Test::HttpServer server;
    server.serveHtml("/", stillPage());
    Test::GameHost game({.clientWidth = 1280, .clientHeight = 720});
    Test::NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    if (!game.waitFor("the page", [&] { return events.has("completed"); })) return 1;
    if (!game.waitFor("the foreground", [&] {
            SetForegroundWindow(game.window);  // a wheel behind another window is dropped
            return GetForegroundWindow() == game.window;
        })) {
        return 1;
    }
    const EngineEntries engine = findEntries(game);
    POINT point{200, 100};
    ClientToScreen(game.window, &point);
    SendMessageW(game.window, WM_MOUSEMOVE, 0, MAKELPARAM(100, 100));  // the first one is the game's
    const HWND window = game.window;
    measure(window, {"mouse_move", WM_MOUSEMOVE, 0, MAKELPARAM(200, 100), engine.move,
                     [] { askKeys({VK_MENU, VK_NUMLOCK, VK_CAPITAL}); }});
    measure(window, {"wheel", WM_MOUSEWHEEL, MAKEWPARAM(0, 120), MAKELPARAM(point.x, point.y), engine.wheel, [window] {
                         POINT asked{};
                         if (GetForegroundWindow() == window) ScreenToClient(window, &asked);
                         askKeys({VK_SHIFT});
                     }});
    measure(window, {"key", WM_KEYDOWN, 'A', 0x001E0001, engine.key,
                     [] { askKeys({VK_SHIFT, VK_CONTROL, VK_MENU, VK_NUMLOCK, VK_CAPITAL}); }});
    view->close();
    view.reset();
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
