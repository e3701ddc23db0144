#pragma once

#include <d3dcommon.h>

#include "com.h"

namespace ZEMO::GraphicsHook {

/// The two shaders of both Direct3D painters, for one shader model each. They take the page's edges in the frame from
/// b0 (left, top, right, bottom, from -1 to 1), its pixels from t0 and a sampler from s0, and want a strip of 4
/// corners.
struct PageShaders {
    Com<ID3DBlob> vertex, pixel;
    explicit operator bool() const { return vertex && pixel; }
};

/// False, with a log line, where there is no compiler.
PageShaders compilePageShaders(const char* vertexTarget, const char* pixelTarget);

}  // namespace ZEMO::GraphicsHook
