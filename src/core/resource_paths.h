#pragma once

#include <filesystem>

namespace ZEMO::Core {

/// resources/html beside the library, with forward slashes only; empty when the library's place is unknown. Any thread.
std::filesystem::path getLocalHtmlDirectory();

}  // namespace ZEMO::Core
