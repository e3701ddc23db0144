#pragma once

#include <zemo/graphics_hook.h>

namespace ZEMO::GraphicsHook {

/// What the library feeds, for every API: where nothing can be drawn it takes the calls all the same.
UI::IRenderHookRenderer* pageRenderer();

}  // namespace ZEMO::GraphicsHook
