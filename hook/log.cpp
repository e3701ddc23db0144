#include "log.h"

#include <windows.h>

#include <cstdio>

namespace ZEMO::GraphicsHook {

void logLine(const char* text) {
    char line[256];
    std::snprintf(line, sizeof line, "ZEMOGraphicsHook: %s\n", text);
    OutputDebugStringA(line);
}

}  // namespace ZEMO::GraphicsHook
