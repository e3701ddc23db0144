#pragma once

#include <string>

namespace ZEMO::UI {

/// Loads the engine from `basePath`, for good, and logs what stands in the way: a missing file or function, or a
/// version other than the one that the library was built for. False when there is no engine to start. Engine thread.
bool loadEngineLibrary(const std::wstring& basePath);

/// Keeps the loader from telling the engine's library that the process ends. Only in the module entry point, at that
/// end: the engine's threads are gone then, some with a lock of its allocator, for which its thread-local clean-up
/// would wait without end. It has nothing to do there: the system takes everything back.
void skipEngineDetach();

}  // namespace ZEMO::UI
