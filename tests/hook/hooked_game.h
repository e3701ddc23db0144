#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "hook/d3d11_game.h"
#include "hook/d3d12_game.h"
#include "hook/gl_game.h"
#include "hook/handed_frames.h"
#include "support/http_server.h"

namespace ZEMO::Test {

/// A game of one graphics API with the reference module, and pages in its frames, which are read as they go to the
/// screen.
template <class Game>
class HookedGame : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(module) << "the reference module is not there";
        ASSERT_TRUE(scene->isThere());
        scene->watchFrames(module);
    }
    std::shared_ptr<ZEMO::UI::IZEMOWebView> show(const std::string& html, bool closeButton = false) {
        server.serveHtml("/", html);
        auto view = game.makeView(server.url("/"), events);
        view->setCloseButtonEnabled(closeButton);
        view->show();
        return view;
    }
    /// Frames are presented until `done` holds.
    bool playUntil(const char* what, const std::function<bool()>& done) {
        return game.waitFor(what, [&] {
            scene->present();
            return done();
        });
    }
    bool cornerIs(uint32_t colour) const { return frame.at(5, 5) == colour; }

    GameHost game{hookGame()};
    HMODULE module = useHookModule(L"hook");
    std::unique_ptr<Game> scene = std::make_unique<Game>(game.window);
    const Presented& frame = Game::presented();
    HttpServer server;
    NavigationRecorder events;
};

}  // namespace ZEMO::Test
