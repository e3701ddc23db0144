#include "render/d3d11/close_icon.h"

#include <stb_image.h>

#include <string>

#include "core/asset_paths.h"
#include "core/log.h"

namespace ZEMO::UI::D3D11 {
namespace {

constexpr int kChannels = 4;

// The file's own channels: a picture without alpha would be drawn as an opaque square, and is shorter than the texture.
CloseIcon load() {
    static const std::string path = Core::closeIconPath();
    CloseIcon icon;
    icon.pixels.reset(stbi_load(path.c_str(), &icon.width, &icon.height, &icon.closeChannels, 0), &stbi_image_free);
    if (icon.pixels && icon.closeChannels != kChannels) {
        Core::logDebugA("close icon has %d channels in place of %d: not drawn\n", icon.closeChannels, kChannels);
        icon.pixels.reset();
    }
    return icon;
}

}  // namespace

const CloseIcon& closeIcon() {
    static const CloseIcon icon = load();
    return icon;
}

}  // namespace ZEMO::UI::D3D11
