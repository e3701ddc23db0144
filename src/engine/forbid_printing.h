#pragma once

namespace ZEMO::UI {

/// Has a page's print() do nothing. The engine would open the system's box for it, without an owner and modal to the
/// engine's own thread: every view of the game would stand still behind it. Engine thread, once the engine runs.
void forbidPrinting();

}  // namespace ZEMO::UI
