#pragma once

#include <string>
#include <vector>

#include "engine/game_host.h"
#include "support/http_server.h"

namespace ZEMO::Test {

/// A page with text fields in a shown view, whose window has the keyboard. The page says what happens to its field
/// "a", one line after the other, to the test's server.
class ImePage {
public:
    /// 0: a layer on the game's window, 1: a window of the view's own.
    explicit ImePage(GameHost::Options options = {}, int displayMode = 0);
    ~ImePage();

    /// The page is there, its first field has the focus, and the keys go to the view's window.
    bool open();
    /// In the page, or in its frame "f".
    void run(const std::string& script);
    /// What the page has said since the last call of forget.
    std::vector<std::string> said() const;
    void forget() { forgotten = all().size(); }
    bool waitUntilSaid(const std::string& line);
    /// Runs `work` on the thread of the view's window and waits for its end.
    bool onWindowThread(const std::function<void()>& work);

    HttpServer server;
    GameHost game;
    NavigationRecorder events;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
    HWND window = nullptr;  ///< the one that takes the keys

private:
    std::vector<std::string> all() const;
    int displayMode;
    size_t forgotten = 0;
};

}  // namespace ZEMO::Test
