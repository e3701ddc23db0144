#pragma once

#include <windows.h>

namespace ZEMO::UI {

/// The MK_ flags of a mouse pointer's state, with Ctrl and Shift as they are now.
WPARAM pointerMouseKeys(POINTER_FLAGS flags);

}  // namespace ZEMO::UI
