#include "api/library_start.h"

#include <windows.h>

#include "core/process_state.h"
#include "core/resource_names.h"
#include "engine/cef_module.h"
#include "engine/client_scheme_handler.h"
#include "layers/layer_manager.h"
#include "layers/main_window.h"
#include "layers/xinput_switch.h"

namespace ZEMO::UI {
namespace {

void registerCustomSchemeFactory() {
    CefRegisterSchemeHandlerFactory(Core::kCustomSchemeName, Core::kCustomSchemeDomain, new ClientSchemeHandlerFactory);
}

}  // namespace

int startLibrary(bool withCustomScheme) {
    const int result = CefModule::start(GetModuleHandleW(nullptr));
    setEngineStarted(true);
    if (result >= 0) return result;
    if (withCustomScheme) registerCustomSchemeFactory();
    auto& manager = ZEMOMultiLayerManager::instance();
    manager.setMainWindow(findMainWindow());
    manager.subclassMainWindow();
    systemXInputEnable();  // loaded here, where the game waits anyway; at the first view it would cost several frames
    return result;
}

void loadGraphicsHook() {
    ZEMOMultiLayerManager::instance().setGraphicsHookModule(LoadLibraryExW(
        L"ZEMOGraphicsHook.dll", nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS | LOAD_LIBRARY_SEARCH_USER_DIRS));
}

}  // namespace ZEMO::UI
