#pragma once

#include "page_source.h"

#include <zemo/ui.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace demo {

/// Something that happened to a page, on its way to the game thread.
struct PageEvent {
    enum class Kind {
        Shown,
        Closed,
        Started,
        Completed,
        Failed,
        CloseRequested,
        Command,
        PadUse,
        Called,
        Answer,
        Chosen
    };
    static constexpr int kKinds = static_cast<int>(Kind::Chosen) + 1;

    Kind kind = Kind::Shown;
    int page = 0;      ///< the panel's number
    int value = 0;     ///< for Failed the error, for PadUse 1 or 0
    std::string text;  ///< for Command: what stands behind "game://"; for Called the object's name, for Answer JSON,
                       ///< for Chosen the file's name or nothing
};

/// Delegates are called on the engine's thread and may not keep it waiting, so they only leave a note here; the game
/// reads the notes once per frame.
class PageEventQueue {
public:
    void push(PageEvent event);
    std::vector<PageEvent> takeAll();

private:
    std::mutex mutex;
    std::vector<PageEvent> events;
};

/// One page in front of the game: a view, with the delegates that listen to it. Game thread only. Destroying the panel
/// drops the view's last pointer, and that ends its page.
class PagePanel {
public:
    struct Settings {
        int number = 0;
        bool isOwnWindow = false;
        bool hasCloseButton = false;
        float width = 0;  ///< logical pixels; of the view's own window
        float height = 0;
    };

    PagePanel(const Settings& chosen, std::shared_ptr<PageEventQueue> queue);
    ~PagePanel();
    PagePanel(const PagePanel&) = delete;
    PagePanel& operator=(const PagePanel&) = delete;

    int number() const { return settings.number; }
    bool isShown() const { return shown; }
    /// The first load has ended: scripts run, another page may be loaded.
    bool isLoaded() const { return loaded; }
    void noteLoaded() { loaded = true; }
    /// The page is played with the controller.
    bool usesPad() const { return padUsed; }
    void notePadUse(bool isUsed) { padUsed = isUsed; }

    void load(const PageSource& source);
    void show();
    void close();
    /// Runs `script` in the page; the answer doesn't matter.
    void run(const std::string& script);
    /// Runs `script` in the page; its result comes as an Answer event. A script that fails gives none.
    void ask(const std::string& script);
    /// Gives the page's scripts an object of that name: each use of it comes as a Called event, the first one when it
    /// is there. Once for each document.
    void bind(const std::string& name);

private:
    class Listener;

    const Settings settings;
    const std::shared_ptr<PageEventQueue> events;
    // The library holds its delegates weakly: this pointer is what keeps the listener alive.
    std::shared_ptr<Listener> listener;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
    bool shown = false;
    bool loaded = false;
    bool padUsed = false;
};

}  // namespace demo
