#pragma once

#include <windows.h>

#include <GL/gl.h>

#include <algorithm>
#include <format>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "support/import_replaced.h"

namespace ZEMO::Test {

/// A function's name as a template argument.
template <size_t length>
struct CallName {
    constexpr CallName(const char (&name)[length]) { std::copy_n(name, length, text); }
    char text[length];
};

/// What the code under test asked of OpenGL and of the window system, in order. While this lives none of these calls
/// reaches the real one, so that calls which leave no trace in a picture can be looked at; no context is needed. One at
/// a time, one thread.
class GlCalls {
public:
    GlCalls() {
        current = this;
        replace<"glHint">(&glHint);
        replace<"glClearColor">(&glClearColor);
        replace<"glPixelStorei">(&glPixelStorei);
        replace<"glTexParameteri">(&glTexParameteri);
        replace<"glTexEnvf">(&glTexEnvf);
        replace<"glBindTexture">(&glBindTexture);
        replace<"glEnable">(&glEnable);
        replace<"glDisable">(&glDisable);
        replace<"glClear">(&glClear);
        replace<"glMatrixMode">(&glMatrixMode);
        replace<"glLoadIdentity">(&glLoadIdentity);
        replace<"glViewport">(&glViewport);
        replace<"glDrawArrays">(&glDrawArrays);
        replace<"glBlendFunc">(&glBlendFunc);
        replace<"glRotatef">(&glRotatef);
        replace<"glPushAttrib">(&glPushAttrib);
        replace<"glPopAttrib">(&glPopAttrib);
        replace<"glPushMatrix">(&glPushMatrix);
        replace<"glPopMatrix">(&glPopMatrix);
        replace<"glOrtho">(&glOrtho);
        replace<"glLineWidth">(&glLineWidth);
        replace<"glColor3f">(&glColor3f);
        replace<"glBegin">(&glBegin);
        replace<"glEnd">(&glEnd);
        replace<"glVertex2i">(&glVertex2i);
        put("glGenTextures", &genTextures);
        put("glDeleteTextures", &deleteTextures);
        put("glTexImage2D", &texImage);
        put("glTexSubImage2D", &texSubImage);
        put("glInterleavedArrays", &interleavedArrays);
    }
    ~GlCalls() { current = nullptr; }
    GlCalls(const GlCalls&) = delete;
    GlCalls& operator=(const GlCalls&) = delete;

    std::vector<std::string> take() { return std::exchange(list, {}); }
    /// Calls of that name only, out of what has come so far; the rest is dropped.
    std::vector<std::string> take(const std::string& name) {
        std::vector<std::string> all = take();
        std::erase_if(all, [&](const std::string& call) { return !call.starts_with(name + "("); });
        return all;
    }
    /// The pixels that count as the frame's own.
    void setFrame(const void* pixels) { frame = pixels; }

    /// A call as it stands in the list.
    template <class... Arguments>
    static std::string call(const std::string& name, Arguments... arguments) {
        std::string text;
        ((text += (text.empty() ? "" : ", ") + std::format("{}", arguments)), ...);
        return name + "(" + text + ")";
    }
    static std::string quad(const std::array<float, 20>& vertices) {
        return call("glInterleavedArrays", GL_T2F_V3F, 0, textOf(vertices));
    }
    static std::string texels(size_t count, uint32_t texel) { return std::format("{} texels {:08X}", count, texel); }

    /// Adds a line of a test's own.
    static void note(std::string line) {
        if (current) current->list.push_back(std::move(line));
    }
    template <CallName name, class Result, class... Arguments>
    void replace(Result(APIENTRY* function)(Arguments...)) {
        static_cast<void>(function);
        put(name.text, &Recorded<name, Result, Arguments...>::run);
    }
    template <class Function>
    void put(const char* name, Function* function) {
        replaced.push_back(std::make_unique<ImportReplaced>(name, function));
    }

private:
    template <CallName name, class Result, class... Arguments>
    struct Recorded {
        static Result APIENTRY run(Arguments... arguments) {
            note(call(name.text, arguments...));
            return Result();
        }
    };

    static std::string textOf(std::span<const float> numbers) {
        std::string text;
        for (const float number : numbers) text += std::format("{} ", number);
        return text;
    }
    static std::string textOf(const void* pixels, size_t count) {
        if (current && pixels == current->frame) return "frame";
        const std::span<const uint32_t> words(static_cast<const uint32_t*>(pixels), count);
        const bool plain = std::ranges::all_of(words, [&](uint32_t word) { return word == words[0]; });
        return plain ? texels(count, words[0]) : std::format("{} texels", count);
    }
    static void APIENTRY genTextures(GLsizei count, GLuint* textures) {
        note(call("glGenTextures", count));
        for (int i = 0; i < count && current; ++i) textures[i] = ++current->lastTexture;
    }
    static void APIENTRY deleteTextures(GLsizei count, const GLuint* textures) {
        note(call("glDeleteTextures", count, textures[0]));
    }
    static void APIENTRY texImage(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                                  GLint border, GLenum format, GLenum type, const void* pixels) {
        note(call("glTexImage2D", target, level, internal, width, height, border, format, type,
                  textOf(pixels, static_cast<size_t>(width) * height)));
    }
    static void APIENTRY texSubImage(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                                     GLenum format, GLenum type, const void* pixels) {
        note(call("glTexSubImage2D", target, level, x, y, width, height, format, type,
                  textOf(pixels, static_cast<size_t>(width) * height)));
    }
    static void APIENTRY interleavedArrays(GLenum format, GLsizei stride, const void* vertices) {
        note(call("glInterleavedArrays", format, stride, textOf({static_cast<const float*>(vertices), 20})));
    }

    static inline GlCalls* current = nullptr;
    std::vector<std::unique_ptr<ImportReplaced>> replaced;
    std::vector<std::string> list;
    GLuint lastTexture = 0;
    const void* frame = nullptr;
};

}  // namespace ZEMO::Test
