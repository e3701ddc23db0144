#pragma once

#include "options.h"
#include "page_panel.h"
#include "page_surface.h"

#include <memory>

namespace demo {

/// Starts the library in the order it wants. Game thread; the game's window must be visible.
void startUiLibrary(const Options& options, const std::shared_ptr<PageSurface>& surface,
                    const std::shared_ptr<PageEventQueue>& events);

}  // namespace demo
