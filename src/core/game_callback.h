#pragma once

#include <utility>

#include "core/process_end.h"

namespace ZEMO::Core {

/// The gate in front of everything that the game gave to be called: what a callback uses may be gone once the process
/// ends, so none is handed out from then on. A callback, function pointer or locked delegate goes in, itself or an
/// empty one comes out. Any thread.
template <class T>
T unlessProcessEnds(T callback) {
    return isProcessEnding() ? T{} : std::move(callback);
}

}  // namespace ZEMO::Core
