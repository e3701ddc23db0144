// Loaded into the engine's sample client. It gives its OpenGL context back before it swaps, and a software rasterizer
// shows nothing that is swapped without one: here the context stays, so that its pictures reach the screen. They are
// counted on the way.
#include <windows.h>

#include "engine_bench/counted_swaps.h"

namespace {

BOOL WINAPI keepContext(HDC device, HGLRC context) { return context ? wglMakeCurrent(device, context) : TRUE; }

const ZEMO::Test::ImportReplaced context("wglMakeCurrent", &keepContext);
const ZEMO::Test::ImportReplaced swaps("SwapBuffers", &ZEMO::Bench::countedSwap);

}  // namespace
