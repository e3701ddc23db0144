#pragma once

namespace ZEMO::GraphicsHook {

/// Leads the game's calls that present a DXGI swap chain here, once the game has loaded Direct3D 11 or 12: one of them
/// a call, so that a game of the first has shown itself before the other costs a device. Cheap to repeat.
void hookDxgi();

}  // namespace ZEMO::GraphicsHook
