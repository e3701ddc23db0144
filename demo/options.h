#pragma once

#include "game_window.h"
#include "page_source.h"

#include <filesystem>
#include <string>
#include <vector>

namespace demo {

/// Where the page goes.
enum class Mode {
    callback,  ///< the game draws it, from the present callback
    window,    ///< the library draws it, in a window of its own
    hook,      ///< the graphics hook module draws it into the game's frame
};

/// How the process ends.
enum class QuitWay {
    close,        ///< drop the views, return from main: what a game does
    leave,        ///< return from main with the views open
    exitProcess,  ///< ExitProcess with the views open
    freeLibrary,  ///< FreeLibrary with the views open, then return from main
};

struct Options {
    PageSource page;
    PixelSize size{1280, 720};
    Mode mode = Mode::callback;
    int views = 1;
    double seconds = 0;  ///< 0: until the window is closed
    bool hasCloseButton = false;
    bool hasGpuCompositing = false;
    bool hasFigures = false;
    bool isSelfTest = false;
    bool isHelp = false;
    QuitWay quitWay = QuitWay::close;
    std::filesystem::path out = "out";
    std::filesystem::path screenshot;  ///< empty: page.png in `out`
    std::filesystem::path json;        ///< empty: figures.json in `out`
};

/// The program's arguments as UTF-8, without its name.
std::vector<std::string> commandLine();

/// Throws std::invalid_argument with a sentence for the user.
Options parseOptions(const std::vector<std::string>& arguments);

/// What --help prints.
std::string helpText();

}  // namespace demo
