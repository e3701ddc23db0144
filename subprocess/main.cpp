// The engine's child process: page scripts, graphics, network.  It stands in a directory below the one that holds
// libcef.dll, where the system would not find it, so it loads the engine by the absolute path that follows from its
// own.

#include <windows.h>

#include <algorithm>
#include <string>

#include "cef/engine_library.h"
#include "child_app.h"
#include "core/wine/wine.h"
#include "include/cef_app.h"
#include "parent_watch.h"

namespace {

/// Exit code of a child that found no engine; the engine itself uses small numbers.
constexpr int kNoEngineExitCode = 0xE0;

/// The directory above this program's own; empty when the system does not tell.
std::wstring engineDirectory() {
    std::wstring path(MAX_PATH, 0);
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(path.size() * 2);
    }
    for (int i = 0; i < 2; ++i) path.resize((std::min)(path.find_last_of(L"\\/"), path.size()));
    return path;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int) {
    ZEMO::Subprocess::endWithParent();
    std::string reason;
    const std::wstring directory = engineDirectory();
    if (directory.empty() || !cefLoadLibrary(directory.c_str(), &reason)) {
        OutputDebugStringA(("cef.subprocess: " + reason + "\n").c_str());
        return kNoEngineExitCode;
    }
    if (!ZEMO::Core::Wine::guardChildsEngine(static_cast<HMODULE>(cefLibraryModule()))) {
        OutputDebugStringA("cef.subprocess: the engine's long messages could not be diverted\n");
    }
    const int exitCode = CefExecuteProcess(CefMainArgs(instance), ZEMO::UI::createChildApp(), nullptr);
    // Not by returning: the modules would hear of the end when the other threads are gone, some with a lock held, and a
    // process that waits for such a lock stays behind for ever. Nothing is left to do.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
    return exitCode;
}
