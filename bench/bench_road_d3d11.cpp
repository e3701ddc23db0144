// What a paint costs on the Direct3D 11 road at 1920x1080: from the engine's buffer in FrameBuffer to the presented
// picture, both on this thread. One floor is the least that shows such a frame: the same upload, one draw and one
// present without a copy between two threads. The other is the upload call alone. All turns run interleaved on one
// device each; a figure is the mean of some frames, since the driver works behind. Then the bytes that go up, counted
// at the call, against those that changed.
#include <cstring>
#include <iostream>

#include "engine/game_host.h"
#include "engine_bench/measured.h"
#include "render/d3d11/draw.h"
#include "render/osr_renderer.h"
#include "support/d3d11_calls.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;
using UI::D3D11::Device;
using Frame = std::vector<uint32_t>;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr double kFrameBytes = double{kWidth} * kHeight * 4;
constexpr int kBlock = 64;
constexpr int kRounds = 15;
constexpr int kFramesEach = 6;

/// What a program that knows nothing but Direct3D would do.
class PlainUpload {
public:
    explicit PlainUpload(HWND window)
        : device(Device::create()),
          chain(device->createSwapChain(window, kWidth, kHeight)),
          texture(device->createTexture(kWidth, kHeight, DXGI_FORMAT_B8G8R8A8_UNORM, nullptr, 0)),
          quad(device->createQuad(0, 0, 1, 1, false, true)) {}
    void upload(const Frame& frame) {
        texture->bind(device->immediateContext());
        texture->copyFrom(frame.data(), kWidth * 4, kHeight);
    }
    void show(const Frame& frame) {
        chain->bind(device->immediateContext());
        upload(frame);
        drawTextured(*device, effect, *quad, *texture, device->immediateContext());
        chain->present(1);
    }

private:
    std::shared_ptr<Device> device;
    std::shared_ptr<UI::D3D11::SwapChain> chain;
    std::shared_ptr<UI::D3D11::Texture2D> texture;
    std::shared_ptr<UI::D3D11::Geometry> quad;
    std::shared_ptr<UI::D3D11::Effect> effect;
};

HWND makeWindow() {
    return CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight, nullptr, nullptr, nullptr,
                           nullptr);
}

void show(UI::IOsrRenderer& renderer, const Frame& frame) {
    bool resize = false;
    renderer.onPaint(PET_VIEW, {}, frame.data(), kWidth, kHeight);
    renderer.render(&resize);
}

void dispatchWaiting() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
}

template <class Work>
void sample(std::vector<double>& samples, const Work& work) {
    dispatchWaiting();
    const Clock::time_point begin = Clock::now();
    for (int i = 0; i < kFramesEach; ++i) work(i);
    samples.push_back(milliseconds(Clock::now() - begin) / kFramesEach);
}

void changeBlock(Frame& frame, uint32_t color) {
    for (int row = 0; row < kBlock; ++row) {
        std::fill_n(frame.begin() + (500 + row) * kWidth + 900, kBlock, color);
    }
}

void measureTimes() {
    const HWND windows[] = {makeWindow(), makeWindow()};
    PlainUpload plain(windows[0]);
    const auto renderer = UI::createOsrRenderer(UI::kRendererD3D11, windows[1], false);
    const Frame frames[] = {Frame(size_t{kWidth} * kHeight, 0xFF102030), Frame(size_t{kWidth} * kHeight, 0xFF506070)};
    Frame block = frames[0];
    Frame copy(frames[0].size());
    std::vector<double> bare, whole, all, some, still, memory;
    for (int round = -2; round < kRounds; ++round) {
        if (round == 0) {  // the first rounds made what is made once
            for (auto* samples : {&bare, &whole, &all, &some, &still, &memory}) samples->clear();
        }
        sample(memory, [&](int i) { std::memcpy(copy.data(), frames[i % 2].data(), copy.size() * 4); });
        sample(bare, [&](int i) { plain.upload(frames[i % 2]); });
        sample(whole, [&](int i) { plain.show(frames[i % 2]); });
        sample(all, [&](int i) { show(*renderer, frames[i % 2]); });
        sample(some, [&](int i) {
            changeBlock(block, 0xFF000000u + static_cast<uint32_t>(i));
            show(*renderer, block);
        });
        sample(still, [&](int) {
            bool resize = false;
            renderer->render(&resize);
        });
    }
    report("memcpy_of_the_frame", "ms", memory);
    report("bare_upload_call", "ms", bare);
    report("whole_frame_upload", "ms", whole);
    report("paint_all_changed", "ms", all, "whole_frame_upload");
    report("paint_all_changed_against_the_bare_call", "ms", all, "bare_upload_call");
    report("paint_64x64_changed", "ms", some, "whole_frame_upload");
    report("cycle_without_a_paint", "ms", still, "whole_frame_upload");
}

/// Each upload is of the whole texture: the call has no rectangle.
void countBytes() {
    const HWND window = makeWindow();
    Test::D3D11Calls calls;
    const auto renderer = UI::createOsrRenderer(UI::kRendererD3D11, window, false);
    Frame frame(size_t{kWidth} * kHeight, 0xFF102030);
    show(*renderer, frame);
    const auto uploaded = [&](const auto& work) {
        calls.take();
        work();
        return static_cast<double>(calls.count("Map ")) * kFrameBytes;
    };
    report("bytes_changed_all", "bytes", {kFrameBytes});
    report("bytes_uploaded_all_changed", "bytes", {uploaded([&] { show(*renderer, frame); })}, "bytes_changed_all");
    report("bytes_changed_64x64", "bytes", {double{kBlock} * kBlock * 4});
    changeBlock(frame, 0xFFFFFFFF);
    report("bytes_uploaded_64x64_changed", "bytes", {uploaded([&] { show(*renderer, frame); })}, "bytes_changed_64x64");
    report("bytes_uploaded_without_a_paint", "bytes", {uploaded([&] {
               bool resize = false;
               renderer->render(&resize);
           })});
}

int run() {
    measureTimes();
    countBytes();
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
