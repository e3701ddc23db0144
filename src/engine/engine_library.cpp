#include "engine/engine_library.h"

#include "cef/engine_library.h"
#include "core/loader_order.h"
#include "core/log.h"

namespace ZEMO::UI {

bool loadEngineLibrary(const std::wstring& basePath) {
    std::string reason;
    if (!cefLoadLibrary(basePath.c_str(), &reason)) {
        Core::logDebugA("cef could not be loaded: %s\n", reason.c_str());
        return false;
    }
    // The engine was loaded later, and would hear of the process's end before this library could keep it from that.
    if (!Core::detachOwnModuleFirst()) Core::logDebugA("the order of the modules could not be changed\n");
    std::string found;
    std::string expected;
    if (!cefVersionMatches(&found, &expected)) {
        // Another version may lay its structures out otherwise: what follows is at the game's own risk.
        Core::logDebugA("cef version differs: found %s, built for %s\n", found.c_str(), expected.c_str());
    }
    return true;
}

void skipEngineDetach() { Core::skipDetach(static_cast<HMODULE>(cefLibraryModule())); }

}  // namespace ZEMO::UI
