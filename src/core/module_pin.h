#pragma once

namespace ZEMO::Core {

/// Keeps this module mapped until the process ends, whatever FreeLibrary is called. Needed before a thread of ours runs
/// that nobody can wait for: an unload would take the code away from under it. Any thread, any number of times.
void pinOwnModule();

}  // namespace ZEMO::Core
