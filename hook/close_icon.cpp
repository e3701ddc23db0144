#include "close_icon.h"

#include <stb_image.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

namespace ZEMO::GraphicsHook {
namespace {

constexpr wchar_t kIcon[] = L"resources\\html\\x_button\\common-btn-icon-webview-x@2x.png";

// The library's folder: a studio may keep this module elsewhere.
std::filesystem::path libraryFolder() {
    wchar_t path[1024];
    GetModuleFileNameW(GetModuleHandleW(L"ZEMOUIFramework.dll"), path, 1024);
    return std::filesystem::path(path).parent_path();
}

// Bytes R, G, B, A go where a page has B, G, R, A: the icon is grey.
Plane load() {
    std::ifstream file(libraryFolder() / kIcon, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    int width = 0;
    int height = 0;
    int channels = 0;
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()), &width,
                              &height, &channels, 4),
        &stbi_image_free);
    Plane plane;
    plane.take(nullptr, pixels.get(), width, height);
    return plane;
}

}  // namespace

Plane& closeIcon() {
    static Plane& icon = *new Plane(load());
    return icon;
}

}  // namespace ZEMO::GraphicsHook
