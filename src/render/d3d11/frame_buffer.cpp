#include "render/d3d11/frame_buffer.h"

#include <cstdlib>
#include <cstring>

namespace ZEMO::UI::D3D11 {
namespace {

constexpr size_t kBytesPerPixel = 4;

size_t frameBytes(int width, int height) {
    return static_cast<size_t>(width) * static_cast<size_t>(height) * kBytesPerPixel;
}

}  // namespace

void FrameBuffer::onPaint(const void* pixels, int width, int height, bool rgba) {
    const std::lock_guard guard(lock);
    if (!texture || texture->getWidth() != width || texture->getHeight() != height) {
        replaceTexture(width, height, rgba);
    }
    if (staging && pixels) std::memcpy(staging.get(), pixels, frameBytes(width, height));
    dirty = true;
}

void FrameBuffer::replaceTexture(int width, int height, bool rgba) {
    const DXGI_FORMAT format = rgba ? DXGI_FORMAT_R8G8B8A8_UNORM : DXGI_FORMAT_B8G8R8A8_UNORM;
    texture = device ? device->createTexture(width, height, format, nullptr, 0) : nullptr;
    staging.reset(std::malloc(frameBytes(width, height)), &std::free);
}

std::shared_ptr<Texture2D> FrameBuffer::swap(const SharedContext& context) {
    const std::lock_guard guard(lock);
    if (staging && texture && dirty) {
        texture->bind(context);
        texture->copyFrom(staging.get(), static_cast<uint32_t>(texture->getWidth() * kBytesPerPixel),
                          static_cast<uint32_t>(texture->getHeight()));
    }
    dirty = false;
    return texture;
}

}  // namespace ZEMO::UI::D3D11
