#include "core/asset_paths.h"

#include <memory>

#include "core/log.h"
#include "core/module_paths.h"

namespace ZEMO::Core {

std::string closeIconPath() {
    const std::wstring path = resolveModuleRelativePath(L"resources\\html\\x_button\\common-btn-icon-webview-x@2x.png");
    const std::shared_ptr<char> utf8 = path.empty() ? nullptr : toSharedUtf8(path.c_str());
    if (utf8) return utf8.get();
    logDebugA("Error: Could not resolve X Button asset path.");
    return {};
}

std::wstring closeBitmapPath() {
    std::wstring path = resolveModuleRelativePath(L"resources\\html\\x_button\\xbtn.bmp");
    if (path.empty()) logDebugA("Error: Could not resolve Alt X Button asset path.");
    return path;
}

}  // namespace ZEMO::Core
