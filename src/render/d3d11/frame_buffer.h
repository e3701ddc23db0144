#pragma once

#include <memory>
#include <mutex>

#include "render/d3d11/device.h"

namespace ZEMO::UI::D3D11 {

/// Hands pictures from the thread that paints to the render thread: the latest wins, nothing queues. A picture is
/// copied in under the lock, and under it again into the texture by the render thread.
class FrameBuffer {
public:
    explicit FrameBuffer(std::shared_ptr<Device> owner) : device(std::move(owner)) {}

    /// `width` * `height` * 4 bytes, red or blue first. Any thread.
    void onPaint(const void* pixels, int width, int height, bool rgba);
    /// The texture with the latest picture; empty before the first, and when none could be made. Render thread.
    std::shared_ptr<Texture2D> swap(const SharedContext& context);

private:
    void replaceTexture(int width, int height, bool rgba);

    std::mutex lock;  ///< guards all below but `device`
    std::shared_ptr<Texture2D> texture;
    std::shared_ptr<Device> device;
    std::shared_ptr<void> staging;  ///< from malloc
    bool dirty = false;             ///< `staging` is newer than `texture`
};

}  // namespace ZEMO::UI::D3D11
