#pragma once

#include <cassert>

#include "include/cef_task.h"

#define CEF_REQUIRE_UI_THREAD() assert(CefCurrentlyOn(TID_UI))
#define CEF_REQUIRE_IO_THREAD() assert(CefCurrentlyOn(TID_IO))
#define CEF_REQUIRE_FILE_USER_BLOCKING_THREAD() assert(CefCurrentlyOn(TID_FILE_USER_BLOCKING))
#define CEF_REQUIRE_RENDERER_THREAD() assert(CefCurrentlyOn(TID_RENDERER))
