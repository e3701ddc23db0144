#include <gtest/gtest.h>

#include <array>
#include <map>

#include "hook/gl_game.h"
#include "support/http_server.h"

// A game that leaves OpenGL in an unusual state at its swap: all of it is the same afterwards. Constants that Windows'
// header does not have are those of the OpenGL registry.
namespace ZEMO::Test {
namespace {

constexpr GLenum kValues[] = {GL_VIEWPORT,
                              GL_SCISSOR_BOX,
                              GL_DEPTH_RANGE,
                              GL_COLOR_CLEAR_VALUE,
                              GL_DEPTH_CLEAR_VALUE,
                              GL_STENCIL_CLEAR_VALUE,
                              GL_COLOR_WRITEMASK,
                              GL_DEPTH_WRITEMASK,
                              GL_STENCIL_WRITEMASK,
                              GL_DEPTH_FUNC,
                              GL_STENCIL_FUNC,
                              GL_STENCIL_REF,
                              GL_STENCIL_VALUE_MASK,
                              GL_STENCIL_FAIL,
                              GL_STENCIL_PASS_DEPTH_FAIL,
                              GL_STENCIL_PASS_DEPTH_PASS,
                              GL_CULL_FACE_MODE,
                              GL_FRONT_FACE,
                              GL_POLYGON_MODE,
                              GL_POLYGON_OFFSET_FACTOR,
                              GL_POLYGON_OFFSET_UNITS,
                              GL_LINE_WIDTH,
                              GL_POINT_SIZE,
                              GL_SHADE_MODEL,
                              GL_BLEND_SRC,
                              GL_BLEND_DST,
                              GL_LOGIC_OP_MODE,
                              GL_ALPHA_TEST_FUNC,
                              GL_ALPHA_TEST_REF,
                              GL_CURRENT_COLOR,
                              GL_CURRENT_TEXTURE_COORDS,
                              GL_CURRENT_NORMAL,
                              GL_MATRIX_MODE,
                              GL_MODELVIEW_MATRIX,
                              GL_PROJECTION_MATRIX,
                              GL_TEXTURE_MATRIX,
                              GL_MODELVIEW_STACK_DEPTH,
                              GL_TEXTURE_BINDING_2D,
                              GL_UNPACK_ALIGNMENT,
                              GL_UNPACK_ROW_LENGTH,
                              GL_UNPACK_SKIP_ROWS,
                              GL_UNPACK_SKIP_PIXELS,
                              GL_UNPACK_SWAP_BYTES,
                              GL_PACK_ROW_LENGTH,
                              GL_READ_BUFFER,
                              GL_DRAW_BUFFER,
                              GL_RENDER_MODE,
                              GL_FOG_MODE,
                              GL_FOG_COLOR,
                              GL_LIGHT_MODEL_AMBIENT,
                              GL_LIST_BASE,
                              GL_VERTEX_ARRAY_SIZE,
                              GL_VERTEX_ARRAY_STRIDE,
                              GL_ATTRIB_STACK_DEPTH,
                              GL_RED_SCALE,
                              GL_RED_BIAS,
                              GL_ZOOM_X,
                              0x84E0 /* active texture */,
                              0x84E1 /* client active texture */,
                              0x8B8D /* current program */,
                              0x8894 /* array buffer */,
                              0x8895 /* element buffer */,
                              0x88EF /* unpack buffer */,
                              0x88ED /* pack buffer */,
                              0x85B5 /* vertex array */,
                              0x8CA6 /* draw framebuffer */,
                              0x8CAA /* read framebuffer */,
                              0x80C9 /* blend source, RGB */,
                              0x80CB /* blend source, alpha */,
                              0x8009 /* blend equation */,
                              0x883D /* blend equation, alpha */,
                              0x8005 /* blend colour */,
                              0x80AA /* sample coverage */,
                              0x8919 /* sampler */};
constexpr GLenum kSwitches[] = {GL_BLEND,
                                GL_DEPTH_TEST,
                                GL_STENCIL_TEST,
                                GL_SCISSOR_TEST,
                                GL_CULL_FACE,
                                GL_ALPHA_TEST,
                                GL_LIGHTING,
                                GL_LIGHT1,
                                GL_FOG,
                                GL_TEXTURE_1D,
                                GL_TEXTURE_2D,
                                GL_DITHER,
                                GL_COLOR_LOGIC_OP,
                                GL_POLYGON_OFFSET_FILL,
                                GL_NORMALIZE,
                                GL_CLIP_PLANE0,
                                GL_LINE_SMOOTH,
                                GL_LINE_STIPPLE,
                                GL_POLYGON_STIPPLE,
                                GL_COLOR_MATERIAL,
                                GL_VERTEX_ARRAY,
                                GL_COLOR_ARRAY,
                                GL_TEXTURE_COORD_ARRAY,
                                0x809D /* multisample */,
                                0x8DB9 /* framebuffer sRGB */,
                                0x8C89 /* rasterizer discard */};

template <class... Arguments>
void call(const char* name, Arguments... arguments) {
    using Function = void WINAPI(Arguments...);
    auto* const function = reinterpret_cast<Function*>(reinterpret_cast<void*>(wglGetProcAddress(name)));
    ASSERT_TRUE(function) << name;
    function(arguments...);
}

std::map<GLenum, std::array<GLfloat, 16>> state() {
    std::map<GLenum, std::array<GLfloat, 16>> all;
    for (const GLenum name : kValues) glGetFloatv(name, all[name].data());
    for (const GLenum name : kSwitches) all[name + 0x10000][0] = glIsEnabled(name);
    glGetTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, all[1].data());
    glGetTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, all[2].data());
    glGetLightfv(GL_LIGHT1, GL_DIFFUSE, all[3].data());
    all[4][0] = static_cast<GLfloat>(glGetError());
    return all;
}

void makeUnusual() {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    call<GLenum>("glActiveTexture", 0x84C3);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    call<GLenum>("glClientActiveTexture", 0x84C1);
    GLuint buffers[2]{};
    call<GLsizei, GLuint*>("glGenBuffers", 2, buffers);
    call<GLenum, GLuint>("glBindBuffer", 0x8892, buffers[0]);
    call<GLenum, GLuint>("glBindBuffer", 0x88EC, buffers[1]);  // a page upload would read from it
    GLuint framebuffer = 0;
    call<GLsizei, GLuint*>("glGenFramebuffers", 1, &framebuffer);
    call<GLenum, GLuint>("glBindFramebuffer", 0x8CA9, framebuffer);  // drawing would go there
    GLuint query = 0;
    call<GLsizei, GLuint*>("glGenQueries", 1, &query);
    call<GLenum, GLuint>("glBeginQuery", 0x8914, query);  // it counts samples
    for (const GLenum name : {GL_BLEND, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST, GL_CULL_FACE, GL_ALPHA_TEST,
                              GL_LIGHTING, GL_LIGHT1, GL_FOG, GL_COLOR_LOGIC_OP, GL_CLIP_PLANE0, GL_POLYGON_STIPPLE})
        glEnable(name);
    glDisable(GL_TEXTURE_2D);
    glEnable(0x8DB9);
    glEnable(0x8C89);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glViewport(3, 4, 50, 60);
    glScissor(7, 8, 20, 21);
    glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_FALSE);
    glDepthMask(GL_FALSE);
    glStencilMask(0x0F);
    glDepthFunc(GL_NEVER);
    glStencilFunc(GL_GREATER, 3, 0x55);
    glStencilOp(GL_INCR, GL_DECR, GL_INVERT);
    glBlendFunc(GL_ZERO, GL_DST_COLOR);
    glLogicOp(GL_XOR);
    glAlphaFunc(GL_LESS, 0.25f);
    glCullFace(GL_FRONT_AND_BACK);
    glFrontFace(GL_CW);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glShadeModel(GL_FLAT);
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 77);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 5);
    glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_TRUE);
    glPixelTransferf(GL_RED_SCALE, 0.5f);
    glMatrixMode(GL_PROJECTION);
    glOrtho(0, 10, 0, 20, -1, 1);
    glMatrixMode(GL_TEXTURE);
    glRotatef(30, 0, 0, 1);
    glListBase(12);
}

}  // namespace

TEST(GlHookState, UnusualInTheGame_SameAfterTheHookAndThePageIsRight) {
    HttpServer server;
    server.serveHtml("/", quarteredPage());
    GameHost game(hookGame());
    const HMODULE module = useHookModule(L"hook");
    ASSERT_TRUE(module);
    GlGame::watchFrames(module);
    GlGame gl(game.window);
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    const Presented& frame = GlGame::presented();
    ASSERT_TRUE(game.waitFor("the page", [&] {
        gl.present();
        return frame.at(5, 5) == 0x112233;
    }));
    glClearColor(40 / 255.0f, 80 / 255.0f, 120 / 255.0f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    makeUnusual();
    const auto before = state();
    const HGLRC context = wglGetCurrentContext();
    const HDC dc = wglGetCurrentDC();
    gl.swap();
    EXPECT_EQ(wglGetCurrentContext(), context);
    EXPECT_EQ(wglGetCurrentDC(), dc);
    const auto after = state();
    ASSERT_EQ(before.size(), after.size());
    for (const auto& [name, value] : before) EXPECT_EQ(value, after.at(name)) << "0x" << std::hex << name;
    call<GLenum>("glEndQuery", 0x8914);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR}) << "the game's query is still under way";
}

}  // namespace ZEMO::Test
