// What a paint of the OpenGL road costs at 1920x1080, from the engine's buffer to the shown window: next to the bare
// upload call of the same pixels, and next to an upload of the whole frame, which a renderer without dirty rectangles
// makes for each paint.
#include <windows.h>

#include <GL/gl.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "render/opengl/opengl_renderer.h"

namespace {

using namespace ZEMO::UI;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr GLenum kBgra = 0x80E1, kReversed = 0x8367;

HWND makeWindow() {
    const HWND window = CreateWindowExW(0, L"STATIC", L"bench", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight, nullptr,
                                        nullptr, GetModuleHandleW(nullptr), nullptr);
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
    return window;
}

std::vector<uint32_t> makeFrame() {
    std::vector<uint32_t> frame(size_t{kWidth} * kHeight);
    for (size_t i = 0; i < frame.size(); ++i) frame[i] = 0xFF000000u | static_cast<uint32_t>(i * 2654435761u >> 8);
    return frame;
}

CefRect middle(int side) { return CefRect((kWidth - side) / 2, (kHeight - side) / 2, side, side); }

void count(benchmark::State& state, int64_t pixels, const char* floor) {
    state.SetBytesProcessed(state.iterations() * pixels * 4);
    if (floor) state.SetLabel(std::string("floor=") + floor);
}

/// The road itself. `side` 0: the whole view is dirty.
void paint(benchmark::State& state, int side, const char* floor) {
    static const HWND window = makeWindow();
    static OpenGLRenderer renderer(window, false);
    static std::vector<uint32_t> frame = makeFrame();
    const CefRect dirty = side ? middle(side) : CefRect(0, 0, kWidth, kHeight);
    renderer.onPaint(PET_VIEW, {}, frame.data(), kWidth, kHeight);
    for (auto _ : state) {
        frame[static_cast<size_t>(dirty.y) * kWidth + dirty.x] += 1;
        renderer.onPaint(PET_VIEW, {dirty}, frame.data(), kWidth, kHeight);
    }
    count(state, int64_t{dirty.width} * dirty.height, floor);
}

/// The bare call, in a context of the same kind.
class UploadContext {
public:
    UploadContext() : device(GetDC(makeWindow())) {
        PIXELFORMATDESCRIPTOR format{sizeof format, 1, 37, PFD_TYPE_RGBA, 24};
        SetPixelFormat(device, ChoosePixelFormat(device, &format), &format);
        context = wglCreateContext(device);
    }
    void take() const { wglMakeCurrent(device, context); }
    static void release() { wglMakeCurrent(nullptr, nullptr); }

private:
    HDC device;
    HGLRC context;
};

void upload(benchmark::State& state, int side) {
    static const UploadContext context;
    static std::vector<uint32_t> frame = makeFrame();
    context.take();
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, kWidth);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    const auto whole = [] {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kWidth, kHeight, 0, kBgra, kReversed, frame.data());
    };
    whole();
    const CefRect part = side ? middle(side) : CefRect(0, 0, kWidth, kHeight);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, part.x);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, part.y);
    for (auto _ : state) {
        if (side) {
            glTexSubImage2D(GL_TEXTURE_2D, 0, part.x, part.y, part.width, part.height, kBgra, kReversed, frame.data());
        } else {
            whole();
        }
    }
    glDeleteTextures(1, &texture);
    UploadContext::release();
    count(state, int64_t{part.width} * part.height, nullptr);
}

void add(const char* name, const std::function<void(benchmark::State&)>& run) {
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond)->UseRealTime();
}

[[maybe_unused]] const bool kRegistered = [] {
    add("upload_1080p", [](benchmark::State& state) { upload(state, 0); });
    add("upload_64x64", [](benchmark::State& state) { upload(state, 64); });
    add("upload_480x480", [](benchmark::State& state) { upload(state, 480); });
    add("paint_all_changed", [](benchmark::State& state) { paint(state, 0, "upload_1080p"); });
    add("paint_480x480_changed", [](benchmark::State& state) { paint(state, 480, "upload_1080p"); });
    add("paint_64x64_changed", [](benchmark::State& state) { paint(state, 64, "upload_1080p"); });
    add("paint_480x480_changed_to_its_upload", [](benchmark::State& state) { paint(state, 480, "upload_480x480"); });
    add("paint_64x64_changed_to_its_upload", [](benchmark::State& state) { paint(state, 64, "upload_64x64"); });
    return true;
}();

}  // namespace
