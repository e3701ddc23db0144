#pragma once

// The library's only log: one OutputDebugString call a line. No level, no prefix, no automatic line end.
// Any thread. A null format does nothing; text beyond 1020 characters is cut.

namespace ZEMO::Core {

#if defined(__GNUC__) || defined(__clang__)
void logDebugA(const char* format, ...) __attribute__((format(gnu_printf, 1, 2)));
#else
void logDebugA(const char* format, ...);
#endif
void logDebugW(const wchar_t* format, ...);

}  // namespace ZEMO::Core
