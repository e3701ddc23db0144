#pragma once

#include <string>

#include "core/module_paths.h"

// Where the close button's pictures lie beside the library. A log line and an empty result when the library's place is
// unknown; whether a file is there is for its reader to find out. Any thread.
namespace ZEMO::Core {

/// How a relative path becomes an absolute one: resolveModuleRelativePath but in tests.
using PathResolver = std::wstring (*)(const std::wstring& relativePath);

/// UTF-8 path of the icon with alpha channel.
std::string closeIconPath(PathResolver resolve = &resolveModuleRelativePath);

/// Path of the alternative bitmap without alpha channel.
std::wstring closeBitmapPath(PathResolver resolve = &resolveModuleRelativePath);

}  // namespace ZEMO::Core
