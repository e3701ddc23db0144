// Loaded into the engine's sample client. It gives its OpenGL context back before it swaps, and a software rasterizer
// shows nothing that is swapped without one: here the context stays, so that its pictures reach the screen.
#include <windows.h>

#include "support/import_replaced.h"

namespace {

BOOL WINAPI keepContext(HDC device, HGLRC context) { return context ? wglMakeCurrent(device, context) : TRUE; }

const ZEMO::Test::ImportReplaced replaced("wglMakeCurrent", &keepContext);

}  // namespace
