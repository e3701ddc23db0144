// The calls on Direct3D 11 and DXGI that leave nothing to see in a picture: which, with what, in which order. They are
// made on the system's own objects and written down on the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "core/module_paths.h"
#include "render/d3d11/frame_buffer.h"
#include "support/debug_log.h"
#include "window/d3d11_window.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using D3D11::Device;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;
using Lines = std::vector<std::string>;

constexpr char kAllLevels[] =
    "D3D11CreateDevice levels B100 B000 A100 A000 count 4 adapter null type 1 software null flags 0 version 7";
constexpr char kBind[] = "OMSetRenderTargets 1 target1 depth null";
constexpr char kSampler[] = "PSSetSamplers 0 1 sampler1";
constexpr char kClear[] = "ClearRenderTargetView target1 0.92941177 0.93333334 0.9647059 1";
constexpr char kPageBlend[] = "OMSetBlendState blend1 0 0 0 0 FFFFFFFF";
constexpr char kIconBlend[] = "OMSetBlendState blend2 0 0 0 0 FFFFFFFF";
constexpr char kWholeQuad[] =
    "CreateBuffer 80 usage 0 bind 1 access 0 misc 0 stride 0: -1 1 1 0 0 | 1 1 1 1 0 | -1 -1 1 0 1 | 1 -1 1 1 1";

Lines& operator+=(Lines& list, const Lines& more) {
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

Lines creationOfTexture(int number, const std::string& size, int format) {
    const std::string n = std::to_string(number);
    const std::string f = std::to_string(format);
    return {"CreateTexture2D " + size + " mips 1 array 1 format " + f +
                " samples 1/0 usage 2 bind 8 access 65536 misc 0 data null",
            "CreateShaderResourceView texture" + n + " format " + f + " dimension 4 mips 0/1",
            "QueryInterface IDXGIResource", "GetSharedHandle", "QueryInterface IDXGIKeyedMutex"};
}

Lines upload(int number) {
    const std::string n = std::to_string(number);
    return {"PSSetShaderResources 0 1 view" + n, "Map texture" + n + " 0 kind 4 flags 0", "Unmap texture" + n + " 0"};
}

Lines drawing(int buffer, int view) {
    return {"IASetVertexBuffers 0 1 buffer" + std::to_string(buffer) + " stride 20 offset 0",
            "IASetPrimitiveTopology 5",
            "IASetInputLayout layout1",
            "VSSetShader vertexShader1 null 0",
            "PSSetShader pixelShader1 null 0",
            "PSSetShaderResources 0 1 view" + std::to_string(view),
            "Draw 4 0"};
}

const Lines kEffect{
    "D3DCompile main vs_4_0 size 266 length 265 name null defines null include null flags 2048 0",
    "CreateVertexShader null",
    "CreateInputLayout POSITION 0 format 6 slot 0 offset 0 class 0 step 0; TEXCOORD 0 format 16 slot 0 offset 12 class "
    "0 step 0;",
    "D3DCompile main ps_4_0 size 226 length 225 name null defines null include null flags 2048 0",
    "CreatePixelShader null"};

const Lines kSwapChain{
    "GetAdapter",
    "GetParent IDXGIFactory1",
    "QueryInterface IDXGIFactory2",
    "CreateSwapChainForHwnd 320x200 format 28 stereo 0 samples 1/0 usage 32 count 1 scaling 0 effect 0 alpha 0 flags 0 "
    "fullscreen null output null",
    "MakeWindowAssociation 2",
    "GetBuffer 0 ID3D11Texture2D",
    "CreateRenderTargetView backBuffer1 null",
    "OMSetRenderTargets 1 target1 depth null",
    "RSSetViewports 1: 0 0 320x200 depth 0-1",
    "CreateSamplerState filter 21 address 3 3 3 bias 0 anisotropy 0 compare 1 border 0 0 0 0 lod 0-7F7FFFFF"};

const Lines kBlends{"CreateBlendState coverage 0 independent 0 enable 1 color 2 6 1 alpha 2 6 1 mask 15",
                    "CreateBlendState coverage 0 independent 0 enable 1 color 5 6 1 alpha 5 6 1 mask 15"};

TEST(D3D11CallsMade, RendererMade_DeviceSwapChainAndBlendStatesInThisOrder) {
    DebugLogCapture log;
    D3D11Window window(320, 200);
    Lines expected{kAllLevels, "GetAdapter", "GetDesc of adapter"};
    expected += kSwapChain;
    expected += kBlends;
    EXPECT_EQ(window.calls.take(), expected);
    EXPECT_EQ(log.count("d3d11: selected adapter: "), 1u) << log.dump();
    EXPECT_FALSE(log.contains("n/a"));
    EXPECT_TRUE(log.contains("d3d11: selected feature level: 0xB100\n")) << log.dump();
}

TEST(D3D11CallsMade, RendererWithCloseButtonMade_IconsTextureLast) {
    D3D11Window window(320, 200, true);
    Lines expected{kAllLevels, "GetAdapter", "GetDesc of adapter"};
    expected += kSwapChain;
    expected += kBlends;
    expected += creationOfTexture(1, "72x72", 28);
    EXPECT_EQ(window.calls.take(), expected);
}

TEST(D3D11CallsMade, FirstPaint_DynamicTextureInTheEnginesOrderOfBytes) {
    D3D11Window window(320, 200);
    window.calls.take();
    window.paint(solid(300, 180, 0xFF000000));
    EXPECT_EQ(window.calls.take(), creationOfTexture(1, "300x180", 87));
    window.paint(solid(300, 180, 0xFF000000));
    EXPECT_EQ(window.calls.take(), Lines{}) << "the same size again";
    window.paint(solid(301, 180, 0xFF000000));
    EXPECT_EQ(window.calls.take(), creationOfTexture(2, "301x180", 87));
}

TEST(D3D11CallsMade, CycleWithoutFrame_TargetClearedAndPresented) {
    D3D11Window window(320, 200);
    window.calls.take();
    window.render();
    EXPECT_EQ(window.calls.take(), (Lines{kBind, kSampler, kPageBlend, kClear, kWholeQuad, "Present 1 0"}));
}

TEST(D3D11CallsMade, CycleWithPagePopupAndCloseButton_DrawnInThisOrder) {
    D3D11Window window(320, 200, true);
    window.paint(solid(320, 200, 0xFF000000));
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(80, 50, 160, 100));
    window.paint(solid(160, 100, 0xFF000000), PET_POPUP);
    window.calls.take();
    window.render();

    Lines expected{kBind, kSampler, kPageBlend, kClear};
    expected += upload(2);
    expected += {kWholeQuad};
    expected += kEffect;
    expected += drawing(1, 2);
    expected += upload(3);
    expected +=
        {"CreateBuffer 80 usage 0 bind 1 access 0 misc 0 stride 0: -0.5 0.5 1 0 0 | 0.5 0.5 1 1 0 | -0.5 -0.5 1 0 1 | "
         "0.5 -0.5 1 1 1"};
    Lines popupEffect = kEffect;  // of its own
    expected += popupEffect;
    Lines popupDrawing = drawing(2, 3);
    popupDrawing[2] = "IASetInputLayout layout2";
    popupDrawing[3] = "VSSetShader vertexShader2 null 0";
    popupDrawing[4] = "PSSetShader pixelShader2 null 0";
    expected += popupDrawing;
    expected += {kIconBlend};
    expected += upload(1);
    expected +=
        {"CreateBuffer 80 usage 0 bind 1 access 0 misc 0 stride 0: 0.65 0.8 1 0 0 | 0.875 0.8 1 1 0 | 0.65 "
         "0.44 1 0 1 | 0.875 0.44 1 1 1"};
    expected += drawing(3, 1);
    expected += {"Present 1 0"};
    EXPECT_EQ(window.calls.take(), expected);

    // Nothing new: no upload, no shader; the page's and the icon's quad anew, the popup's not.
    window.render();
    const Lines second = window.calls.take();
    EXPECT_EQ(std::ranges::count_if(second, [](const auto& l) { return l.starts_with("CreateBuffer"); }), 2);
    EXPECT_THAT(second, testing::Not(Contains(StartsWith("Map"))));
    EXPECT_THAT(second, testing::Not(Contains(StartsWith("D3DCompile"))));
}

TEST(D3D11CallsMade, ResizeAskedFor_BuffersResizedBetweenBlendStateAndClear) {
    D3D11Window window(320, 200);
    window.resize(400, 260);
    window.calls.take();
    EXPECT_FALSE(window.render(true));
    EXPECT_EQ(window.calls.take(),
              (Lines{kBind, kSampler, kPageBlend, "OMSetRenderTargets 0 depth null", "GetDesc of swap chain",
                     "ResizeBuffers 0 400x260 format 28 flags 0", "GetBuffer 0 ID3D11Texture2D", "GetDevice",
                     "CreateRenderTargetView backBuffer2 format 28 dimension 4 mip 0",
                     "OMSetRenderTargets 1 target2 depth null", "RSSetViewports 1: 0 0 400x260 depth 0-1",
                     "ClearRenderTargetView target2 0.92941177 0.93333334 0.9647059 1", kWholeQuad, "Present 1 0"}));
}

// The rest of the interface: this renderer has no popup rectangle of its own to tell of.
TEST(D3D11CallsMade, PopupRectangle_AlwaysEmptyAndNothingToClear) {
    D3D11Window window(320, 200);
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(80, 50, 160, 100));
    window.calls.take();
    CefRect popup(1, 2, 3, 4);
    window.renderer->getPopupRect(&popup);
    EXPECT_TRUE(popup.x == 0 && popup.y == 0 && popup.width == 0 && popup.height == 0);
    EXPECT_TRUE(window.renderer->isPopupRectEmpty());
    window.renderer->clearPopupRects();
    window.renderer->reserved();
    window.renderer->onViewHidden();
    EXPECT_EQ(window.calls.take(), Lines{});
}

TEST(D3D11CallsMade, PopupEvents_Logged) {
    D3D11Window window(320, 200);
    DebugLogCapture log;
    window.renderer->onPopupShow(nullptr, true);
    window.renderer->onPopupSize(nullptr, CefRect(-8, 50, 160, 100));
    window.renderer->onPopupShow(nullptr, false);
    EXPECT_THAT(log.texts(), ElementsAre("show popup\n", "size popup - -8,50  160x100\n", "hide popup\n"));
}

TEST(D3D11CallsMade, FactoryKinds_Direct3DForBothItsNumbersAndNothingForUnknownOnes) {
    D3D11Calls calls;
    GameWindow game;
    EXPECT_TRUE(createOsrRenderer(kRendererD3D11, game.handle(), false));
    EXPECT_TRUE(createOsrRenderer(kRendererD3D12, game.handle(), false));
    EXPECT_EQ(calls.count("D3D11CreateDevice"), 2u);
    for (const int kind : {-1, 3, 4, 1000}) EXPECT_FALSE(createOsrRenderer(kind, game.handle(), false)) << kind;
    EXPECT_EQ(calls.count("D3D11CreateDevice"), 2u);
}

TEST(D3D11CallsMade, FactoryCalled_ThisThreadIsASingleThreadedApartment) {
    std::thread([] {
        D3D11Calls calls;
        GameWindow game;
        const auto renderer = createOsrRenderer(kRendererD3D11, game.handle(), false);
        APTTYPE type{};
        APTTYPEQUALIFIER qualifier{};
        ASSERT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
        EXPECT_TRUE(type == APTTYPE_STA || type == APTTYPE_MAINSTA);
    }).join();
}

// ---- the device layer by itself ------------------------------------------------------------------------------------

class D3D11Layer : public testing::Test {
protected:
    D3D11Calls calls;
    GameWindow game;
    std::shared_ptr<Device> device = Device::create();
};

TEST_F(D3D11Layer, SwapChainWithoutSizes_TakesTheClientArea) {
    const RECT client = game.client();
    ASSERT_TRUE(device->createSwapChain(game.handle(), 0, -5));
    EXPECT_THAT(calls.take(), Contains(StartsWith("CreateSwapChainForHwnd " + std::to_string(client.right) + "x" +
                                                  std::to_string(client.bottom) + " ")));
    ASSERT_TRUE(device->createSwapChain(game.handle(), 64, 48));
    EXPECT_THAT(calls.take(), Contains(StartsWith("CreateSwapChainForHwnd 64x48 ")));
}

TEST_F(D3D11Layer, ResizeWithAZeroSide_NothingHappensAndNothingIsLogged) {
    const auto chain = device->createSwapChain(game.handle(), 0, 0);
    calls.take();
    DebugLogCapture log;
    chain->resize(0, 100);
    chain->resize(100, 0);
    chain->resize(-1, -1);
    EXPECT_EQ(calls.take(), Lines{});
    EXPECT_TRUE(log.texts().empty()) << log.dump();
}

TEST_F(D3D11Layer, BlendState_SetOnlyWhenThereIsOne) {
    const auto chain = device->createSwapChain(game.handle(), 0, 0);
    calls.take();
    chain->setBlendState(nullptr);
    EXPECT_EQ(calls.take(), Lines{});
}

TEST_F(D3D11Layer, QuadWithoutFlip_TextureUpsideDown) {
    calls.take();
    ASSERT_TRUE(device->createQuad(0, 0, 1, 1, false, false));
    EXPECT_EQ(calls.take(), (Lines{"CreateBuffer 80 usage 0 bind 1 access 0 misc 0 stride 0: -1 1 1 0 1 | 1 1 1 1 1 | "
                                   "-1 -1 1 0 0 | 1 -1 1 1 0"}));
}

TEST_F(D3D11Layer, TextureWithAPicture_CannotBeWrittenLater) {
    calls.take();
    const Picture picture = noise(5, 3, 0xFF);
    const auto texture = device->createTexture(5, 3, DXGI_FORMAT_B8G8R8A8_UNORM, picture.pixels.data(), 20);
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->getWidth(), 5);
    EXPECT_EQ(texture->getHeight(), 3);
    EXPECT_EQ(calls.take().front(),
              "CreateTexture2D 5x3 mips 1 array 1 format 87 samples 1/0 usage 0 bind 8 access 0 misc 0 data pitch 20");
}

TEST_F(D3D11Layer, CopyWithAnotherRowCount_MapsAndUnmapsButWritesNothing) {
    const auto texture = device->createTexture(2, 3, DXGI_FORMAT_B8G8R8A8_UNORM, nullptr, 0);
    texture->bind(device->immediateContext());
    const std::vector<uint8_t> pixels(64, 0x55);
    std::vector<uint8_t> memory(64, 0xEE);
    calls.mapInto(memory.data(), 8);
    for (const uint32_t rows : {0u, 2u, 4u}) {
        calls.take();
        texture->copyFrom(pixels.data(), 8, rows);
        EXPECT_EQ(calls.take(), (Lines{"Map texture1 0 kind 4 flags 0", "Unmap texture1 0"})) << rows;
        EXPECT_EQ(memory, std::vector<uint8_t>(64, 0xEE)) << rows;
    }
}

TEST_F(D3D11Layer, CopyOfNull_NothingHappens) {
    const auto texture = device->createTexture(2, 3, DXGI_FORMAT_B8G8R8A8_UNORM, nullptr, 0);
    texture->bind(device->immediateContext());
    calls.take();
    texture->copyFrom(nullptr, 8, 3);
    EXPECT_EQ(calls.take(), Lines{});
}

// The driver chooses how far its rows are apart; memory of the test's own stands in for rows that this one never has.
TEST_F(D3D11Layer, CopyIntoRowsOfAnotherLength_RowByRowWithTheShorterOfBoth) {
    const auto texture = device->createTexture(2, 3, DXGI_FORMAT_B8G8R8A8_UNORM, nullptr, 0);
    texture->bind(device->immediateContext());
    std::vector<uint8_t> pixels(24);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i + 1);
    for (const uint32_t pitch : {5u, 8u, 12u}) {
        std::vector<uint8_t> memory(pitch * 3, 0xEE);
        calls.mapInto(memory.data(), pitch);
        texture->copyFrom(pixels.data(), 8, 3);
        std::vector<uint8_t> expected(pitch * 3, 0xEE);
        for (size_t row = 0; row < 3; ++row) {
            std::memcpy(expected.data() + row * pitch, pixels.data() + row * 8, std::min(pitch, 8u));
        }
        EXPECT_EQ(memory, expected) << pitch;
    }
}

TEST_F(D3D11Layer, PaintOfANewSize_OldTextureLivesAsLongAsTheRenderThreadHoldsIt) {
    const unsigned long before = calls.deviceReferences();
    D3D11::FrameBuffer frames(device);
    const Picture small = noise(4, 4, 0xFF);
    const Picture large = noise(8, 8, 0xFF);
    frames.onPaint(small.pixels.data(), 4, 4, false);
    const unsigned long eachTexture = calls.deviceReferences() - before;
    ASSERT_GT(eachTexture, 0u);
    {
        const auto held = frames.swap(device->immediateContext());
        frames.onPaint(large.pixels.data(), 8, 8, false);
        EXPECT_EQ(held->getWidth(), 4);
        EXPECT_EQ(frames.swap(device->immediateContext())->getWidth(), 8);
        EXPECT_GT(calls.deviceReferences(), before + eachTexture);
    }
    // What is bound for drawing holds its view alone.
    EXPECT_EQ(calls.deviceReferences(), before + eachTexture);
}

TEST_F(D3D11Layer, CompilerModule_TakenFromBesideTheLibrary) {
    const std::wstring path = Core::resolveModuleRelativePath(L"cefsubprocess/d3dcompiler_47.dll");
    wchar_t loaded[MAX_PATH] = {};
    GetModuleFileNameW(GetModuleHandleW(path.c_str()), loaded, MAX_PATH);
    EXPECT_STREQ(loaded, path.c_str());
    EXPECT_TRUE(device->compileShader("float4 main() : SV_Target { return 1; }", "main", "ps_4_0"));
    EXPECT_FALSE(device->compileShader("float4 main() : SV_Target { return 1; }", "other", "ps_4_0"));
}

}  // namespace
}  // namespace ZEMO::Test
