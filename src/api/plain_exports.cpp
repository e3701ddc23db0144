#include "api/library_start.h"
#include "api/test_view.h"
#include "core/process_state.h"
#include "core/user_locale.h"
#include "layers/layer_manager.h"
#include "zemo/ui.h"

using namespace ZEMO::UI;

int InitUILibraryTEST() {
    const int result = startLibrary(false);
    if (result >= 0) return result;
    loadGraphicsHook();
    ZEMO::Core::setUserLocaleInUtf8();
    return result;
}

void createWebViewTEST() {
    // A public documentation page; "https" because nothing else proves the whole way through the engine.
    static constexpr char kTestAddress[] = "https://www.w3.org/TR/webarch/";
    std::shared_ptr<IZEMOWebView> view = createWebViewDefault();
    keepTestView(view);
    view->loadContent(std::make_shared<AddressContent>(kTestAddress));
    view->show();
}

void registerImeCompositionBoundsCallback(ZEMOImeCompositionBoundsCallback callback) {
    setImeCompositionBoundsCallback(callback);
}

void registerImeEventCallback(ZEMOImeEventCallback callback) { setImeEventCallback(callback); }

void setImeProcess(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount, void* reserved) {
    ZEMOMultiLayerManager::instance().setImeProcess(kind, text, repeatCount, reserved);
}

void setUseExternalTsfIme(int enabled) { setExternalTsfImeUsed(enabled != 0); }
