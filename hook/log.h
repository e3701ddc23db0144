#pragma once

namespace ZEMO::GraphicsHook {

/// One line to the debug log (OutputDebugString), with the module's name before it and a line end behind. Any thread.
void logLine(const char* text);

}  // namespace ZEMO::GraphicsHook
