#pragma once

namespace ZEMO::UI {

/// The shared steps of both start-ups: the engine, the main window, its subclass. `withCustomScheme` registers the
/// scheme's factory in between. Returns the engine's start result; a non-negative one ends the start there.
int startLibrary(bool withCustomScheme);

/// Loads the graphics hook module into the layer manager; null there when it is missing.
void loadGraphicsHook();

}  // namespace ZEMO::UI
