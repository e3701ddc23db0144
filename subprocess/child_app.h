#pragma once

#include "include/cef_app.h"

namespace ZEMO::UI {

/// What the engine is given in a child process.
CefRefPtr<CefApp> createChildApp();

}  // namespace ZEMO::UI
