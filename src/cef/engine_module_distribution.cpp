#include <windows.h>

#include <delayimp.h>

#include "engine_library.h"
#include "engine_module.h"
#include "include/cef_version.h"

// The distribution's wrapper calls libcef.dll by delayed imports. Here they find the module that was loaded by its
// absolute path, and no other: until it is there an engine's function does nothing and answers 0, as in a build with
// the generated binding. The import stays as it is then, so that a later call finds the engine.
namespace {

INT_PTR WINAPI doNothing() { return 0; }

// GNU ld lays the places of delayed addresses into a read-only section.
void makeWritable([[maybe_unused]] FARPROC* place) {
#if !defined(_MSC_VER)
    DWORD before = 0;
    VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &before);
#endif
}

FARPROC WINAPI findEngine(unsigned step, DelayLoadInfo* import) {
    if (lstrcmpiA(import->szDll, "libcef.dll") != 0) return nullptr;
    if (step == dliStartProcessing && !cefLibraryModule()) return reinterpret_cast<FARPROC>(&doNothing);
    if (step == dliStartProcessing) makeWritable(import->ppfn);
    if (step == dliNotePreLoadLibrary) return reinterpret_cast<FARPROC>(cefLibraryModule());
    return nullptr;
}

}  // namespace

#if defined(_MSC_VER)
const PfnDliHook __pfnDliNotifyHook2 = &findEngine;
#else
PfnDliHook __pfnDliNotifyHook2 = &findEngine;
#endif

namespace cef_binding {

bool resolveFunctions(HMODULE, std::string&) { return true; }

int versionNumber(int entry) { return cef_version_info(entry); }

}  // namespace cef_binding

int cefLiveClientObjects() { return 0; }
int cefLiveEngineObjects() { return 0; }
