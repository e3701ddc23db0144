#pragma once

namespace ZEMO::GraphicsHook {

/// Leads the game's calls that present a DXGI swap chain here, once the game has loaded Direct3D 11. Cheap to repeat.
void hookDxgi();

}  // namespace ZEMO::GraphicsHook
