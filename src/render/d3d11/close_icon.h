#pragma once

#include <cstdint>
#include <memory>

namespace ZEMO::UI::D3D11 {

/// A picture of `width` * `height` * 4 bytes, red first, straight alpha. No pixels when there is none.
struct CloseIcon {
    std::shared_ptr<uint8_t> pixels;
    int width = 0;
    int height = 0;
    int closeChannels = 0;  ///< of the file
};

/// The icon that lies beside the library, read once for all renderers. Any thread.
const CloseIcon& closeIcon();

}  // namespace ZEMO::UI::D3D11
