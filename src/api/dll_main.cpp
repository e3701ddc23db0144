#include <windows.h>

#include "core/log.h"
#include "core/process_state.h"
#include "engine/cef_module.h"

// Runs under the loader's lock: it starts nothing, loads nothing, and waits for nothing but the engine thread, and that
// only while the process goes on. See cef_module.cpp for what can be stopped when.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processIsEnding) {
    using namespace ZEMO;
    if (reason == DLL_PROCESS_ATTACH) {
        Core::logDebugA("UIFramework DLL_PROCESS_ATTACH");
    } else if (reason == DLL_PROCESS_DETACH) {
        if (UI::isEngineStarted()) processIsEnding ? UI::CefModule::abandon() : UI::CefModule::stop();
        Core::logDebugA("UIFramework DLL_PROCESS_DETACH");
    }
    return TRUE;
}
