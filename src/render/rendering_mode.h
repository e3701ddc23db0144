#pragma once

#include "zemo/rendering_mode.h"

// The graphics API of the game, one value for the process. It starts unknown and is found once, by the graphics hook
// or, without one, as OpenGL.
namespace ZEMO::UI {

/// Any thread.
RenderingMode getRenderingMode();

/// Stores the value and logs it; a value outside the enumeration is stored without a line.
void setRenderingMode(RenderingMode mode);

}  // namespace ZEMO::UI
