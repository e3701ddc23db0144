#pragma once

// OpenGL as Windows ships it: the header stops at 1.1, a few names of later versions are missing.
#include <windows.h>

#include <GL/gl.h>

#ifndef GL_BGRA
#define GL_BGRA 0x80E1
#endif
#ifndef GL_CLAMP_TO_EDGE
#define GL_CLAMP_TO_EDGE 0x812F
#endif
