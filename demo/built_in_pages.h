#pragma once

#include <string>

namespace demo {

/// The text of a page that was linked into this program (demo/pages). Throws std::invalid_argument for another name.
std::string builtInPage(const std::string& name);

}  // namespace demo
