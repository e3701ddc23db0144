#pragma once

#include "game.h"
#include "options.h"
#include "pictures.h"

#include <functional>
#include <stdexcept>
#include <string>

namespace demo {

constexpr double kPatience = 20;  // seconds; a first paint takes one or two, more on a busy machine

/// What was missing.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// As printf.
std::string text(const char* pattern, ...);
std::string text(const Colour& colour);
bool isClose(const Colour& a, const Colour& b, int tolerance);

/// A part of pages/self_test.html: the place that is looked at, in logical pixels of the window, and its colour.
struct Block {
    const char* name;
    double x, y;
    Colour colour;
};

/// What the self test's parts share: the game, what its pages said, and ways to wait for it. A wait plays the game on.
class TestStage {
public:
    TestStage(Game& shown, const Options& chosen);
    ~TestStage();
    TestStage(const TestStage&) = delete;
    TestStage& operator=(const TestStage&) = delete;

    /// Prints the step and how it ended.
    void step(const char* name, const std::function<void()>& body);
    /// Fails with what `missing` says when `isDone` takes too long.
    void await(const std::function<bool()>& isDone, const std::function<std::string()>& missing);
    /// Fails when no further event of that kind has come since there were `before`.
    void awaitMore(PageEvent::Kind kind, int before, const char* missing);

    int count(PageEvent::Kind kind) const { return counts[static_cast<std::size_t>(kind)]; }
    /// The newest command of a page that begins with `start`; empty when there is none.
    std::string command(const std::string& start) const;
    void forgetCommands() { commands.clear(); }
    /// The newest result of a script, as JSON.
    const std::string& answer() const { return newestAnswer; }

    int px(double logical) const;
    Colour onPage(double x, double y) const { return colourOf(game.pageImage(), px(x), px(y)); }
    void awaitPage(const char* what, double x, double y, Colour expected, int tolerance = 0);
    void awaitPage(const Block& block);
    bool isCallback() const { return options.mode == Mode::Callback; }
    /// Page and background in a window of the page's own or the game's; what the game draws is not seen there.
    bool isDrawnByLibrary() const { return options.mode == Mode::Window || options.mode == Mode::Local; }
    /// The window that shows the page in front; null when a view's own window isn't there.
    HWND pageWindow() const;

    Game& game;
    const Options& options;
    const double scale;

private:
    int counts[PageEvent::kKinds] = {};
    std::vector<std::string> commands;
    std::string newestAnswer;
};

}  // namespace demo
