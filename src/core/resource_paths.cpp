#include "core/resource_paths.h"

#include <algorithm>

#include "core/module_paths.h"

namespace ZEMO::Core {

std::filesystem::path getLocalHtmlDirectory() {
    // Resolving logs by itself when the library's place is unknown.
    std::wstring path = resolveModuleRelativePath(L"resources\\html");
    std::replace(path.begin(), path.end(), L'\\', L'/');
    return path;
}

}  // namespace ZEMO::Core
