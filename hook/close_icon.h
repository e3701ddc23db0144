#pragma once

#include "plane.h"

namespace ZEMO::GraphicsHook {

/// The close button's picture, from the resources beside the library: straight alpha, empty when it is missing. Read at
/// the first call. Call with the page's lock held.
Plane& closeIcon();

}  // namespace ZEMO::GraphicsHook
