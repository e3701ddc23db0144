#include "render/close_image.h"

#include <stb_image.h>

#include <climits>
#include <cstdio>
#include <memory>

#include "core/asset_paths.h"
#include "core/module_paths.h"

namespace ZEMO::UI {
namespace {

using File = std::unique_ptr<FILE, decltype(&std::fclose)>;
using Pixels = std::unique_ptr<stbi_uc, decltype(&stbi_image_free)>;

// The wide call takes any path in any locale; the narrow one would depend on the one that the game has set.
FILE* openForReading(const std::string& utf8Path) {
#ifdef _MSC_VER
    FILE* file = nullptr;
    return _wfopen_s(&file, Core::to_wide(utf8Path).c_str(), L"rb") == 0 ? file : nullptr;
#else
    return _wfopen(Core::to_wide(utf8Path).c_str(), L"rb");
#endif
}

std::vector<uint8_t> readFile(const std::string& utf8Path) {
    const File file(openForReading(utf8Path), &std::fclose);
    if (!file) return {};
    std::vector<uint8_t> bytes;
    uint8_t block[16384];
    while (const size_t count = std::fread(block, 1, sizeof block, file.get())) {
        bytes.insert(bytes.end(), block, block + count);
    }
    return bytes;
}

}  // namespace

CloseImage loadCloseImage(const std::string& utf8Path) {
    if (utf8Path.empty()) return {};
    const std::vector<uint8_t> bytes = readFile(utf8Path);
    if (bytes.empty() || bytes.size() > INT_MAX) return {};

    constexpr int kChannels = 4;
    CloseImage image;
    int channelsInFile = 0;
    const Pixels pixels(stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()), &image.width, &image.height,
                                              &channelsInFile, kChannels),
                        &stbi_image_free);
    if (!pixels) return {};
    const size_t size = static_cast<size_t>(image.width) * static_cast<size_t>(image.height) * kChannels;
    image.rgba.assign(pixels.get(), pixels.get() + size);
    return image;
}

CloseImage loadCloseImage() { return loadCloseImage(Core::closeIconPath()); }

}  // namespace ZEMO::UI
