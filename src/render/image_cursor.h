#pragma once

#include <windows.h>

#include <string>

#include "core/unique_handle.h"

// Cursors made of pictures that are none. The hot spot is always the top left corner, whatever the file says.
namespace ZEMO::UI {

/// Null when the system can't take the icon apart or put it together again.
Core::UniqueCursor iconToCursor(Core::UniqueIcon icon);

/// A PNG of 16 to 256 pixels a side; null for anything else. Starts and stops GDI+ within the call.
Core::UniqueCursor pngToCursor(const std::wstring& path);

}  // namespace ZEMO::UI
