#pragma once

#include <zemo/graphics_hook.h>

namespace ZEMO::GraphicsHook {

/// What the library feeds, for every API that is drawn.
UI::IRenderHookRenderer* pageRenderer();

/// Takes every call and draws nothing, for an API that has no painter.
UI::IRenderHookRenderer* silentRenderer();

}  // namespace ZEMO::GraphicsHook
