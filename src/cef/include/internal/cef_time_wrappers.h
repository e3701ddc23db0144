#pragma once

#include "include/internal/cef_types.h"

/// Microseconds since 1601-01-01 UTC, the engine's own clock for dates.
class CefBaseTime : public cef_basetime_t {
public:
    CefBaseTime() : cef_basetime_t{} {}
    CefBaseTime(const cef_basetime_t& r) : cef_basetime_t(r) {}
};
