#pragma once

#include "game_window.h"
#include "page_source.h"

#include <filesystem>
#include <string>
#include <vector>

namespace demo {

/// Where the page goes.
enum class Mode {
    Callback,  ///< the game draws it, from the present callback
    Window,    ///< the library draws it, in a window of its own
    Local,     ///< the library draws it, in the game's window
    Hook,      ///< the graphics hook module draws it into the game's frame
};

/// How the process ends.
enum class QuitWay {
    Close,        ///< drop the views, return from main: what a game does
    Leave,        ///< return from main with the views open
    ExitProcess,  ///< ExitProcess with the views open
    FreeLibrary,  ///< FreeLibrary with the views open, then return from main
};

struct Options {
    PageSource page;
    PixelSize size{1280, 720};
    Mode mode = Mode::Callback;
    int views = 1;
    double seconds = 0;  ///< 0: until the window is closed
    bool hasCloseButton = false;
    bool hasPadKeys = false;
    bool hasGpuCompositing = false;
    bool hasFigures = false;
    bool isSelfTest = false;
    bool isDirect3D = false;
    bool isHelp = false;
    QuitWay quitWay = QuitWay::Close;
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
