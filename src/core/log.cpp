#include "core/log.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>

namespace ZEMO::Core {
namespace {

constexpr size_t kBufferSize = 1024;
constexpr size_t kMaxText = 1020;

}  // namespace

// The bounded forms of the runtime cut at kMaxText and report that as a failure; what they wrote is printed all the
// same.
void logDebugA(const char* format, ...) {
    if (!format) return;
    char text[kBufferSize] = {};
    va_list arguments;
    va_start(arguments, format);
    _vsnprintf_s(text, kBufferSize, kMaxText, format, arguments);
    va_end(arguments);
    OutputDebugStringA(text);
}

void logDebugW(const wchar_t* format, ...) {
    if (!format) return;
    wchar_t text[kBufferSize] = {};
    va_list arguments;
    va_start(arguments, format);
    _vsnwprintf_s(text, kBufferSize, kMaxText, format, arguments);
    va_end(arguments);
    OutputDebugStringW(text);
}

}  // namespace ZEMO::Core
