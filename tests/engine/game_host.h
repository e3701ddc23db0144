#pragma once

#include <windows.h>

#include <zemo/ui.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/child_processes.h"

namespace ZEMO::Test {

using namespace std::chrono_literals;

/// What the engine may take at most on a loaded machine; a wait that ends earlier costs nothing.
inline constexpr auto kPatience = 30s;

struct FrameRect {
    int x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(const FrameRect&, const FrameRect&) = default;
    friend std::ostream& operator<<(std::ostream& out, const FrameRect& rect);
};

/// One call of the present callback.
struct Frame {
    int width = 0, height = 0;
    FrameRect dirty;
    bool cleared = false;  ///< the null call: nothing to show any more
    std::chrono::steady_clock::time_point at{};
    bool wholeFrame() const { return dirty == FrameRect{0, 0, width, height}; }
};

/// Stands in for a game's frame consumer: copies changed rectangles into its own picture as a game would, keeps the
/// list of calls, wakes the waiter. `replayMatches` says whether that picture still equals the frame that was handed
/// out. The callback shares the record: the engine thread may be in a last frame when the test's own recorder goes.
class FrameRecorder {
public:
    ZEMO::UI::OsrFramePresentCallback callback();

    std::vector<Frame> frames() const;
    size_t frameCount() const;
    Frame lastFrame() const;
    /// B, G, R, A of the picture; 0 outside.
    uint32_t pixel(int x, int y) const;
    std::vector<uint32_t> picture(int* width, int* height) const;
    bool replayMatches() const;
    void forgetFrames();
    bool savePng(const std::string& path) const;

private:
    struct Record {
        void take(const void* pixels, int width, int height, FrameRect dirty);
        std::mutex mutex;
        std::vector<Frame> calls;
        std::vector<uint32_t> image;
        int imageWidth = 0, imageHeight = 0;
        bool matches = true;
    };
    std::shared_ptr<Record> record = std::make_shared<Record>();
};

/// Records a view's navigation events, in order, as text: "starting", "failed -105", "completed", "requested URL",
/// "closeRequested". Copies share one record: a call that the engine has begun may still be under way when the test's
/// own recorder goes.
class NavigationRecorder : public ZEMO::UI::ZEMOWebViewDelegate {
public:
    void navigationStarting(std::shared_ptr<ZEMO::UI::IZEMOWebView> view) override;
    void navigationFailed(std::shared_ptr<ZEMO::UI::IZEMOWebView> view, const std::error_code& error) override;
    void navigationCompleted(std::shared_ptr<ZEMO::UI::IZEMOWebView> view) override;
    bool navigationRequested(std::shared_ptr<ZEMO::UI::IZEMOWebView> view, std::string url) override;
    void closeRequested() override;

    std::vector<std::string> events() const;
    size_t count(const std::string& event) const;
    bool has(const std::string& event) const { return count(event) > 0; }
    void forget();

private:
    struct Record {
        std::mutex mutex;
        std::vector<std::string> list;
        std::function<bool(const std::string&)> decide;
    };
    void add(std::string event);
    std::shared_ptr<Record> record = std::make_shared<Record>();

public:
    /// Decides navigationRequested; unset lets everything pass. Set it before the view is shown.
    std::function<bool(const std::string&)>& decide = record->decide;
};

/// A content item that is just an address (kind 0), as a game writes it.
std::shared_ptr<ZEMO::UI::IZEMOWebContent> addressItem(const std::string& address);

struct GameMessage {
    UINT id = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    friend bool operator==(const GameMessage&, const GameMessage&) = default;
};

/// A game's side of the library: a visible main window on this thread, the started library, and waits that keep the
/// window's messages going. One at a time. Destroys its window last, unless the process keeps it.
class GameHost {
public:
    struct Options {
        int clientWidth = 320, clientHeight = 200;
        bool mainWindow = true;
        bool presentCallback = true;
        bool disableGpuCompositing = true;
        bool startLibrary = true;
    };
    GameHost() : GameHost(Options{}) {}
    explicit GameHost(Options options);
    ~GameHost();

    /// From now on one window and one start of the library serve all hosts of this process, one after the other: the
    /// engine starts once in a process, and the library stays with the window that it found.
    static void shareWindow();

    /// A view on `address` with a copy of the recorder, which this object keeps, as its delegate; not shown yet.
    std::shared_ptr<ZEMO::UI::IZEMOWebView> makeView(const std::string& address, NavigationRecorder& recorder);

    /// Dispatches messages until `done` holds. False after the time-out, with a line that names `what`.
    bool waitFor(const char* what, const std::function<bool()>& done, std::chrono::milliseconds timeout = kPatience);
    /// Lets `span` pass with messages dispatched: only to show that something does not happen.
    void pass(std::chrono::milliseconds span);
    void resizeClient(int width, int height);
    /// As games do for another display mode: destroys the main window and makes a new one.
    void remakeWindow(int clientWidth, int clientHeight);

    HWND window = nullptr;
    FrameRecorder frames;
    /// Messages that reached the game's own window procedure.
    std::vector<GameMessage> gameMessages;
    /// Messages for the game's window that its loop fetched: what was posted and what the user did, also when the
    /// library then keeps it from the game's procedure.
    std::vector<GameMessage> fetchedMessages;

private:
    void makeWindow(const Options& options);
    void dispatchWaiting();
    static LRESULT CALLBACK windowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    std::vector<std::shared_ptr<ZEMO::UI::ZEMOWebViewDelegate>> delegates;
};

/// A page of solid colour.
std::string solidPage(const std::string& cssColor);

}  // namespace ZEMO::Test
