#pragma once

namespace ZEMO::UI {

/// The graphics API of the game. Unknown until the first frame tells.
enum class RenderingMode : int { D3D11 = 0, D3D12 = 1, OpenGL = 2, Vulkan = 3, Unknown = 4 };

}  // namespace ZEMO::UI
