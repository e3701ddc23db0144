#include "core/process_state.h"

#include <atomic>

#include "core/game_callback.h"

namespace ZEMO::UI {

namespace {
std::atomic<bool> engineStarted = false;
std::atomic<bool> engineOsrRenderEnabled = false;
std::atomic<bool> useExternalTsfIme = false;
std::atomic<bool> passwordFieldFocused = false;
std::atomic<ImeEventCallback> imeEventCallback = nullptr;
std::atomic<ImeCompositionBoundsCallback> imeCompositionBoundsCallback = nullptr;
}  // namespace

bool isEngineStarted() { return engineStarted; }
void setEngineStarted(bool started) { engineStarted = started; }

bool isUIEngineOsrRenderEnabled() { return engineOsrRenderEnabled; }
void setUIEngineOsrRenderEnabledFlag(bool enabled) { engineOsrRenderEnabled = enabled; }

bool isExternalTsfImeUsed() { return useExternalTsfIme; }
void setExternalTsfImeUsed(bool used) { useExternalTsfIme = used; }

bool isPasswordFieldFocused() { return passwordFieldFocused; }
void setPasswordFieldFocused(bool focused) { passwordFieldFocused = focused; }

ImeEventCallback getImeEventCallback() { return Core::unlessProcessEnds(imeEventCallback.load()); }
void setImeEventCallback(ImeEventCallback callback) { imeEventCallback = callback; }
ImeCompositionBoundsCallback getImeCompositionBoundsCallback() {
    return Core::unlessProcessEnds(imeCompositionBoundsCallback.load());
}
void setImeCompositionBoundsCallback(ImeCompositionBoundsCallback callback) { imeCompositionBoundsCallback = callback; }

}  // namespace ZEMO::UI
