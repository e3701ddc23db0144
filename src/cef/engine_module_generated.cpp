#include "binding_functions.h"
#include "binding_runtime.h"
#include "engine_library.h"
#include "engine_module.h"

namespace cef_binding {

bool resolveFunctions(HMODULE module, std::string& missing) {
    for (size_t i = 0; i < kFunctionSlotCount; ++i) {
        if (!GetProcAddress(module, kFunctionSlots[i].name)) {
            missing = kFunctionSlots[i].name;
            return false;
        }
    }
    // Only a complete engine is used at all.
    for (size_t i = 0; i < kFunctionSlotCount; ++i) {
        *kFunctionSlots[i].pointer = reinterpret_cast<void*>(GetProcAddress(module, kFunctionSlots[i].name));
    }
    return true;
}

int versionNumber(int entry) { return engine.cef_version_info ? engine.cef_version_info(entry) : 0; }

}  // namespace cef_binding

int cefLiveClientObjects() { return cef_binding::liveClientObjects; }
int cefLiveEngineObjects() { return cef_binding::liveEngineObjects; }
