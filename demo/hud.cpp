#include "hud.h"

#include "gl.h"

#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

namespace demo {

namespace {

struct DcCloser {
    void operator()(HDC dc) const { DeleteDC(dc); }
};
struct GdiCloser {
    void operator()(HGDIOBJ object) const { DeleteObject(object); }
};
using MemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, DcCloser>;
template <class T>
using GdiObject = std::unique_ptr<std::remove_pointer_t<T>, GdiCloser>;

void line(float x1, float y1, float x2, float y2) { glVertex2f(x1, y1), glVertex2f(x2, y2); }

void drawCorners(float width, float height, float scale) {
    const float margin = 14 * scale + 0.5f, arm = 26 * scale;
    const float right = width - margin, bottom = height - margin;
    glLineWidth(scale < 1.5f ? 1.0f : 2.0f);
    glColor4f(0.55f, 0.80f, 1.0f, 0.55f);
    glBegin(GL_LINES);
    line(margin, margin, margin + arm, margin), line(margin, margin, margin, margin + arm);
    line(right, margin, right - arm, margin), line(right, margin, right, margin + arm);
    line(margin, bottom, margin + arm, bottom), line(margin, bottom, margin, bottom - arm);
    line(right, bottom, right - arm, bottom), line(right, bottom, right, bottom - arm);
    glEnd();
}

}  // namespace

TextLabel::~TextLabel() {
    if (texture) glDeleteTextures(1, &texture);
}

void TextLabel::set(const std::wstring& newText, int newHeightPx, bool isBold) {
    if (newText == text && newHeightPx == fontHeight) return;
    text = newText;
    fontHeight = newHeightPx;
    widthPx = heightPx = 0;
    if (text.empty()) return;

    const MemoryDc dc(CreateCompatibleDC(nullptr));
    const GdiObject<HFONT> font(CreateFontW(-fontHeight, 0, 0, 0, isBold ? FW_SEMIBOLD : FW_NORMAL, FALSE, FALSE, FALSE,
                                            DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                            ANTIALIASED_QUALITY, DEFAULT_PITCH, L"Segoe UI"));
    const HGDIOBJ oldFont = SelectObject(dc.get(), font.get());
    SIZE size{};
    GetTextExtentPoint32W(dc.get(), text.c_str(), static_cast<int>(text.size()), &size);
    widthPx = size.cx + 2;
    heightPx = size.cy;

    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = widthPx;
    info.bmiHeader.biHeight = -heightPx;  // negative: rows from top to bottom
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const GdiObject<HBITMAP> bitmap(CreateDIBSection(dc.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HGDIOBJ oldBitmap = SelectObject(dc.get(), bitmap.get());
    SetTextColor(dc.get(), RGB(255, 255, 255));
    SetBkMode(dc.get(), TRANSPARENT);
    TextOutW(dc.get(), 1, 0, text.c_str(), static_cast<int>(text.size()));
    GdiFlush();

    // GDI leaves alpha alone; white text on black carries its coverage in each colour.
    const auto* pixels = static_cast<const std::uint8_t*>(bits);
    std::vector<std::uint8_t> coverage(static_cast<std::size_t>(widthPx) * heightPx);
    for (std::size_t i = 0; i < coverage.size(); ++i) coverage[i] = pixels[i * 4 + 1];
    SelectObject(dc.get(), oldBitmap);
    SelectObject(dc.get(), oldFont);

    if (!texture) glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA8, widthPx, heightPx, 0, GL_ALPHA, GL_UNSIGNED_BYTE, coverage.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

void TextLabel::draw(float x, float y, float red, float green, float blue, float alpha) const {
    if (!texture || !widthPx) return;
    const float right = x + static_cast<float>(widthPx), bottom = y + static_cast<float>(heightPx);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glColor4f(red, green, blue, alpha);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(x, y);
    glTexCoord2f(1, 0), glVertex2f(right, y);
    glTexCoord2f(1, 1), glVertex2f(right, bottom);
    glTexCoord2f(0, 1), glVertex2f(x, bottom);
    glEnd();
    glDisable(GL_TEXTURE_2D);
}

void Hud::draw(int width, int height, float scale, const Content& content) {
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): a pixel size, never negative
    const auto px = [scale](float size) { return static_cast<int>(size * scale + 0.5f); };
    title.set(content.title, px(20), true);
    status.set(content.status, px(14), false);
    figures.set(content.figures, px(14), false);
    keys.set(content.keys, px(14), false);

    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    drawCorners(w, h, scale);
    const auto left = static_cast<float>(px(30));
    title.draw(left, static_cast<float>(px(26)), 0.94f, 0.97f, 1.0f, 0.95f);
    status.draw(left, static_cast<float>(px(53)), 0.62f, 0.80f, 1.0f, 0.85f);
    figures.draw(left, static_cast<float>(height - px(66)), 0.72f, 0.80f, 0.92f, 0.75f);
    keys.draw(left, static_cast<float>(height - px(46)), 0.72f, 0.80f, 0.92f, 0.75f);
    glDisable(GL_BLEND);
}

}  // namespace demo
