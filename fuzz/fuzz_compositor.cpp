// Drives the compositor with any order of calls and any numbers. The sanitizers watch the memory; the checks here are
// that every rectangle lies inside the frame and that a consumer which uploads nothing else holds the presented frame.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "render/frame_compositor.h"

namespace {

class Input {
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool done() const { return size_ == 0; }
    uint8_t byte() {
        if (done()) return 0;
        --size_;
        return *data_++;
    }
    /// Mostly small, sometimes anything.
    int number() {
        const uint8_t first = byte();
        if (first < 200) return first % 64 - 8;
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) value = value << 8 | byte();
        return static_cast<int>(value);
    }

private:
    const uint8_t* data_;
    size_t size_;
};

void require(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    std::vector<uint8_t> copy;
    int copyWidth = 0;
    int copyHeight = 0;
    ZEMO::UI::FrameCompositor compositor([&](const void* pixels, int w, int h, int x, int y, int dw, int dh) {
        if (!pixels) return;
        const size_t stride = static_cast<size_t>(w) * 4;
        if (w != copyWidth || h != copyHeight) {
            require(x == 0 && y == 0 && dw == w && dh == h);
            copy.assign(stride * static_cast<size_t>(h), 0);
        }
        copyWidth = w;
        copyHeight = h;
        require(x >= 0 && y >= 0 && dw >= 0 && dh >= 0 && x + dw <= w && y + dh <= h);
        for (int row = y; row < y + dh; ++row) {
            const size_t offset = static_cast<size_t>(row) * stride + static_cast<size_t>(x) * 4;
            std::memcpy(copy.data() + offset, static_cast<const uint8_t*>(pixels) + offset,
                        static_cast<size_t>(dw) * 4);
        }
        require(std::memcmp(copy.data(), pixels, copy.size()) == 0);
    });

    // Icon and metrics come once, before the first frame, as a view sets them.
    const int iconWidth = input.byte() % 5;
    const int iconHeight = input.byte() % 5;
    const size_t iconBytes = static_cast<size_t>(iconWidth) * static_cast<size_t>(iconHeight) * 4;
    compositor.setCloseImage(std::vector<uint8_t>(iconBytes + input.byte() / 200, input.byte()), iconWidth, iconHeight);
    const int closeSize = input.number();
    compositor.setCloseMetrics(closeSize, input.number());

    int width = 8;
    int height = 8;
    while (!input.done()) {
        const uint8_t op = input.byte();
        switch (op % 8) {
            case 0:
                compositor.onPopupShow(op & 8);
                break;
            case 1: {
                const int left = input.number();
                const int top = input.number();
                compositor.onPopupRect({left, top, input.number(), input.number()});
                break;
            }
            case 2:
            case 3: {
                const int w = input.byte() % 24;
                const int h = input.byte() % 24;
                const std::vector<uint8_t> list(static_cast<size_t>(w) * static_cast<size_t>(h) * 4, input.byte());
                compositor.paintPopup(op & 8, list.data(), w, h);
                break;
            }
            case 4:
                compositor.forceFullFrame();
                break;
            case 5:
                compositor.clearFrame();
                break;
            default: {
                if (op & 32) width = 1 + input.byte() % 40;
                if (op & 64) height = 1 + input.byte() % 40;
                const size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
                const auto frame = std::make_unique<uint8_t[]>(bytes);
                for (int n = op & 16 ? 3 : 1; n > 0; --n)
                    frame[(static_cast<size_t>(input.byte()) << 8 | input.byte()) % bytes] = 1;
                compositor.paintView(op & 8, frame.get(), width, height);
            }
        }
    }
    return 0;
}
