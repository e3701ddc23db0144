#pragma once

namespace ZEMO::Core {

/// The custom scheme of the library's own resources. Browser and child processes must declare it alike.
inline constexpr char kCustomSchemeName[] = "zemosdkcustomscheme";
inline constexpr char kCustomSchemeUrlPrefix[] = "zemosdkcustomscheme://";
inline constexpr char kCustomSchemeDomain[] = "resources";

}  // namespace ZEMO::Core
