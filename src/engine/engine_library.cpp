#include "engine/engine_library.h"

#include "cef/engine_library.h"
#include "core/log.h"
#include "core/wine/wine.h"

namespace ZEMO::UI {

bool loadEngineLibrary(const std::wstring& basePath) {
    std::string reason;
    if (!cefLoadLibrary(basePath.c_str(), &reason)) {
        Core::logDebugA("cef could not be loaded: %s\n", reason.c_str());
        return false;
    }
    Core::Wine::guardEngine(static_cast<HMODULE>(cefLibraryModule()));
    std::string found;
    std::string expected;
    if (!cefVersionMatches(&found, &expected)) {
        // Another version may lay its structures out otherwise: what follows is at the game's own risk.
        Core::logDebugA("cef version differs: found %s, built for %s\n", found.c_str(), expected.c_str());
    }
    return true;
}

void skipEngineDetach() { Core::Wine::skipEngineDetach(static_cast<HMODULE>(cefLibraryModule())); }

}  // namespace ZEMO::UI
