#pragma once

#include <string>

// Where the close button's pictures lie beside the library. A log line and an empty result when the library's place is
// unknown; whether a file is there is for its reader to find out. Any thread.
namespace ZEMO::Core {

/// UTF-8 path of the icon with alpha channel.
std::string closeIconPath();

/// Path of the alternative bitmap without alpha channel.
std::wstring closeBitmapPath();

}  // namespace ZEMO::Core
