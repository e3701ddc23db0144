#include "core/wine/pipe_writes.h"
#include "core/wine/wine.h"

// What the engine's child processes have of this as well.
namespace ZEMO::Core::Wine {

// Wine's own programs tell it by this export; no Windows has it.
bool isRunningUnderWine() {
    static const bool exported = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return exported;
}

bool guardChildsEngine(HMODULE engine) { return !isRunningUnderWine() || divertPipeWrites(engine); }

}  // namespace ZEMO::Core::Wine
