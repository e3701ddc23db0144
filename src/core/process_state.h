#pragma once

#include <cstdint>

#include "core/geometry.h"

// Process-wide switches and callback slots behind the exports. Any thread; each value stands alone, a new one is seen
// at the next use.
namespace ZEMO::UI {

/// event: 1 selection changed (a, b: its range), 2 composition cancelled, 3 password field focused (a: 1) or left (0).
using ImeEventCallback = void (*)(int event, int browserId, int a, int b);
/// Rectangles in screen pixels, one a character; null with a count of 0.
using ImeCompositionBoundsCallback = void (*)(int browserId, const void* rects, uint32_t count);

/// Set once the engine has reported ready; only then does unloading stop it.
bool isEngineStarted();
void setEngineStarted(bool started);

/// Decides one command-line switch at the engine's start; later changes only change this value.
bool isUIEngineOsrRenderEnabled();
void setUIEngineOsrRenderEnabledFlag(bool enabled);

/// The game runs the text services itself, and this library's input method path stays quiet.
bool isExternalTsfImeUsed();
void setExternalTsfImeUsed(bool used);

/// The page's focus is in a password field.
bool isPasswordFieldFocused();
void setPasswordFieldFocused(bool focused);

/// Null for none, and once the process ends.
ImeEventCallback getImeEventCallback();
void setImeEventCallback(ImeEventCallback callback);
ImeCompositionBoundsCallback getImeCompositionBoundsCallback();
void setImeCompositionBoundsCallback(ImeCompositionBoundsCallback callback);

}  // namespace ZEMO::UI
