#pragma once

#include <string>

namespace ZEMO::UI {

/// Loads the engine from `basePath`, for good, and logs what stands in the way: a missing file or function, or a
/// version other than the one that the library was built for. False when there is no engine to start. Engine thread.
bool loadEngineLibrary(const std::wstring& basePath);

}  // namespace ZEMO::UI
