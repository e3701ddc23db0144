// The Direct3D 11 renderer where something can't be had. No machine fails like this on demand, so single calls on the
// system's objects are answered with a failure; all others are really made.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "render/d3d11/device.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"
#include "support/process_usage.h"
#include "window/d3d11_window.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Lines = std::vector<std::string>;
using testing::Contains;
using testing::Not;
using testing::StartsWith;

const Picture kPage = noise(320, 200, 0xFF);
const Picture kNothing = solid(320, 200, kBehindPage);

/// A renderer that is made while one call fails.
struct Crippled {
    Crippled(const std::string& call, HRESULT result, bool closeButton = false) : window(320, 200) {
        window.renderer.reset();
        window.calls.fail(call, result);
        window.calls.take();
        window.renderer = createOsrRenderer(kRendererD3D11, window.game.handle(), closeButton);
    }
    /// A page and one cycle; the lines of the cycle.
    Lines show() {
        window.paint(kPage);
        window.calls.take();
        window.render();
        return window.calls.take();
    }
    D3D11Window window;
};

TEST(D3D11Failure, FeatureLevelRefused_OlderLevelsAreAskedForAndTheLogSaysWhich) {
    DebugLogCapture log;
    Crippled crippled("D3D11CreateDevice levels B100", E_INVALIDARG);
    const Lines calls = crippled.window.calls.take();
    ASSERT_GE(calls.size(), 2u);
    EXPECT_THAT(calls[0], StartsWith("D3D11CreateDevice levels B100 B000 A100 A000 count 4 "));
    EXPECT_EQ(calls[1],
              "D3D11CreateDevice levels B000 A100 A000 count 3 adapter null type 1 software null flags 0 version 7");
    EXPECT_TRUE(log.contains("d3d11: selected feature level: 0xB000\n")) << log.dump();
    crippled.show();
    EXPECT_EQ(crippled.window.differences(kPage), "");
}

TEST(D3D11Failure, NoDevice_NothingIsLoggedAndNothingIsDrawn) {
    for (const HRESULT result : {DXGI_ERROR_UNSUPPORTED, E_INVALIDARG}) {
        Crippled crippled("D3D11CreateDevice", result, true);
        DebugLogCapture log;
        crippled.window.calls.take();
        ASSERT_TRUE(crippled.window.renderer);
        crippled.window.paint(kPage);
        EXPECT_TRUE(crippled.window.render(true)) << "nobody has resized";
        EXPECT_EQ(crippled.window.calls.take(), Lines{});
        EXPECT_TRUE(log.texts().empty()) << log.dump();
        crippled.window.renderer->onPopupShow(nullptr, true);
        crippled.window.renderer->onPopupSize(nullptr, CefRect(1, 2, 3, 4));
        crippled.window.paint(kPage, PET_POPUP);
        crippled.window.render();
        EXPECT_EQ(crippled.window.calls.take(), Lines{});
    }
}

TEST(D3D11Failure, NoDevice_OneTryUnlessTheArgumentsAreRefused) {
    Crippled unsupported("D3D11CreateDevice", DXGI_ERROR_UNSUPPORTED);
    EXPECT_EQ(unsupported.window.calls.count("D3D11CreateDevice"), 1u);
}

TEST(D3D11Failure, AdapterUnknown_NamedSoAndTheRestIsMade) {
    DebugLogCapture log;
    Crippled crippled("GetDesc of adapter", E_FAIL);
    EXPECT_TRUE(log.contains("d3d11: selected adapter: n/a\n")) << log.dump();
    crippled.show();
    EXPECT_EQ(crippled.window.differences(kPage), "");
}

TEST(D3D11Failure, NoSecondFactory_OldCallWithSixtyHertz) {
    Crippled crippled("QueryInterface IDXGIFactory2", E_NOINTERFACE);
    EXPECT_THAT(crippled.window.calls.take(),
                Contains("CreateSwapChain 320x200 rate 60/1 format 28 order 0 scaling 0 samples 1/0 usage 32 count 1 "
                         "windowed 1 effect 0 flags 0"));
    crippled.show();
    EXPECT_EQ(crippled.window.differences(kPage), "");
}

TEST(D3D11Failure, NoSwapChain_CyclesDoNothing) {
    for (const char* call :
         {"GetParent IDXGIFactory1", "CreateSwapChainForHwnd", "GetBuffer", "CreateRenderTargetView"}) {
        Crippled crippled(call, E_FAIL);
        EXPECT_EQ(crippled.show(), Lines{}) << call;
        EXPECT_TRUE(crippled.window.render(true)) << call;
    }
}

TEST(D3D11Failure, NoSamplerOrBlendState_LeftOut) {
    for (const auto& [creation, use] :
         {std::pair("CreateSamplerState", "PSSetSamplers"), std::pair("CreateBlendState", "OMSetBlendState")}) {
        Crippled crippled(creation, E_FAIL);
        EXPECT_THAT(crippled.show(), Not(Contains(StartsWith(use))));
        EXPECT_EQ(crippled.window.differences(kPage), "") << creation;
    }
}

TEST(D3D11Failure, NoTexture_LayerIsLeftOutAndTheNextPaintTriesAgain) {
    for (const char* call : {"CreateTexture2D", "CreateShaderResourceView"}) {
        D3D11Window window(320, 200);
        const unsigned long before = window.calls.deviceReferences();
        window.calls.fail(call, E_OUTOFMEMORY);
        window.paint(kPage);
        window.render();
        EXPECT_EQ(window.differences(kNothing), "") << call;
        window.renderer->onPopupShow(nullptr, false);
        EXPECT_LE(window.calls.deviceReferences(), before + 1) << call << " left an object; one is the page's quad";
        window.calls.fail(call, S_OK);
        window.paint(kPage);
        window.render();
        EXPECT_EQ(window.differences(kPage), "") << call;
    }
}

TEST(D3D11Failure, NoVertexBuffer_NothingDrawnUntilThereIsOne) {
    D3D11Window window(320, 200, true);
    window.paint(kPage);
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(10, 10, 50, 50));
    window.paint(solid(50, 50, 0xFF00FF00), PET_POPUP);
    window.calls.fail("CreateBuffer", E_OUTOFMEMORY);
    window.calls.take();
    window.render();
    EXPECT_EQ(window.calls.count("Draw"), 0u);
    EXPECT_EQ(window.differences(kNothing), "");
    window.calls.fail("CreateBuffer", S_OK);
    window.calls.take();
    window.render();
    EXPECT_EQ(window.calls.count("Draw"), 3u);
}

TEST(D3D11Failure, NoCompileFunction_WindowStaysAtTheClearColour) {
    D3D11Window window(320, 200);
    window.calls.fail("GetProcAddress D3DCompile", E_FAIL);
    window.paint(kPage);
    window.render();
    EXPECT_EQ(window.differences(kNothing), "");
    EXPECT_EQ(window.calls.count("CreateVertexShader"), 0u);
    EXPECT_EQ(window.calls.count("CreatePixelShader"), 0u);
}

HMODULE WINAPI noModule(LPCWSTR, HANDLE, DWORD) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

TEST(D3D11Failure, NoCompilerModule_WindowStaysAtTheClearColour) {
    D3D11Window window(320, 200);
    window.renderer.reset();
    DebugLogCapture log;
    {
        const ImportReplaced replaced("LoadLibraryExW", &noModule);
        window.renderer = createOsrRenderer(kRendererD3D11, window.game.handle(), false);
    }
    EXPECT_TRUE(log.contains("Failed to load library from: ")) << log.dump();
    EXPECT_TRUE(log.contains("cefsubprocess\\d3dcompiler_47.dll. Error code: 126")) << log.dump();
    window.paint(kPage);
    window.render();
    EXPECT_EQ(window.differences(kNothing), "");
}

TEST(D3D11Failure, ShaderThatDoesNotCompile_TheOtherIsMadeAndNothingShows) {
    for (const char* model : {"vs_4_0", "ps_4_0"}) {
        D3D11Window window(320, 200);
        window.calls.fail(std::string("D3DCompile main ") + model, E_FAIL);
        window.paint(kPage);
        window.calls.take();
        window.render();
        const bool noVertices = model[0] == 'v';
        EXPECT_EQ(window.calls.count("CreateVertexShader"), noVertices ? 0u : 1u);
        EXPECT_EQ(window.calls.count("CreateInputLayout"), noVertices ? 0u : 1u);
        EXPECT_EQ(window.calls.count("CreatePixelShader"), noVertices ? 1u : 0u);
        EXPECT_EQ(window.differences(kNothing), "") << model;
    }
}

TEST(D3D11Failure, ShaderRefusedByTheDevice_NothingShows) {
    for (const char* call : {"CreateVertexShader", "CreatePixelShader", "CreateInputLayout"}) {
        D3D11Window window(320, 200);
        window.calls.fail(call, E_INVALIDARG);
        window.paint(kPage);
        window.calls.take();
        window.render();
        EXPECT_EQ(window.differences(kNothing), "") << call;
        EXPECT_EQ(window.calls.count("Draw"), 0u) << call;
    }
}

TEST(D3D11Failure, UploadRefused_PictureStaysAndNothingIsUnmapped) {
    D3D11Window window(320, 200);
    window.paint(kPage);
    window.render();
    window.calls.fail("Map", DXGI_ERROR_DEVICE_REMOVED);
    window.paint(noise(320, 200, 0xFF, 9));
    window.calls.take();
    window.render();
    EXPECT_EQ(window.calls.count("Unmap"), 0u);
    EXPECT_EQ(window.differences(kPage), "");
}

TEST(D3D11Failure, ResizeRefused_LoggedOnceWithoutTargetUntilTheNextResize) {
    for (const char* call : {"ResizeBuffers", "GetBuffer"}) {
        D3D11Window window(320, 200);
        window.paint(kPage);
        window.render();
        window.resize(350, 210);
        window.calls.fail(call, E_FAIL);
        window.calls.take();
        DebugLogCapture log;
        EXPECT_FALSE(window.render(true)) << call;
        EXPECT_EQ(log.count("failed to resize swapchain (350x210)\n"), 1u) << log.dump();
        EXPECT_EQ(window.calls.count("ClearRenderTargetView"), 0u);
        EXPECT_EQ(window.calls.count("OMSetRenderTargets 1"), 1u) << "only before the try";
        window.render();
        EXPECT_EQ(log.count("failed to resize"), 1u) << log.dump();
        window.calls.fail(call, S_OK);
        window.resize(320, 200);
        window.render(true);
        EXPECT_EQ(window.differences(kPage), "") << call;
    }
}

TEST(D3D11Failure, MinimisedWindow_ResizeStaysAskedForAndTheSwapChainAsItWas) {
    D3D11Window window(320, 200);
    window.paint(kPage);
    window.render();
    window.game.onThread([&] { ShowWindow(window.game.handle(), SW_MINIMIZE); });
    RECT client{};
    GetClientRect(window.game.handle(), &client);
    ASSERT_EQ(client.bottom, 0) << "minimised";
    window.calls.take();
    for (int cycle = 0; cycle < 3; ++cycle) {
        EXPECT_TRUE(window.render(true));
        EXPECT_EQ(window.differences(kPage), "");
    }
    EXPECT_EQ(window.calls.count("ResizeBuffers"), 0u);
    window.game.onThread([&] { ShowWindow(window.game.handle(), SW_RESTORE); });
    EXPECT_FALSE(window.render(true));
    EXPECT_EQ(window.differences(kPage), "");
}

TEST(D3D11Failure, RendererMadeOnAZeroSizedWindow_PictureComesWithTheFirstSize) {
    D3D11Window window(320, 200, true);
    window.renderer.reset();
    window.game.onThread([&] { ShowWindow(window.game.handle(), SW_MINIMIZE); });
    window.renderer = createOsrRenderer(kRendererD3D11, window.game.handle(), true);
    window.paint(kPage);
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(10, 10, 50, 50));  // a fraction of nothing
    window.paint(solid(50, 50, 0xFF00FF00), PET_POPUP);
    EXPECT_TRUE(window.render(true));
    window.renderer->onPopupShow(nullptr, false);
    window.game.onThread([&] { ShowWindow(window.game.handle(), SW_RESTORE); });
    EXPECT_FALSE(window.render(true));
    const auto shown = window.calls.presented();
    EXPECT_EQ(shown.width, 320);
    EXPECT_EQ(shown.height, 200);
    EXPECT_EQ(shown.bgra(10, 150), kPage.at(10, 150));
}

TEST(D3D11Failure, DeviceRemoved_CyclesGoOnWithoutAPictureAndTheViewCanEnd) {
    D3D11Window window(320, 200, true);
    window.paint(kPage);
    window.render();
    for (const char* call : {"Present", "Map", "Create", "ResizeBuffers", "GetBuffer"}) {
        window.calls.fail(call, DXGI_ERROR_DEVICE_REMOVED);
    }
    for (int cycle = 0; cycle < 5; ++cycle) {
        window.resize(320 + cycle, 200);
        window.paint(noise(320 + cycle, 200, 0xFF));
        window.renderer->onPopupShow(nullptr, cycle % 2 == 0);
        window.renderer->onPopupSize(nullptr, CefRect(10, 10, 50, 50));
        window.paint(solid(50, 50, 0xFF00FF00), PET_POPUP);
        EXPECT_FALSE(window.render(true));
    }
    window.renderer.reset();
}

TEST(D3D11Failure, WindowGone_CyclesGoOn) {
    D3D11Calls calls;
    auto game = std::make_unique<GameWindow>();
    const auto renderer = createOsrRenderer(kRendererD3D11, game->handle(), true);
    game.reset();
    bool resize = true;
    for (int cycle = 0; cycle < 3; ++cycle) {
        renderer->onPaint(PET_VIEW, {}, kPage.pixels.data(), 320, 200);
        renderer->render(&resize);
        EXPECT_TRUE(resize);
    }
}

// ---- threads and objects
// ----------------------------------------------------------------------------------------------

/// Paints a page that moves, and opens and closes a popup, as the engine thread does beside the render thread.
class AnimatedSource {
public:
    explicit AnimatedSource(std::shared_ptr<IOsrRenderer> target)
        : renderer(std::move(target)), thread([this] { run(); }) {}
    ~AnimatedSource() { stop(); }
    AnimatedSource(const AnimatedSource&) = delete;
    AnimatedSource& operator=(const AnimatedSource&) = delete;

    void stop() {
        stopped = true;
        if (thread.joinable()) thread.join();
    }
    std::atomic<int> paints{0};

private:
    void run() {
        while (!stopped) {
            const int n = ++paints;
            const Picture page = solid(200 + n % 7, 120 + n % 5, 0xFF000000u | static_cast<uint32_t>(n));
            renderer->onPaint(PET_VIEW, {}, page.pixels.data(), page.width, page.height);
            renderer->onPopupShow(nullptr, n % 3 != 0);
            renderer->onPopupSize(nullptr, CefRect(n % 50, n % 40, n % 90, 30));
            const Picture popup = solid(60, 30, 0x80102030);
            renderer->onPaint(PET_POPUP, {}, popup.pixels.data(), popup.width, popup.height);
            Sleep(2);
        }
    }
    std::shared_ptr<IOsrRenderer> renderer;
    std::atomic<bool> stopped{false};
    std::thread thread;
};

/// Sizes, and every fiftieth time down to the bar and back.
void changeWindow(D3D11Window& window, int step) {
    const HWND handle = window.game.handle();
    if (step % 50 == 49) {
        window.game.onThread([&] { ShowWindow(handle, SW_MINIMIZE); });
        window.render(true);
        window.game.onThread([&] { ShowWindow(handle, SW_RESTORE); });
    }
    const int width = 300 + step * 7 % 90;
    const int height = 180 + step * 5 % 70;
    window.game.onThread(
        [&] { SetWindowPos(handle, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE); });
    window.render(true);
}

TEST(D3D11Objects, FiveHundredResizesWhileAPageAnimates_NoObjectAndNoHandleLeft) {
    D3D11Window window(320, 200, true, WS_OVERLAPPEDWINDOW | WS_VISIBLE);  // only a framed one goes down to the bar
    unsigned long objects = 0;
    ZEMO::Test::ProcessUsage before;
    const auto settle = [&] {  // the same state each time it is counted
        window.renderer->onPopupShow(nullptr, false);
        window.resize(320, 200);
        for (int cycle = 0; cycle < 3; ++cycle) {
            window.paint(kPage);
            window.render(true);
        }
    };
    for (int round = 0; round < 2; ++round) {  // the first makes what is made once
        AnimatedSource source(window.renderer);
        for (int step = 0; step < (round == 0 ? 50 : 500); ++step) {
            changeWindow(window, step);
            window.calls.take();
        }
        EXPECT_GT(source.paints, 10);
        source.stop();
        settle();
        if (round == 0) {
            objects = window.calls.deviceReferences();
            before = ZEMO::Test::processUsage();
        }
    }
    EXPECT_EQ(window.calls.deviceReferences(), objects);
    const ZEMO::Test::ProcessUsage after = ZEMO::Test::processUsage();
    EXPECT_LE(after.handles, before.handles + 5);
    EXPECT_LE(after.gdi, before.gdi + 5);
    EXPECT_EQ(window.calls.presented().bgra(10, 150), kPage.at(10, 150)) << "the picture is back within three presents";
}

TEST(D3D11Objects, RendererEnds_DeviceWithAllItsObjectsGoes) {
    D3D11Window window(320, 200, true);
    ID3D11Device* const kept = [&] {
        const auto mine = D3D11::Device::create();
        mine->get()->AddRef();
        const auto chain = mine->createSwapChain(window.game.handle(), 0, 0);
        const auto texture = mine->createTexture(8, 8, DXGI_FORMAT_B8G8R8A8_UNORM, nullptr, 0);
        const auto effect = mine->createDefaultEffect();
        const auto quad = mine->createQuad(0, 0, 1, 1, false, true);
        const D3D11::SharedContext& context = mine->immediateContext();
        chain->bind(context);
        quad->bind(context);
        effect->bind(context);
        texture->bind(context);
        quad->draw();
        context->context->ClearState();  // what is bound lives on with the context
        return mine->get();
    }();
    EXPECT_EQ(kept->Release(), 0u) << "references that nobody gives back";
}

}  // namespace
}  // namespace ZEMO::Test
