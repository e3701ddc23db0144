#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "render/opengl/osr_renderer.h"
#include "window/gl_calls.h"

// Which OpenGL calls a view's drawing is made of, in which order: most of them can't be seen in the picture. The calls
// go to stand-ins here; opengl_renderer_test.cpp looks at real pictures.
namespace ZEMO::UI {
namespace {

using Test::GlCalls;
using Calls = std::vector<std::string>;

constexpr GLenum kTexture2d = GL_TEXTURE_2D;
constexpr GLenum kBgra = 0x80E1, kReversed = 0x8367;
constexpr GLuint kView = 1;  // textures in the order in which they are made

template <class... Arguments>
std::string call(const std::string& name, Arguments... arguments) {
    return GlCalls::call(name, arguments...);
}

std::string wholeUpload(int width, int height) {
    return call("glTexImage2D", kTexture2d, 0, GL_RGBA, width, height, 0, kBgra, kReversed, "frame");
}
std::string partUpload(int x, int y, int width, int height) {
    return call("glTexSubImage2D", kTexture2d, 0, x, y, width, height, kBgra, kReversed, "frame");
}
std::string pixelStore(GLenum name, int value) { return call("glPixelStorei", name, value); }
Calls unpack(int rowLength, int skipPixels, int skipRows) {
    return {pixelStore(GL_UNPACK_ROW_LENGTH, rowLength), pixelStore(GL_UNPACK_SKIP_PIXELS, skipPixels),
            pixelStore(GL_UNPACK_SKIP_ROWS, skipRows)};
}
std::string parameter(GLenum name, int value) { return call("glTexParameteri", kTexture2d, name, value); }
std::string modulate() { return call("glTexEnvf", GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, float{GL_MODULATE}); }
std::string enable(GLenum what) { return call("glEnable", what); }
std::string disable(GLenum what) { return call("glDisable", what); }
std::string bind(GLuint texture) { return call("glBindTexture", kTexture2d, texture); }
std::string blend(GLenum source) { return call("glBlendFunc", source, GL_ONE_MINUS_SRC_ALPHA); }

Calls join(std::initializer_list<Calls> parts) {
    Calls all;
    for (const Calls& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Calls textureSetUp(GLint filter, bool repeats) {
    Calls calls;
    if (repeats) calls = {parameter(GL_TEXTURE_WRAP_S, GL_REPEAT), parameter(GL_TEXTURE_WRAP_T, GL_REPEAT)};
    return join(
        {calls, {parameter(GL_TEXTURE_MIN_FILTER, filter), parameter(GL_TEXTURE_MAG_FILTER, filter), modulate()}});
}
Calls newTexture(GLuint texture) { return {call("glGenTextures", 1), bind(texture)}; }
Calls viewSetUp(std::array<float, 4> clear) {
    return join({{call("glHint", GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST),
                  call("glClearColor", clear[0], clear[1], clear[2], clear[3]), pixelStore(GL_UNPACK_ALIGNMENT, 1)},
                 newTexture(kView),
                 textureSetUp(GL_NEAREST, false)});
}
Calls backgroundSetUp(GLuint texture) {
    return join({newTexture(texture),
                 textureSetUp(GL_NEAREST, true),
                 unpack(10, 0, 0),
                 {call("glTexImage2D", kTexture2d, 0, GL_RGBA, 10, 10, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                       GlCalls::texels(100, 0xFFF6EEED))}});
}

Calls quad(GLuint texture, const std::array<float, 20>& vertices) {
    return {enable(kTexture2d), bind(texture), GlCalls::quad(vertices), call("glDrawArrays", GL_QUADS, 0, 4)};
}
Calls wholeQuad(GLuint texture) {
    return quad(texture, {0, 1, -1, -1, 0, 1, 1, 1, -1, 0, 1, 0, 1, 1, 0, 0, 0, -1, 1, 0});
}
Calls renderBegin(int width, int height, GLuint background) {
    return join({{call("glClear", GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT), call("glMatrixMode", GL_MODELVIEW),
                  call("glLoadIdentity"), call("glViewport", 0, 0, width, height), call("glMatrixMode", GL_PROJECTION),
                  call("glLoadIdentity")},
                 wholeQuad(background),
                 {disable(kTexture2d), enable(GL_BLEND), blend(GL_ONE)}});
}

class OsrRendererCalls : public ::testing::Test {
protected:
    OsrRendererCalls() : pixels(64 * 64) { gl.setFrame(pixels.data()); }

    Calls paint(OsrRenderer& renderer, int width, int height, const RectList& dirty) {
        gl.take();
        renderer.onPaint(PET_VIEW, dirty, pixels.data(), width, height);
        return gl.take();
    }
    /// Uploads alone, with the state that they read by.
    Calls popupUploads(OsrRenderer& renderer, int width, int height) {
        gl.take();
        renderer.onPaint(PET_POPUP, {}, pixels.data(), width, height);
        Calls calls = gl.take();
        std::erase_if(calls, [](const std::string& line) {
            return !line.starts_with("glTexI") && !line.starts_with("glTexS") && !line.starts_with("glPixel");
        });
        return calls;
    }
    Calls render(OsrRenderer& renderer) {
        gl.take();
        renderer.render();
        return gl.take();
    }

    GlCalls gl;
    std::vector<uint32_t> pixels;
};

}  // namespace

TEST_F(OsrRendererCalls, Initialized_StateAndTexturesOnce) {
    OsrRenderer renderer(false, 1);
    renderer.initialize();
    EXPECT_EQ(gl.take(), join({viewSetUp({1, 1, 1, 1}), backgroundSetUp(2)}));
    renderer.initialize();
    EXPECT_EQ(gl.take(), Calls{});
}

TEST_F(OsrRendererCalls, InitializedWithCloseButton_IconIsUploadedBetweenViewAndBackground) {
    OsrRenderer renderer(true, 1);
    renderer.initialize();
    EXPECT_EQ(gl.take(),
              join({viewSetUp({1, 1, 1, 1}),
                    newTexture(2),
                    textureSetUp(GL_LINEAR, true),
                    {enable(kTexture2d), bind(2)},
                    unpack(72, 0, 0),
                    {call("glTexImage2D", kTexture2d, 0, GL_RGBA, 72, 72, 0, GL_RGBA, GL_UNSIGNED_BYTE, "5184 texels"),
                     disable(kTexture2d)},
                    backgroundSetUp(3)}));
}

TEST_F(OsrRendererCalls, BackgroundColour_AnyAlphaButNoneIsOpaque) {
    struct Case {
        uint32_t argb;
        std::array<float, 4> clear;
    };
    const Case cases[] = {{0xFFFFFFFF, {1, 1, 1, 1}},
                          {0x01336699, {0x33 / 255.0f, 0x66 / 255.0f, 0x99 / 255.0f, 1}},
                          {0x00336699, {0, 0, 0, 0}}};
    for (const Case& each : cases) {
        GlCalls fresh;
        OsrRenderer renderer(false, 1, {.backgroundColor = each.argb});
        renderer.initialize();
        EXPECT_EQ(fresh.take("glClearColor"),
                  Calls{call("glClearColor", each.clear[0], each.clear[1], each.clear[2], each.clear[3])});
    }
}

TEST_F(OsrRendererCalls, FirstPaint_InitializesAndUploadsTheWholeView) {
    OsrRenderer renderer(false, 1);
    renderer.onPaint(PET_VIEW, {CefRect(1, 2, 3, 4)}, pixels.data(), 16, 8);
    EXPECT_EQ(gl.take(), join({viewSetUp({1, 1, 1, 1}),
                               backgroundSetUp(2),
                               {enable(kTexture2d), bind(kView)},
                               unpack(16, 0, 0),
                               {wholeUpload(16, 8), disable(kTexture2d)}}));
}

TEST_F(OsrRendererCalls, PartsDirty_EachIsUploadedByItself) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    EXPECT_EQ(paint(renderer, 16, 8, {CefRect(1, 2, 3, 4), CefRect(10, 0, 6, 8)}),
              (Calls{enable(kTexture2d), bind(kView), pixelStore(GL_UNPACK_ROW_LENGTH, 16),
                     pixelStore(GL_UNPACK_SKIP_PIXELS, 1), pixelStore(GL_UNPACK_SKIP_ROWS, 2), partUpload(1, 2, 3, 4),
                     pixelStore(GL_UNPACK_SKIP_PIXELS, 10), pixelStore(GL_UNPACK_SKIP_ROWS, 0), partUpload(10, 0, 6, 8),
                     disable(kTexture2d)}));
}

TEST_F(OsrRendererCalls, DirtyListThatIsTheWholeView_WholeUpload) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    const Calls whole =
        join({{enable(kTexture2d), bind(kView)}, unpack(16, 0, 0), {wholeUpload(16, 8), disable(kTexture2d)}});
    EXPECT_EQ(paint(renderer, 16, 8, {CefRect(0, 0, 16, 8)}), whole);
    // The same area in other words is a list of parts.
    gl.take();
    renderer.onPaint(PET_VIEW, {CefRect(0, 0, 16, 8), CefRect(0, 0, 1, 1)}, pixels.data(), 16, 8);
    EXPECT_EQ(gl.take("glTexSubImage2D"), (Calls{partUpload(0, 0, 16, 8), partUpload(0, 0, 1, 1)}));
}

TEST_F(OsrRendererCalls, SizeChanged_WholeUploadWhateverIsDirty) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    for (const auto& [width, height] : {std::pair{15, 8}, {15, 9}, {16, 8}}) {
        gl.take();
        renderer.onPaint(PET_VIEW, {CefRect(0, 0, 2, 2)}, pixels.data(), width, height);
        const Calls uploads = gl.take();
        EXPECT_EQ(std::ranges::count(uploads, wholeUpload(width, height)), 1);
        EXPECT_FALSE(std::ranges::any_of(uploads, [](auto& line) { return line.starts_with("glTexSubImage2D"); }));
    }
}

TEST_F(OsrRendererCalls, NothingDirty_NothingUploaded) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    EXPECT_EQ(paint(renderer, 16, 8, {}),
              (Calls{enable(kTexture2d), bind(kView), pixelStore(GL_UNPACK_ROW_LENGTH, 16), disable(kTexture2d)}));
}

TEST_F(OsrRendererCalls, BackgroundNotOpaque_BlendingOnAroundThePaint) {
    OsrRenderer renderer(false, 1, {.backgroundColor = 0x00FFFFFF});
    paint(renderer, 16, 8, {});
    const Calls calls = paint(renderer, 16, 8, {});
    EXPECT_EQ(calls.front(), enable(GL_BLEND));
    EXPECT_EQ(calls.back(), disable(GL_BLEND));
}

TEST_F(OsrRendererCalls, Rendered_BackgroundThenPage) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    EXPECT_EQ(render(renderer), join({renderBegin(16, 8, 2), wholeQuad(kView), {disable(kTexture2d)}}));
}

TEST_F(OsrRendererCalls, RenderedBeforeTheFirstFrame_Nothing) {
    OsrRenderer renderer(true, 1);
    renderer.initialize();
    EXPECT_EQ(render(renderer), Calls{});
}

TEST_F(OsrRendererCalls, RenderedWithCloseButton_IconLastUpsideDownAndTexturesStayOn) {
    OsrRenderer renderer(true, 1);
    paint(renderer, 16, 8, {});
    const float left = 1 - 2 * 56.0f / 16, right = 1 - 2 * 20.0f / 16, bottom = 1 - 2 * 56.0f / 8,
                top = 1 - 2 * 20.0f / 8;
    EXPECT_EQ(
        render(renderer),
        join({renderBegin(16, 8, 3),
              wholeQuad(kView),
              {disable(kTexture2d), enable(GL_BLEND), blend(GL_SRC_ALPHA)},
              quad(2, {0, 1, left, top, 0, 1, 1, right, top, 0, 1, 0, right, bottom, 0, 0, 0, left, bottom, 0})}));
}

TEST_F(OsrRendererCalls, CloseButton_MarginFromTopAndRightAtAnySizeAndScale) {
    struct Case {
        float scale;
        int width, height, margin, size;  // device pixels
    };
    const Case cases[] = {{1, 320, 200, 20, 36},  {1, 897, 200, 20, 36},   {1, 898, 600, 20, 36},
                          {1.25, 640, 9, 25, 45}, {1.5, 1345, 70, 30, 54}, {2, 3840, 2160, 40, 72}};
    pixels.assign(size_t{3840} * 2160, 0);
    gl.setFrame(pixels.data());
    for (const Case& each : cases) {
        OsrRenderer renderer(true, each.scale);
        paint(renderer, each.width, each.height, {});
        const auto width = static_cast<float>(each.width), height = static_cast<float>(each.height);
        const auto margin = static_cast<float>(each.margin), end = static_cast<float>(each.margin + each.size);
        const float left = 1 - 2 * end / width, right = 1 - 2 * margin / width, bottom = 1 - 2 * end / height,
                    top = 1 - 2 * margin / height;
        const Calls calls = render(renderer);
        ASSERT_GE(calls.size(), 2u);
        EXPECT_EQ(calls[calls.size() - 2], GlCalls::quad({0, 1, left,  top,    0, 1, 1, right, top,    0,
                                                          1, 0, right, bottom, 0, 0, 0, left,  bottom, 0}))
            << each.width << " at " << each.scale;
    }
}

TEST_F(OsrRendererCalls, BackgroundNotOpaque_BlendingSetTwiceAndOffAtTheEnd) {
    OsrRenderer renderer(true, 1, {.backgroundColor = 0});
    paint(renderer, 16, 8, {});
    const Calls calls = render(renderer);
    const Calls begin = join({renderBegin(16, 8, 3), {blend(GL_ONE), enable(GL_BLEND)}, wholeQuad(kView)});
    ASSERT_GT(calls.size(), begin.size());
    EXPECT_EQ(Calls(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(begin.size())), begin);
    EXPECT_EQ(calls.back(), disable(GL_BLEND));
}

TEST_F(OsrRendererCalls, ViewTurned_RotatedBeforeThePage) {
    OsrRenderer renderer(false, 1, {.spinX = 10, .spinY = -20});
    paint(renderer, 16, 8, {});
    EXPECT_EQ(render(renderer),
              join({renderBegin(16, 8, 2),
                    {call("glRotatef", -10.0f, 1.0f, 0.0f, 0.0f), call("glRotatef", 20.0f, 0.0f, 1.0f, 0.0f)},
                    wholeQuad(kView),
                    {disable(kTexture2d)}}));
}

TEST_F(OsrRendererCalls, UpdateRectShown_RedFrameAroundTheFirstDirtyRectangle) {
    OsrRenderer renderer(false, 1, {.showUpdateRect = true});
    paint(renderer, 16, 8, {CefRect(3, 2, 5, 4), CefRect(0, 0, 1, 1)});
    EXPECT_EQ(render(renderer),
              join({renderBegin(16, 8, 2),
                    wholeQuad(kView),
                    {disable(kTexture2d), call("glPushAttrib", 0xFFFFF), call("glPushMatrix"), call("glLoadIdentity"),
                     call("glOrtho", 0.0, 16.0, 8.0, 0.0, 0.0, 1.0), call("glLineWidth", 1.0f),
                     call("glColor3f", 1.0f, 0.0f, 0.0f), call("glBegin", GL_LINE_STRIP), call("glVertex2i", 4, 2),
                     call("glVertex2i", 8, 2), call("glVertex2i", 8, 5), call("glVertex2i", 4, 5),
                     call("glVertex2i", 4, 2), call("glEnd"), call("glPopMatrix"), call("glPopAttrib")}}));
}

TEST_F(OsrRendererCalls, PopupPlaced_MovedIntoTheViewAndNeverBeforeItsEdge) {
    struct Case {
        CefRect asked, expected;
    };
    const Case cases[] = {{{2, 3, 4, 5}, {2, 3, 4, 5}},                     // inside
                          {{14, 3, 4, 5}, {12, 3, 4, 5}},                   // past the right edge: moved left
                          {{2, 7, 4, 5}, {2, 3, 4, 5}},                     // past the lower edge: moved up
                          {{-3, -2, 4, 5}, {0, 0, 4, 5}},                   // before the edges
                          {{1, 1, 40, 50}, {0, 0, 40, 50}},                 // larger than the view
                          {{2147483647, 2147483647, 4, 5}, {12, 3, 4, 5}},  // beyond an int
                          {{-2147483647 - 1, 0, 2147483647, 1}, {0, 0, 2147483647, 1}}};  // as wide as an int
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    for (const Case& each : cases) {
        renderer.onPopupSize(each.asked);
        EXPECT_EQ(renderer.getPopupRect(), each.expected) << each.asked.x << "," << each.asked.y;
        EXPECT_FALSE(renderer.isPopupRectEmpty());
    }
}

TEST_F(OsrRendererCalls, PopupOfNoSize_PlaceStaysAsItWas) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    EXPECT_TRUE(renderer.isPopupRectEmpty());
    renderer.onPopupSize({2, 3, 0, 5});
    EXPECT_TRUE(renderer.isPopupRectEmpty());
    renderer.onPopupSize({2, 3, 4, 5});
    renderer.onPopupSize({9, 9, 4, 0});
    EXPECT_EQ(renderer.getPopupRect(), CefRect(2, 3, 4, 5));
    renderer.clearPopupRects();
    EXPECT_TRUE(renderer.isPopupRectEmpty());
    EXPECT_EQ(renderer.getPopupRect(), CefRect());
}

TEST_F(OsrRendererCalls, PopupPainted_UploadedIntoTheViewWhereItLies) {
    struct Case {
        const char* name;
        CefRect place;
        int rowLength, skipPixels, skipRows, x, y, width, height;
    };
    const Case cases[] = {{"inside", {2, 3, 4, 5}, 4, 0, 0, 2, 3, 4, 5},
                          {"past the right edge", {14, 3, 4, 5}, 4, 0, 0, 12, 3, 4, 5},
                          {"negative x", {-3, 1, 8, 5}, 8, 3, 0, 0, 1, 5, 5},
                          {"negative y", {1, -2, 4, 5}, 4, 0, 2, 1, 0, 4, 3},
                          {"larger than the view", {1, 1, 20, 10}, 20, 0, 0, 0, 0, 16, 8}};
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    for (const Case& each : cases) {
        renderer.onPopupSize(each.place);
        EXPECT_EQ(popupUploads(renderer, each.place.width, each.place.height),
                  join({unpack(each.rowLength, each.skipPixels, each.skipRows),
                        {partUpload(each.x, each.y, each.width, each.height)}}))
            << each.name;
    }
}

TEST_F(OsrRendererCalls, PopupPaintedThatLiesNowhereInTheView_NothingUploaded) {
    OsrRenderer renderer(false, 1);
    paint(renderer, 16, 8, {});
    EXPECT_EQ(popupUploads(renderer, 4, 4), Calls{}) << "no popup is shown";
    renderer.onPopupSize({-10, 0, 4, 4});
    EXPECT_EQ(popupUploads(renderer, 4, 4), Calls{}) << "left of the view";
    renderer.onPopupSize({12, 0, 4, 4});
    paint(renderer, 8, 8, {});
    EXPECT_EQ(popupUploads(renderer, 4, 4), Calls{}) << "the view has become narrower";
    OsrRenderer unpainted(false, 1);
    unpainted.onPopupSize({0, 0, 4, 4});
    EXPECT_EQ(popupUploads(unpainted, 4, 4).back(),
              GlCalls::call("glTexImage2D", kTexture2d, 0, GL_RGBA, 10, 10, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                            GlCalls::texels(100, 0xFFF6EEED)))
        << "nothing but the background before the view has a picture";
}

TEST_F(OsrRendererCalls, Destroyed_ViewTextureIsDeletedIfThereIsOne) {
    {
        const OsrRenderer unused(false, 1);
    }
    EXPECT_EQ(gl.take(), Calls{});
    {
        OsrRenderer renderer(false, 1);
        renderer.initialize();
        gl.take();
    }
    EXPECT_EQ(gl.take(), Calls{call("glDeleteTextures", 1, kView)});
}

// The render thread asks in every cycle, beside the engine thread that opens and closes popups.
TEST(OsrRendererThreads, PopupPlacedBesideTheQuestion_AnswerIsAlwaysOneOfBoth) {
    OsrRenderer renderer(false, 1);
    std::atomic<bool> done{false};
    std::atomic<int> empty{0}, open{0};
    std::thread renderThread([&] {
        while (!done) ++(renderer.isPopupRectEmpty() ? empty : open);
    });
    for (int i = 0; i < 200'000 || ((!empty || !open) && i < 50'000'000); ++i) {
        renderer.onPopupSize({1, 2, 3, 4});
        renderer.clearPopupRects();
    }
    done = true;
    renderThread.join();
    EXPECT_GT(empty, 0);
    EXPECT_GT(open, 0);
}

}  // namespace ZEMO::UI
