#include "support/image_bytes.h"

#include <algorithm>
#include <string_view>

namespace ZEMO::Test {
namespace {

void little(Bytes& to, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) to.push_back(static_cast<uint8_t>(value >> 8 * i));
}

void big(Bytes& to, uint32_t value) {
    for (int i = 3; i >= 0; --i) to.push_back(static_cast<uint8_t>(value >> 8 * i));
}

uint32_t crc32(const Bytes& bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

uint32_t adler32(const Bytes& bytes) {
    uint32_t a = 1;
    uint32_t b = 0;
    for (const uint8_t byte : bytes) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

void chunk(Bytes& to, std::string_view type, const Bytes& data) {
    big(to, static_cast<uint32_t>(data.size()));
    Bytes body(type.begin(), type.end());
    body.insert(body.end(), data.begin(), data.end());
    to.insert(to.end(), body.begin(), body.end());
    big(to, crc32(body));
}

Bytes zlibStored(const Bytes& raw) {
    Bytes out{0x78, 0x01};
    for (size_t at = 0; at < raw.size(); at += 65535) {
        const size_t count = std::min<size_t>(65535, raw.size() - at);
        out.push_back(at + count == raw.size());
        little(out, static_cast<uint32_t>(count), 2);
        little(out, ~static_cast<uint32_t>(count), 2);
        out.insert(out.end(), raw.begin() + static_cast<std::ptrdiff_t>(at),
                   raw.begin() + static_cast<std::ptrdiff_t>(at + count));
    }
    big(out, adler32(raw));
    return out;
}

Bytes bottomUpPixels(const CursorImage& image) {
    Bytes bytes;
    little(bytes, 40, 4);
    little(bytes, static_cast<uint32_t>(image.width), 4);
    little(bytes, static_cast<uint32_t>(image.height * 2), 4);  // colour rows and mask rows
    little(bytes, 1, 2);
    little(bytes, 32, 2);
    for (int i = 0; i < 6; ++i) little(bytes, 0, 4);
    for (int y = image.height - 1; y >= 0; --y) {
        for (int x = 0; x < image.width; ++x) little(bytes, image.paint(x, y), 4);
    }
    bytes.insert(bytes.end(), static_cast<size_t>((image.width + 31) / 32 * 4 * image.height), 0);
    return bytes;
}

}  // namespace

Bytes makePng(int width, int height, const Painter& paint) {
    Bytes header;
    big(header, static_cast<uint32_t>(width));
    big(header, static_cast<uint32_t>(height));
    header.insert(header.end(), {8, 6, 0, 0, 0});
    Bytes raw;
    for (int y = 0; y < height; ++y) {
        raw.push_back(0);
        for (int x = 0; x < width; ++x) {
            const uint32_t pixel = paint(x, y);
            for (const int shift : {16, 8, 0, 24}) raw.push_back(static_cast<uint8_t>(pixel >> shift));
        }
    }
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    chunk(file, "IHDR", header);
    chunk(file, "IDAT", zlibStored(raw));
    chunk(file, "IEND", {});
    return file;
}

Bytes makeCursorFile(int type, const std::vector<CursorImage>& images) {
    Bytes file;
    little(file, 0, 2);
    little(file, static_cast<uint32_t>(type), 2);
    little(file, static_cast<uint32_t>(images.size()), 2);
    Bytes data;
    for (const CursorImage& image : images) {
        const Bytes pixels = bottomUpPixels(image);
        little(file, static_cast<uint32_t>(image.width), 1);
        little(file, static_cast<uint32_t>(image.height), 1);
        little(file, 0, 2);
        little(file, static_cast<uint32_t>(type == 2 ? image.hotX : 1), 2);
        little(file, static_cast<uint32_t>(type == 2 ? image.hotY : 32), 2);
        little(file, static_cast<uint32_t>(pixels.size()), 4);
        little(file, static_cast<uint32_t>(6 + 16 * images.size() + data.size()), 4);
        data.insert(data.end(), pixels.begin(), pixels.end());
    }
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

}  // namespace ZEMO::Test
