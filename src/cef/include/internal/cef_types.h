#pragma once

// Enumerations and structures of the engine's C API, generated from the engine package.
#include "cef_c_api.h"

typedef uint32_t cef_color_t;
