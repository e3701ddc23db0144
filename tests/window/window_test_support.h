#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/log.h"
#include "layers/layer_manager.h"
#include "layers/zemo_window.h"

namespace ZEMO::Test {

inline constexpr auto kPatience = std::chrono::seconds(20);

/// Lines written by one thread and waited for by another.
class Journal {
public:
    void add(std::string line);
    std::vector<std::string> lines() const;
    void clear();
    /// False after the time-out, with a line on stderr that says what was there instead.
    bool waitFor(const std::string& line) const;
    size_t count(const std::string& line) const;

private:
    mutable std::mutex access;
    mutable std::condition_variable changed;
    std::vector<std::string> entries;
};

struct ReceivedMessage {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

/// A game's main window: top-level, visible, on a thread of its own with a plain message loop. Its procedure records
/// what it receives, and answers what a test probes with kGameAnswer instead of the default.
class GameWindow {
public:
    static constexpr LRESULT kGameAnswer = 0x6A3E;

    explicit GameWindow(RECT place = {100, 80, 900, 680}, DWORD style = WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    ~GameWindow();
    GameWindow(const GameWindow&) = delete;
    GameWindow& operator=(const GameWindow&) = delete;

    HWND handle() const { return window; }
    /// Shows a window of style WS_POPUP without activating it: no window manager takes it, which could bring an earlier
    /// size back late.
    void showUnmanaged();
    /// Runs `work` on the window's thread and waits for its end.
    void onThread(const std::function<void()>& work);
    /// Sends the message on the window's own thread, so that nothing else can come in between.
    struct Probe {
        LRESULT result = 0;
        bool gameSawIt = false;
    };
    Probe probe(UINT message, WPARAM wParam, LPARAM lParam);
    /// Waits until the game's procedure has received `message`.
    bool waitForMessage(UINT message) const;
    std::vector<ReceivedMessage> received() const;
    void clearReceived();
    RECT client() const;

private:
    static LRESULT CALLBACK procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    void run(RECT place, DWORD style);

    HWND window = nullptr;
    mutable std::mutex access;
    mutable std::condition_variable changed;
    std::vector<ReceivedMessage> messages;
    UINT probing = 0;
    bool ready = false;
    std::thread thread;
};

/// A game window that the process-wide manager has subclassed; undone at the end.
class SubclassedGame {
public:
    SubclassedGame();
    ~SubclassedGame();
    GameWindow game;

private:
    LONG_PTR original;
};

/// A real native window layer that writes down every event with its arguments.
class RecordingLayer : public UI::ZEMOWindow {
public:
    struct Options {
        UI::WindowStyle style = UI::WindowStyle::Layer;
        Size size{640, 400};
        HWND parent = nullptr;
        bool frameConsumerActive = true;
        bool steamDeck = false;
        bool steamOverlayActive = false;
        const char* title = "Zemo window";
    };
    RecordingLayer(const Options& options, std::shared_ptr<Journal> journal);
    ~RecordingLayer() override;

    using ZEMOWindow::setViewChild;
    void setCustomCursor(HCURSOR cursor) { customCursor = cursor; }
    HCURSOR getCustomCursor() const { return customCursor; }

    bool charPositionKnown = true;
    std::function<void()> duringKey;
    std::function<void()> duringClose;

    void setVisible(bool show, bool keepHookFrame) override;
    void sendImeCommand(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount) override;
    void blurActiveElement() override;
    void onSize(const RECT& client, int width, int height) override;
    void onMaximizeRestore() override;
    void onDestroy() override;
    void onKillFocus() override;
    void onClose() override;
    void onImeSetContext() override;
    void onImeStartComposition() override;
    void onImeComposition(LPARAM flags) override;
    void onImeEndComposition() override;
    void onImeFocusChange(bool enable) override;
    void onImeBoundsChanged() override;
    bool onImeQueryCharPosition(IMECHARPOSITION* position) override;
    void onMouseButton(int button, bool up, int x, int y) override;
    void onMouseMove(int x, int y, uint32_t modifiers) override;
    void onMouseWheel(WPARAM wParam, int x, int y, bool horizontal, bool clientCoordinates) override;
    void onKey(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onPointer(UINT message, uint32_t pointerId, int x, int y) override;
    void onActivated() override;
    void onDeactivated() override;
    void onExternalScript(const std::string& payload) override;
    void onExternalText(const std::string& text) override;

protected:
    /// Takes each line in place of the journal. In the derived class's constructor.
    void setListener(std::function<void(const std::string&)> newListener) { listener = std::move(newListener); }

private:
    void note(std::string line);
    std::shared_ptr<Journal> journal;
    std::function<void(const std::string&)> listener;
};

std::string text(const char* format, ...) ZEMO_PRINTF_LIKE;
/// As the recording layer writes them.
std::string moveLine(int x, int y, WPARAM keys);

/// Puts the cursor at a place of the screen; back where it was at the end.
class CursorAt {
public:
    /// A place that goes with a window: the window manager may answer an earlier size or position late.
    explicit CursorAt(std::function<POINT()> screen);
    explicit CursorAt(POINT screen) : CursorAt([screen] { return screen; }) {}
    CursorAt(int x, int y) : CursorAt(POINT{x, y}) {}
    ~CursorAt();

    /// Runs `attempt` with the cursor at the place of the innermost CursorAt before and after it. The display reports
    /// an earlier place late now and then; such an attempt does not count and is repeated. The number of attempts.
    static int hold(const std::function<void()>& attempt);

private:
    std::function<POINT()> place;
    POINT before{};
    CursorAt* outer;
};

POINT clientToScreen(HWND window, POINT point);
/// A point inside the close button of a window with this client area, at scale 1.
POINT closeButtonPoint(HWND window);
/// A point of the client area that is on no button and far from the edges.
POINT contentPoint(HWND window);

/// Waits until the thread of the handle has ended.
bool waitForThreadEnd(DWORD threadId, HANDLE threadHandle);

}  // namespace ZEMO::Test
