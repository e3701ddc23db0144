#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "engine/client/cef_adapter.h"
#include "engine/game_host.h"
#include "engine_bench/measured.h"

namespace ZEMO::Bench {

/// Hears of each paint of a TimedClient, on the engine thread and outside the measured time.
class PaintWatcher {
public:
    virtual ~PaintWatcher() = default;
    /// The engine's buffer as the engine left it: nobody has read it yet.
    virtual void beforePaint(const void* buffer, int width, int height) = 0;
    /// `started`: the engine's call arrived. `returned`: the library gave the thread back.
    virtual void afterPaint(const void* buffer, int width, int height, Clock::time_point started,
                            Clock::time_point returned) = 0;
    /// Another question of the engine to the view (its size, its screen) was answered.
    virtual void answered(Clock::duration /*span*/) {}
};

/// The library's own browser client with a clock around what the engine calls. The time begins where the engine's call
/// has become a call of the client, so the binding's conversion of the dirty rectangles (of which there are one or two)
/// is left out.
class TimedClient final : public UI::CefAdapter {
public:
    /// `watcher` must outlive the client, that is, the browser.
    TimedClient(UI::WebViewLink link, HWND window, UI::OsrFramePresentCallback present, PaintWatcher& watcher);

    void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override;
    void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
    bool GetScreenInfo(CefRefPtr<CefBrowser> browser, CefScreenInfo& screen_info) override;
    void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;

    /// The engine's last call: the watcher is not used any more. Any thread.
    bool browserEnded() const { return ended; }

private:
    PaintWatcher& watcher;
    std::atomic<bool> ended{false};
    bool inScreenInfo = false;  ///< engine thread; that answer asks for the view's rectangle itself
};

/// A real browser with a TimedClient on the game's window, as a web layer makes it. Used on the game's thread; the
/// destructor waits for the browser's end.
class TimedView {
public:
    TimedView(Test::GameHost& game, const std::string& address, UI::OsrFramePresentCallback present,
              PaintWatcher& watcher);
    ~TimedView();
    TimedView(const TimedView&) = delete;
    TimedView& operator=(const TimedView&) = delete;

    /// Asks the engine for a paint although nothing has changed.
    void askForPaint();

private:
    Test::GameHost& game;
    std::shared_ptr<UI::IZEMOWebView> facade;
    std::shared_ptr<Test::NavigationRecorder> events = std::make_shared<Test::NavigationRecorder>();
    CefRefPtr<TimedClient> client;
};

}  // namespace ZEMO::Bench
