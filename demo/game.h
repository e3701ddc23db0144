#pragma once

#include "direct3d_screen.h"
#include "figures.h"
#include "file_choice.h"
#include "game_pad.h"
#include "game_window.h"
#include "hud.h"
#include "options.h"
#include "page_panel.h"
#include "page_quad.h"
#include "page_surface.h"
#include "pictures.h"
#include "scene/scene.h"

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace demo {

/// The game: a window, a scene, a frame loop, and pages in front of it.
class Game {
public:
    /// Opens the window and starts the library.
    explicit Game(const Options& chosen);
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    /// Shows a page on top of those that are there.
    PagePanel& openPage(const PageSource& source, bool hasCloseButton = false);
    /// Ends the page on top; the one below it comes back.
    void closeTopPage();
    /// Takes all pages off the screen, or brings them back, without ending them.
    void hidePages();
    void showPages();
    PagePanel* topPage() { return pages.empty() ? nullptr : pages.back().get(); }

    /// Plays until the user leaves or `seconds` have passed (0: no limit).
    void play(double seconds);
    /// Plays until `isDone` says so; false when that takes longer than `seconds`.
    bool playUntil(const std::function<bool()>& isDone, double seconds);

    /// page.png (as delivered), frame.png (as drawn) and display.png (as the screen shows it).
    void savePictures();
    void reportFigures();

    GameWindow& gameWindow() { return window; }
    /// The page as the game has it, and what the newest update of it was.
    const PageImage& pageImage() const { return image; }
    const PageSurface::Update& pageUpdate() const { return update; }
    int playersCredits() const { return credits; }
    FileChoice& emblemChoice() { return emblem; }
    CallbackFigures callbackFigures() const { return surface->figures(); }

    /// Hears each event after the game has dealt with it.
    std::function<void(const PageEvent&)> onPageEvent;
    /// Called in each frame when all but the page is drawn, and again when the page is drawn too.
    std::function<void()> onSceneDrawn;
    std::function<void()> onFrameDrawn;

private:
    void playFrame();
    void drawFrame();
    void presentFrame(PixelSize size);
    /// The library shows a page in the whole of the game's window: two pictures there would fight each other.
    bool isWindowLent() const;
    void handlePageEvents();
    void handlePageEvent(const PageEvent& event, bool isTop);
    void handleCommand(const std::string& command);
    void sell(PagePanel& buyer, const std::string& order);
    void pollPad();
    bool hasOwnPages() const { return options.page.kind == PageSource::Kind::BuiltIn; }
    void tellPage();
    void updateHud();
    std::wstring keyHints(bool isPageShown) const;

    const Options options;
    GameWindow window;
    std::unique_ptr<Direct3DScreen> screen;  // of a Direct3D 11 game
    Scene scene;
    Hud hud;
    Hud::Content hudText;
    std::wstring notice;  // what the player did last on a page
    PageQuad quad;
    PageImage image;
    PageSurface::Update update;
    const std::shared_ptr<PageSurface> surface;
    const std::shared_ptr<PageEventQueue> events;
    GamePad pad;
    FileChoice emblem;
    std::vector<std::unique_ptr<PagePanel>> pages;  // the last one is in front
    int nextPageNumber = 1;
    int credits = 1250;
    bool leaving = false;

    const Clock::time_point startedAt = Clock::now();
    Clock::time_point nextFrameAt = startedAt;
    Clock::time_point hudUpdatedAt{};
    GameFigures figures;
    std::uint64_t framesAtHudUpdate = 0;
    std::uint64_t pageFramesAtHudUpdate = 0;
};

}  // namespace demo
