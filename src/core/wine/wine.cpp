#include "core/wine/wine.h"

#include "core/log.h"
#include "core/wine/handle_moves.h"
#include "core/wine/loader_order.h"

namespace ZEMO::Core::Wine {

// Wine's own programs tell it by this export; no Windows has it.
bool isRunningUnderWine() {
    static const bool exported = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return exported;
}

void guardEngine(HMODULE engine) {
    if (!isRunningUnderWine()) return;
    // The engine was loaded later, and would hear of the process's end before this library could keep it from that.
    if (!detachOwnModuleFirst()) logDebugA("the order of the modules could not be changed\n");
    if (!divertHandleMoves(engine)) logDebugA("the engine's handle moves could not be diverted\n");
}

void skipEngineDetach(HMODULE engine) {
    if (isRunningUnderWine()) skipDetach(engine);
}

}  // namespace ZEMO::Core::Wine
