#pragma once

// The library's only log: one OutputDebugString call a line. No level, no prefix, no automatic line end.
// Any thread. A null format does nothing; text beyond 1020 characters is cut.

namespace ZEMO::Core {

#if defined(__clang__)
#define ZEMO_PRINTF_LIKE __attribute__((format(printf, 1, 2)))
#elif defined(__GNUC__)
#define ZEMO_PRINTF_LIKE __attribute__((format(gnu_printf, 1, 2)))  // `printf` alone would mean the old runtime's
#else
#define ZEMO_PRINTF_LIKE
#endif
void logDebugA(const char* format, ...) ZEMO_PRINTF_LIKE;
void logDebugW(const wchar_t* format, ...);

}  // namespace ZEMO::Core
