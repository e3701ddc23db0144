#include "window/window_test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "layers/input_modifiers.h"

namespace ZEMO::Test {

using namespace ZEMO::UI;

namespace {
constexpr UINT kRunWork = WM_APP + 900;
constexpr UINT kEndLoop = WM_APP + 901;
constexpr wchar_t kGameClass[] = L"TestGameWindow";
}  // namespace

std::string text(const char* format, ...) {
    char buffer[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    return buffer;
}

std::string moveLine(int x, int y, WPARAM keys) { return text("onMouseMove(%d,%d,%u)", x, y, mouseModifiers(keys)); }

void Journal::add(std::string line) {
    {
        const std::lock_guard lock(access);
        entries.push_back(std::move(line));
    }
    changed.notify_all();
}

std::vector<std::string> Journal::lines() const {
    const std::lock_guard lock(access);
    return entries;
}

void Journal::clear() {
    const std::lock_guard lock(access);
    entries.clear();
}

bool Journal::waitFor(const std::string& line) const {
    std::unique_lock lock(access);
    const bool there = changed.wait_for(
        lock, kPatience, [&] { return std::find(entries.begin(), entries.end(), line) != entries.end(); });
    if (!there) {
        std::fprintf(stderr, "missing line: %s; there are:\n", line.c_str());
        for (const std::string& entry : entries) std::fprintf(stderr, "  %s\n", entry.c_str());
    }
    return there;
}

size_t Journal::count(const std::string& line) const {
    const std::lock_guard lock(access);
    return static_cast<size_t>(std::count(entries.begin(), entries.end(), line));
}

GameWindow::GameWindow(RECT place, DWORD style) {
    thread = std::thread([this, place, style] { run(place, style); });
    std::unique_lock lock(access);
    if (!changed.wait_for(lock, kPatience, [this] { return ready; })) {
        std::fprintf(stderr, "the game window's thread did not come up\n");
        std::abort();
    }
}

GameWindow::~GameWindow() {
    if (IsWindow(window)) PostMessageW(window, kEndLoop, 0, 0);
    thread.join();
}

void GameWindow::showUnmanaged() {
    onThread([this] { ShowWindow(window, SW_SHOWNOACTIVATE); });
}

void GameWindow::run(RECT place, DWORD style) {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_CROSS);
    description.lpszClassName = kGameClass;
    RegisterClassExW(&description);
    window = CreateWindowExW(WS_EX_TOPMOST, kGameClass, L"game", style, place.left, place.top, place.right - place.left,
                             place.bottom - place.top, nullptr, nullptr, description.hInstance, this);
    {
        const std::lock_guard lock(access);
        ready = true;
    }
    changed.notify_all();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

LRESULT CALLBACK GameWindow::procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE)
        SetWindowLongPtrW(hwnd, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    auto* self = reinterpret_cast<GameWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self) return DefWindowProcW(hwnd, message, wParam, lParam);
    if (message == kRunWork) {
        (*reinterpret_cast<const std::function<void()>*>(lParam))();
        return 0;
    }
    if (message == kEndLoop) {
        DestroyWindow(hwnd);
        PostQuitMessage(0);
        return 0;
    }
    bool probed;
    {
        const std::lock_guard lock(self->access);
        self->messages.push_back({message, wParam, lParam});
        probed = message == self->probing;
    }
    self->changed.notify_all();
    return probed ? kGameAnswer : DefWindowProcW(hwnd, message, wParam, lParam);
}

void GameWindow::onThread(const std::function<void()>& work) {
    DWORD_PTR answer = 0;
    if (!SendMessageTimeoutW(window, kRunWork, 0, reinterpret_cast<LPARAM>(&work), SMTO_NORMAL, 20000, &answer)) {
        std::fprintf(stderr, "the game window's thread does not answer (error %lu, window %p)\n", GetLastError(),
                     static_cast<void*>(window));
        std::abort();
    }
}

GameWindow::Probe GameWindow::probe(UINT message, WPARAM wParam, LPARAM lParam) {
    Probe probe;
    onThread([&] {
        {
            const std::lock_guard lock(access);
            probing = message;
            messages.clear();
        }
        probe.result = SendMessageW(window, message, wParam, lParam);
        const std::lock_guard lock(access);
        probing = 0;
        probe.gameSawIt = std::any_of(messages.begin(), messages.end(), [&](const ReceivedMessage& m) {
            return m.message == message && m.wParam == wParam && m.lParam == lParam;
        });
    });
    return probe;
}

bool GameWindow::waitForMessage(UINT message) const {
    std::unique_lock lock(access);
    const bool there = changed.wait_for(lock, kPatience, [&] {
        return std::any_of(messages.begin(), messages.end(),
                           [&](const ReceivedMessage& m) { return m.message == message; });
    });
    if (!there) std::fprintf(stderr, "the game did not receive message %u\n", message);
    return there;
}

std::vector<ReceivedMessage> GameWindow::received() const {
    const std::lock_guard lock(access);
    return messages;
}

void GameWindow::clearReceived() {
    const std::lock_guard lock(access);
    messages.clear();
}

RECT GameWindow::client() const {
    RECT client{};
    GetClientRect(window, &client);
    return client;
}

SubclassedGame::SubclassedGame() {
    auto& manager = ZEMOMultiLayerManager::instance();
    original = GetWindowLongPtrW(game.handle(), GWLP_WNDPROC);
    manager.setMainWindow(game.handle());
    game.onThread([&] { manager.subclassMainWindow(); });
}

SubclassedGame::~SubclassedGame() {
    game.onThread([this] { SetWindowLongPtrW(game.handle(), GWLP_WNDPROC, original); });
    ZEMOMultiLayerManager::instance().setMainWindow(nullptr);
}

RecordingLayer::RecordingLayer(const Options& o, std::shared_ptr<Journal> sharedJournal)
    : ZEMOWindow(o.title, o.style, o.size, o.parent, o.frameConsumerActive, o.steamDeck, o.steamOverlayActive),
      journal(std::move(sharedJournal)) {}

RecordingLayer::~RecordingLayer() { journal->add(text("destroyed on thread %lu", GetCurrentThreadId())); }

void RecordingLayer::note(std::string line) {
    if (listener)
        listener(line);
    else
        journal->add(std::move(line));
}

void RecordingLayer::setVisible(bool show, bool keepHookFrame) { note(text("setVisible(%d,%d)", show, keepHookFrame)); }
void RecordingLayer::sendImeCommand(uint32_t kind, const std::u16string* string, const uint32_t* repeatCount) {
    note(text("sendImeCommand(%u,%zu,%u)", kind, string ? string->size() : 0, repeatCount ? *repeatCount : 0));
}
void RecordingLayer::blurActiveElement() { note("blurActiveElement"); }
void RecordingLayer::onSize(const RECT& client, int width, int height) {
    note(text("onSize(%ld,%ld,%ld,%ld,%d,%d)", client.left, client.top, client.right, client.bottom, width, height));
}
void RecordingLayer::onMaximizeRestore() { note("onMaximizeRestore"); }
void RecordingLayer::onDestroy() { note("onDestroy"); }
void RecordingLayer::onKillFocus() { note("onKillFocus"); }
void RecordingLayer::onClose() {
    note("onClose");
    if (duringClose) duringClose();
}
void RecordingLayer::onImeSetContext() { note("onImeSetContext"); }
void RecordingLayer::onImeStartComposition() { note("onImeStartComposition"); }
void RecordingLayer::onImeComposition(LPARAM flags) {
    note(text("onImeComposition(%llx)", static_cast<unsigned long long>(flags)));
}
void RecordingLayer::onImeEndComposition() { note("onImeEndComposition"); }
void RecordingLayer::onImeFocusChange(bool enable) { note(text("onImeFocusChange(%d)", enable)); }
void RecordingLayer::onImeBoundsChanged() { note("onImeBoundsChanged"); }
bool RecordingLayer::onImeQueryCharPosition(IMECHARPOSITION* position) {
    note(text("onImeQueryCharPosition(%p)", static_cast<void*>(position)));
    return charPositionKnown;
}
void RecordingLayer::onMouseButton(int button, bool up, int x, int y) {
    note(text("onMouseButton(%d,%d,%d,%d)", button, up, x, y));
}
void RecordingLayer::onMouseMove(int x, int y, uint32_t modifiers) {
    note(text("onMouseMove(%d,%d,%u)", x, y, modifiers));
}
void RecordingLayer::onMouseWheel(WPARAM wParam, int x, int y, bool horizontal, bool clientCoordinates) {
    note(text("onMouseWheel(%llx,%d,%d,%d,%d)", static_cast<unsigned long long>(wParam), x, y, horizontal,
              clientCoordinates));
}
void RecordingLayer::onKey(UINT message, WPARAM wParam, LPARAM lParam) {
    note(text("onKey(%u,%llx,%llx)", message, static_cast<unsigned long long>(wParam),
              static_cast<unsigned long long>(lParam)));
    if (duringKey) duringKey();
}
void RecordingLayer::onPointer(UINT message, uint32_t pointerId, int x, int y) {
    note(text("onPointer(%u,%u,%d,%d)", message, pointerId, x, y));
}
void RecordingLayer::onActivated() { note("onActivated"); }
void RecordingLayer::onDeactivated() { note("onDeactivated"); }
void RecordingLayer::onExternalScript(const std::string& payload) { note("onExternalScript(" + payload + ")"); }
void RecordingLayer::onExternalText(const std::string& string) { note("onExternalText(" + string + ")"); }

namespace {
CursorAt* innermostCursor = nullptr;
}

CursorAt::CursorAt(std::function<POINT()> screen) : place(std::move(screen)), outer(innermostCursor) {
    GetCursorPos(&before);
    const POINT first = place();
    SetCursorPos(first.x, first.y);
    innermostCursor = this;
}

CursorAt::~CursorAt() {
    innermostCursor = outer;
    SetCursorPos(before.x, before.y);
}

int CursorAt::hold(const std::function<void()>& attempt) {
    int attempts = 0;
    if (!innermostCursor) {
        attempt();
        return 1;
    }
    POINT wanted{};
    const auto isThere = [&] {
        const POINT place = innermostCursor->place();
        POINT now{};
        return GetCursorPos(&now) && now.x == wanted.x && now.y == wanted.y && place.x == wanted.x &&
               place.y == wanted.y;
    };
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < deadline) {
        wanted = innermostCursor->place();
        SetCursorPos(wanted.x, wanted.y);
        if (!isThere()) continue;
        attempt();
        ++attempts;
        if (isThere()) return attempts;
    }
    ADD_FAILURE() << "the cursor does not stay at " << wanted.x << ", " << wanted.y;
    return attempts;
}

POINT clientToScreen(HWND window, POINT point) {
    ClientToScreen(window, &point);
    return point;
}

POINT closeButtonPoint(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right - 38, 38};
}

POINT contentPoint(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right / 2, client.bottom / 2};
}

bool waitForThreadEnd(DWORD threadId, HANDLE threadHandle) {
    const bool ended = WaitForSingleObject(threadHandle, 20000) == WAIT_OBJECT_0;
    if (!ended) std::fprintf(stderr, "thread %lu still runs\n", threadId);
    return ended;
}

}  // namespace ZEMO::Test
