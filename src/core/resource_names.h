#pragma once

namespace ZEMO::Core {

/// The custom scheme of the library's own resources. Browser and child processes must declare it alike.
inline constexpr char kCustomSchemeName[] = "zemosdkcustomscheme";
inline constexpr char kCustomSchemeUrlPrefix[] = "zemosdkcustomscheme://";
inline constexpr char kCustomSchemeDomain[] = "resources";
/// The engine's scheme options "standard" and "CORS enabled". A child that declares the scheme otherwise never finishes
/// such a page.
inline constexpr int kCustomSchemeOptions = 1 | 16;

}  // namespace ZEMO::Core
