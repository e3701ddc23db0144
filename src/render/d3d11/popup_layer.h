#pragma once

#include <memory>
#include <mutex>

#include "render/d3d11/frame_buffer.h"

namespace ZEMO::UI::D3D11 {

/// An open popup of a page: where it lies, and its picture.
///
/// Threads: place on the engine's, render on the render thread.
class PopupLayer {
public:
    PopupLayer(std::shared_ptr<Device> owner, std::shared_ptr<FrameBuffer> frames)
        : source(std::move(frames)), device(std::move(owner)) {}

    /// Fractions of the client area, y downward.
    void place(float left, float top, float newWidth, float newHeight);
    /// Draws the latest picture; nothing before the popup has a width.
    void render(const SharedContext& context);

private:
    bool hasWidth();
    /// The quad at the present place; empty when it can't be made.
    std::shared_ptr<Geometry> currentGeometry();

    std::shared_ptr<FrameBuffer> source;
    std::shared_ptr<Geometry> geometry;  ///< guarded; dropped when the place changes
    std::shared_ptr<Effect> effect;      ///< render thread
    std::shared_ptr<Device> device;
    std::mutex placeLock;  ///< guards `geometry` and the place; no call to the page or the game is made in it
    float x = 0, y = 0, width = 0, height = 0;
};

}  // namespace ZEMO::UI::D3D11
