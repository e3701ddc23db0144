#include "render/opengl/opengl_renderer.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "render/display_scale.h"
#include "support/debug_log.h"
#include "support/shown_pictures.h"
#include "window/gl_calls.h"
#include "window/window_test_support.h"

// A view's picture in a real window by real OpenGL, read back. Only the order of the window system's calls and the
// failures that this machine doesn't have are looked at with stand-ins.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Calls = std::vector<std::string>;

const auto kDevice = reinterpret_cast<HDC>(0xD0);
const auto kContext = reinterpret_cast<HGLRC>(0xC0);

/// The window system's side, beside the OpenGL calls. `worksUntil` names the first call that fails.
class WindowSystemCalls : public GlCalls {
public:
    explicit WindowSystemCalls(bool hasContext = true) {
        contextGiven = hasContext;
        put("GetDC", &getDc);
        put("ChoosePixelFormat", &chooseFormat);
        put("SetPixelFormat", &setFormat);
        put("wglCreateContext", &createContext);
        put("wglMakeCurrent", &makeCurrent);
        put("SwapBuffers", &swapBuffers);
    }
    /// The window system's calls; what lies between them only as "drawing".
    Calls takeOrder() {
        Calls order;
        for (std::string& call : take()) {
            if (call.starts_with("gl")) call = "drawing";
            if (order.empty() || order.back() != call || call != "drawing") order.push_back(call);
        }
        return order;
    }
    static inline PIXELFORMATDESCRIPTOR wanted{};

private:
    static HDC WINAPI getDc(HWND) { return note("GetDC"), kDevice; }
    static int WINAPI chooseFormat(HDC, const PIXELFORMATDESCRIPTOR* format) {
        wanted = *format;
        return note("ChoosePixelFormat"), contextGiven ? 7 : 0;
    }
    static BOOL WINAPI setFormat(HDC, int format, const PIXELFORMATDESCRIPTOR*) {
        return note(std::format("SetPixelFormat {}", format)), contextGiven;
    }
    static HGLRC WINAPI createContext(HDC device) {
        return note(device == kDevice ? "wglCreateContext" : "wglCreateContext of another"),
               contextGiven ? kContext : nullptr;
    }
    static BOOL WINAPI makeCurrent(HDC device, HGLRC context) {
        note(context ? "current" : device ? "current without context" : "release");
        return context || !device;
    }
    static BOOL WINAPI swapBuffers(HDC) { return note("SwapBuffers"), TRUE; }
    static inline bool contextGiven = true;
};

/// A view's renderer on a window of a thread of its own, as in a game, and the pixels that the engine would hand over.
class Drawn : public ::testing::Test {
protected:
    Drawn() : client(window.client()), width(client.right), height(client.bottom) {
        window.showUnmanaged();
        frame.resize(static_cast<size_t>(width) * height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) frame[index(x, y)] = 0xFF000000u | (x * 255 / width) << 16 | (y % 256) << 8;
        }
    }
    size_t index(int x, int y) const { return static_cast<size_t>(y) * width + x; }
    void paint(const RectList& dirty = {}) { renderer.onPaint(PET_VIEW, dirty, frame.data(), width, height); }
    ShownPicture shown() const { return pictures.last(window.handle()); }
    /// The picture in the window is `frame` over the background, up to `tolerance` in a channel.
    void expectFrame(int tolerance = 0) const {
        const ShownPicture picture = shown();
        ASSERT_EQ(picture.pixels.size(), frame.size());
        for (size_t i = 0; i < frame.size(); ++i) {
            const uint32_t expected = overBackground(frame[i]);
            ASSERT_LE(channelDistance(picture.pixels[i], expected), tolerance)
                << i % width << "," << i / width << std::format(" is {:08x}, not {:08x}", picture.pixels[i], expected);
        }
    }

    GameWindow window{{100, 80, 420, 280}, WS_POPUP};
    RECT client;
    int width, height;
    std::vector<uint32_t> frame;
    ShownPictures pictures;
    OpenGLRenderer renderer{window.handle(), false};
};

}  // namespace

TEST(OpenGLRenderer, FirstPaint_ContextMadeAndEachPaintTakesShowsAndReleasesIt) {
    const uint32_t pixels[16]{};
    getWindowScale(nullptr);  // asks the screen once in a process
    WindowSystemCalls calls;
    OpenGLRenderer renderer(nullptr, false);
    EXPECT_EQ(calls.take(), Calls{}) << "nothing before the first paint";
    renderer.onPaint(PET_VIEW, {}, pixels, 4, 4);
    EXPECT_EQ(calls.takeOrder(), (Calls{"GetDC", "ChoosePixelFormat", "SetPixelFormat 7", "wglCreateContext", "current",
                                        "drawing", "release", "current", "drawing", "SwapBuffers", "release"}));
    const PIXELFORMATDESCRIPTOR& format = WindowSystemCalls::wanted;
    EXPECT_EQ(format.nSize, 40);
    EXPECT_EQ(format.nVersion, 1);
    EXPECT_EQ(format.dwFlags, 37u);
    EXPECT_EQ(format.iPixelType, PFD_TYPE_RGBA);
    EXPECT_EQ(format.cColorBits, 24);
    EXPECT_EQ(format.cDepthBits, 16);
    EXPECT_EQ(format.iLayerType, PFD_MAIN_PLANE);

    for (const auto type : {PET_VIEW, PET_POPUP}) {
        renderer.onPaint(type, {}, pixels, 4, 4);
        EXPECT_EQ(calls.takeOrder(), (Calls{"current", "drawing", "SwapBuffers", "release"})) << type;
    }
}

TEST(OpenGLRenderer, DrawingThrows_PictureIsShownAndContextReleasedAllTheSame) {
    const uint32_t pixels[16]{};
    WindowSystemCalls calls;
    OpenGLRenderer renderer(nullptr, false);
    renderer.onPaint(PET_VIEW, {}, pixels, 4, 4);
    calls.take();
    void(APIENTRY * fail)(GLbitfield) = [](GLbitfield) { throw std::runtime_error("drawing"); };
    calls.put("glClear", fail);
    EXPECT_THROW(renderer.onPaint(PET_VIEW, {}, pixels, 4, 4), std::runtime_error);
    EXPECT_EQ(calls.takeOrder(), (Calls{"current", "drawing", "SwapBuffers", "release"}));
}

TEST(OpenGLRenderer, NoPixelFormatAndNoContext_NothingDrawnAndOneLineInTheLog) {
    const uint32_t pixels[16]{};
    DebugLogCapture log;
    WindowSystemCalls calls(false);
    OpenGLRenderer renderer(nullptr, true);
    for (int i = 0; i < 3; ++i) renderer.onPaint(PET_VIEW, {}, pixels, 4, 4);
    EXPECT_EQ(calls.takeOrder(),
              (Calls{"GetDC", "ChoosePixelFormat", "SetPixelFormat 0", "wglCreateContext", "current without context",
                     "current without context", "current without context", "current without context"}));
    EXPECT_EQ(log.count("gives no context"), 1u) << log.dump();
}

TEST(OpenGLRenderer, RenderThreadsCallsAndHiding_NoOpenGl) {
    WindowSystemCalls calls;
    OpenGLRenderer renderer(nullptr, true);
    bool needResize = true;
    renderer.render(&needResize);
    renderer.reserved();
    renderer.onViewHidden();
    EXPECT_TRUE(renderer.isPopupRectEmpty());
    EXPECT_EQ(calls.take(), Calls{});
    EXPECT_TRUE(needResize) << "it has not resized";
}

TEST(OpenGLRenderer, PopupHiddenOrCleared_RectangleIsZero) {
    OpenGLRenderer renderer(nullptr, false);
    const auto rectangle = [&] {
        CefRect rect;
        renderer.getPopupRect(&rect);
        return rect;
    };
    for (const bool cleared : {false, true}) {
        renderer.onPopupSize(nullptr, {0, 0, 3, 4});
        renderer.onPopupShow(nullptr, true);
        EXPECT_EQ(rectangle(), CefRect(0, 0, 3, 4));
        EXPECT_FALSE(renderer.isPopupRectEmpty());
        cleared ? renderer.clearPopupRects() : renderer.onPopupShow(nullptr, false);
        EXPECT_EQ(rectangle(), CefRect());
        EXPECT_TRUE(renderer.isPopupRectEmpty());
    }
}

TEST(OpenGLRenderer, Factory_MakesItForItsKindOnly) {
    const auto made = createOsrRenderer(kRendererOpenGL, nullptr, false);
    EXPECT_TRUE(dynamic_cast<OpenGLRenderer*>(made.get()));
    for (const int kind : {-1, 3, 4, 100}) EXPECT_FALSE(createOsrRenderer(kind, nullptr, false)) << kind;
}

TEST_F(Drawn, WholeFrame_PictureIsTheFrameExactly) {
    paint();
    expectFrame();
}

TEST_F(Drawn, HalfTransparentFrame_BlendedOverTheBackgroundWithinOneStep) {
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint32_t alpha = static_cast<uint32_t>(x * 256 / width);
            frame[index(x, y)] = alpha << 24 | (alpha * (y % 256) / 255) << 16 | alpha / 2;
        }
    }
    paint();
    expectFrame(1);
    for (uint32_t& pixel : frame) pixel = 0;
    paint({CefRect(0, 0, width, height)});
    expectFrame();  // nothing but background
}

TEST_F(Drawn, PartsDirty_OnlyTheseChangeInThePicture) {
    paint();
    const std::vector<uint32_t> before = frame;
    for (uint32_t& pixel : frame) pixel = 0xFF00FF00;
    const RectList dirty{CefRect(3, 5, 40, 20), CefRect(width - 7, height - 9, 7, 9), CefRect(0, height - 1, 1, 1)};
    paint(dirty);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool changed = std::ranges::any_of(dirty, [&](const CefRect& rect) { return rect.Contains({x, y}); });
            if (!changed) frame[index(x, y)] = before[index(x, y)];
        }
    }
    expectFrame();
}

TEST_F(Drawn, PopupPainted_StandsInThePictureUntilThePageIsPaintedAgain) {
    paint();
    const std::vector<uint32_t> popup(size_t{60} * 30, 0xFF8040C0);
    renderer.onPopupSize(nullptr, CefRect(width - 40, 10, 60, 30));  // moved in by 20
    renderer.onPaint(PET_POPUP, {}, popup.data(), 60, 30);
    const std::vector<uint32_t> page = frame;
    for (int y = 10; y < 40; ++y) std::fill_n(frame.begin() + static_cast<int>(index(width - 60, y)), 60, popup[0]);
    expectFrame();
    renderer.onPopupShow(nullptr, false);
    frame = page;
    paint({CefRect(0, 0, width, height)});
    expectFrame();
}

TEST_F(Drawn, WindowResized_NextFrameFillsIt) {
    paint();
    for (const SIZE size : {SIZE{200, 300}, SIZE{501, 77}}) {
        window.onThread([&] { SetWindowPos(window.handle(), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE); });
        client = window.client();
        width = client.right;
        height = client.bottom;
        frame.assign(static_cast<size_t>(width) * height, 0xFF123456);
        paint({CefRect(0, 0, 1, 1)});
        expectFrame();
    }
}

// Between two sizes the picture is as large as the page was, in the window's lower left corner.
TEST_F(Drawn, FrameOfAnotherSizeThanTheWindow_LiesAtTheLowerLeft) {
    const int smallWidth = width - 30, smallHeight = height - 20;
    const std::vector<uint32_t> small(static_cast<size_t>(smallWidth) * smallHeight, 0xFF204060);
    renderer.onPaint(PET_VIEW, {}, small.data(), smallWidth, smallHeight);
    const ShownPicture picture = shown();
    EXPECT_EQ(picture.at(0, height - 1), 0xFF204060u);
    EXPECT_EQ(picture.at(0, 20), 0xFF204060u);
    EXPECT_EQ(picture.at(smallWidth - 1, 20), 0xFF204060u);
    EXPECT_NE(picture.at(0, 19), 0xFF204060u);
    EXPECT_NE(picture.at(smallWidth, height - 1), 0xFF204060u);
}

TEST(OpenGLRenderer, WindowDestroyedBetweenPaints_NothingHappens) {
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 100, 80, 320, 200, nullptr, nullptr,
                                        nullptr, nullptr);
    const std::vector<uint32_t> pixels(size_t{320} * 200, 0xFF123456);
    OpenGLRenderer renderer(window, true);
    renderer.onPaint(PET_VIEW, {}, pixels.data(), 320, 200);
    DestroyWindow(window);
    for (int i = 0; i < 3; ++i) renderer.onPaint(PET_VIEW, {CefRect(0, 0, 5, 5)}, pixels.data(), 320, 200);
    EXPECT_FALSE(wglGetCurrentContext());
}

TEST_F(Drawn, WindowMinimisedAndRestored_PictureComesBack) {
    paint();
    window.onThread([&] { ShowWindow(window.handle(), SW_MINIMIZE); });
    paint();
    window.onThread([&] { ShowWindow(window.handle(), SW_RESTORE); });
    ASSERT_EQ(window.client().right, width);
    paint({CefRect(0, 0, 1, 1)});
    expectFrame();
}

// A game that draws its own window with OpenGL has given the window a pixel format.
TEST_F(Drawn, WindowThatTheGameDrawsWithOpenGl_ItsContextAndPictureAreLeftAlone) {
    HGLRC game = nullptr;
    HDC device = nullptr;
    window.onThread([&] {
        device = GetDC(window.handle());
        PIXELFORMATDESCRIPTOR format{sizeof format, 1, 37, PFD_TYPE_RGBA, 32};
        SetPixelFormat(device, ChoosePixelFormat(device, &format), &format);
        game = wglCreateContext(device);
        wglMakeCurrent(device, game);
        glClearColor(1, 0, 1, 1);
    });
    paint();
    expectFrame();
    window.onThread([&] {
        EXPECT_EQ(wglGetCurrentContext(), game);
        float clear[4]{};
        glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
        EXPECT_EQ(clear[1], 0.0f);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(game);
        ReleaseDC(window.handle(), device);
    });
}

TEST(OpenGLRenderer, DroppedOnAThreadOfTheGamesDrawing_GamesTexturesStay) {
    GameWindow game({100, 80, 420, 280});
    GameWindow own({500, 80, 820, 280});
    std::optional<OpenGLRenderer> renderer(std::in_place, own.handle(), true);
    const std::vector<uint32_t> pixels(64);
    renderer->onPaint(PET_VIEW, {}, pixels.data(), 8, 8);
    game.onThread([&] {
        const HDC device = GetDC(game.handle());
        PIXELFORMATDESCRIPTOR format{sizeof format, 1, 37, PFD_TYPE_RGBA, 32};
        SetPixelFormat(device, ChoosePixelFormat(device, &format), &format);
        const HGLRC context = wglCreateContext(device);
        wglMakeCurrent(device, context);
        GLuint textures[4]{};
        glGenTextures(4, textures);
        for (const GLuint texture : textures) glBindTexture(GL_TEXTURE_2D, texture);
        renderer.reset();
        EXPECT_EQ(wglGetCurrentContext(), context);
        EXPECT_EQ(wglGetCurrentDC(), device);
        for (const GLuint texture : textures) EXPECT_TRUE(glIsTexture(texture)) << texture;
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(context);
        ReleaseDC(game.handle(), device);
    });
}

}  // namespace ZEMO::Test
