// A small game that shows web pages. Where to look:
//   ui_library   starting the library, in the order it wants
//   page_panel   a view and its delegates
//   page_surface frames on their way from the engine's thread to the game's
//   page_quad    the page as a texture
//   game         the frame loop that ties it together
#include "game.h"
#include "options.h"
#include "self_test.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

int play(demo::Game& game, const demo::Options& options) {
    if (options.isSelfTest) return demo::runSelfTest(game, options) ? 0 : 1;
    game.openPage(options.page);
    if (options.views > 1) game.openPage({demo::PageSource::Kind::BuiltIn, "dialog"});
    game.play(options.seconds);
    game.savePictures();
    game.reportFigures();
    return 0;
}

int run(const demo::Options& options) {
    // On the heap only because some ways of leaving skip its destructor on purpose. A game that ends like this one does
    // by default drops its views first and then returns from main; no call shuts the library down.
    auto game = std::make_unique<demo::Game>(options);
    const int exitCode = play(*game, options);
    std::fflush(stdout);
    switch (options.quitWay) {
        case demo::QuitWay::Close:
            break;
        case demo::QuitWay::Leave:
            static_cast<void>(game.release());
            break;
        case demo::QuitWay::ExitProcess:
            ExitProcess(static_cast<UINT>(exitCode));
        case demo::QuitWay::FreeLibrary:
            static_cast<void>(game.release());
            FreeLibrary(GetModuleHandleW(L"ZEMOUIFramework.dll"));
            break;
    }
    return exitCode;
}

}  // namespace

int main() {
    SetConsoleOutputCP(CP_UTF8);
    try {
        const demo::Options options = demo::parseOptions(demo::commandLine());
        if (options.isHelp) {
            std::printf("%s", demo::helpText().c_str());
            return 0;
        }
        return run(options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zemo_demo: %s\n", error.what());
        return 2;
    }
}
