#pragma once

namespace ZEMO::GraphicsHook {

/// Leads the game's calls that end an OpenGL frame here. Cheap to repeat: reaches modules that came later.
void hookOpenGL();

/// The painter's context goes, at the latest after the frame that is being drawn. Does not wait. Any thread.
void releaseGlPainter();

}  // namespace ZEMO::GraphicsHook
