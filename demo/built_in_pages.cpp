#include "built_in_pages.h"

#include "text.h"

#include <windows.h>

#include <stdexcept>

namespace demo {

std::string builtInPage(const std::string& name) {
    const HRSRC resource = FindResourceW(nullptr, toWide("page_" + name).c_str(), RT_RCDATA);
    if (!resource) throw std::invalid_argument("there is no page '" + name + "' in this program");
    const auto* text = static_cast<const char*>(LockResource(LoadResource(nullptr, resource)));
    // Copied, because a resource has no NUL at its end and the library wants one.
    return {text, SizeofResource(nullptr, resource)};
}

}  // namespace demo
