#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ZEMO::UI {

/// A decoded picture: bytes R, G, B, A, straight alpha, width * height * 4 of them. Empty when there is none.
struct CloseImage {
    std::vector<uint8_t> rgba;
    int width = 0;
    int height = 0;
};

/// Reads and decodes a PNG or BMP file. Empty on any failure, without a log line. Any thread.
CloseImage loadCloseImage(const std::string& utf8Path);

/// The close icon that lies beside the library.
CloseImage loadCloseImage();

}  // namespace ZEMO::UI
