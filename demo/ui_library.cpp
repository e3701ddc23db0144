#include "ui_library.h"

#include <windows.h>

#include <zemo/ui.h>

#include <filesystem>

namespace demo {

namespace {

// The hook module lies beside the library, where a program in another folder does not search, or, where the project is
// built, in a folder of its own.
void searchHookBesideLibrary() {
    wchar_t library[1024];
    GetModuleFileNameW(GetModuleHandleW(L"ZEMOUIFramework.dll"), library, 1024);
    const std::filesystem::path folder = std::filesystem::path(library).parent_path();
    AddDllDirectory(folder.c_str());
    AddDllDirectory((folder / L"hook").c_str());
}

}  // namespace

void startUiLibrary(const Options& options, const std::shared_ptr<PageSurface>& surface,
                    const std::shared_ptr<PageEventQueue>& events) {
    // 1. Before the engine starts: how it composites pages. In software it needs no GPU process, and the game keeps the
    //    whole GPU for itself.
    ZEMO::UI::setUIEngineOsrRenderEnabled(options.hasGpuCompositing ? 0 : 1);

    // 2. The engine. Blocks until it is ready, finds the game's window and takes that window's messages first from now
    //    on: a page in front gets the input before the game does.
    ZEMO::UI::InitUILibrary();

    // 3. Whether the page in front is played with the controller. Like the frames below, a view takes this along when
    //    it is first shown.
    ZEMO::UI::setUIGameControllerScriptUseCallback(
        [events](int isUsed) { events->push({PageEvent::Kind::PadUse, 0, isUsed, {}}); });

    // 4. Where frames go. A view reads this when it is first shown, so it comes before the first view. With the hook
    //    the page is drawn into the game's frame behind the game's back; with the callback the game draws it.
    if (options.mode == Mode::Hook) {
        searchHookBesideLibrary();
        ZEMO::UI::InitUIGraphicsHook();
        return;
    }
    // With neither of both the library draws into the game's window by itself.
    if (options.mode == Mode::Local) return;
    // The library keeps the callback for as long as it is loaded: it owns the surface together with the game.
    ZEMO::UI::setUIOsrFramePresentCallback(
        [surface](const void* pixels, int width, int height, int dirtyX, int dirtyY, int dirtyWidth, int dirtyHeight) {
            surface->present(pixels, width, height, {dirtyX, dirtyY, dirtyWidth, dirtyHeight});
        });
}

}  // namespace demo
