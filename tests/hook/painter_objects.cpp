#include "hook/painter_objects.h"

#include <GL/gl.h>

#include <atomic>

#include "core/wine/import_table.h"

namespace ZEMO::Test {
namespace {

std::atomic<size_t> made{0}, deleted{0}, textures{0};

HGLRC WINAPI createContext(HDC dc) {
    const HGLRC context = wglCreateContext(dc);
    made += context != nullptr;
    return context;
}

BOOL WINAPI deleteContext(HGLRC context) {
    const BOOL done = wglDeleteContext(context);
    deleted += done != FALSE;
    return done;
}

void WINAPI genTextures(GLsizei count, GLuint* names) {
    textures += static_cast<size_t>(count);
    glGenTextures(count, names);
}

}  // namespace

void PainterObjects::watch(HMODULE hookModule) {
    const auto lead = [&](const char* name, auto* function) {
        Core::Wine::replaceImport(Core::Wine::findImport(hookModule, name), reinterpret_cast<void*>(function));
    };
    lead("wglCreateContext", &createContext);
    lead("wglDeleteContext", &deleteContext);
    lead("glGenTextures", &genTextures);
}

size_t PainterObjects::contextsMade() { return made; }
size_t PainterObjects::contextsLeft() { return made - deleted; }
size_t PainterObjects::texturesMade() { return textures; }

}  // namespace ZEMO::Test
