#include "engine_library.h"
#include "engine_module.h"
#include "include/cef_version.h"

// The distribution's wrapper calls libcef.dll by delay loading, which finds the module that is loaded already.

namespace cef_binding {

bool resolveFunctions(HMODULE, std::string&) { return true; }

int versionNumber(int entry) { return cef_version_info(entry); }

}  // namespace cef_binding

int cefLiveClientObjects() { return 0; }
int cefLiveEngineObjects() { return 0; }
