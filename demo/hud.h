#pragma once

#include <string>

namespace demo {

/// A line of text as a texture, drawn with GDI. The texture is made again only when the text changes.
class TextLabel {
public:
    TextLabel() = default;
    ~TextLabel();
    TextLabel(const TextLabel&) = delete;
    TextLabel& operator=(const TextLabel&) = delete;

    void set(const std::wstring& newText, int newHeightPx, bool isBold);
    /// `x`, `y`: the upper left corner; colour with straight alpha.
    void draw(float x, float y, float red, float green, float blue, float alpha) const;
    float width() const { return static_cast<float>(widthPx); }

private:
    std::wstring text;
    int fontHeight = 0;
    int widthPx = 0;
    int heightPx = 0;
    unsigned texture = 0;
};

/// The game's own frame around the view: title, figures, key hints. It belongs to the game, not to the page.
class Hud {
public:
    struct Content {
        std::wstring title;
        std::wstring status;
        std::wstring figures;
        std::wstring keys;
    };

    /// Expects a projection in client pixels with y downward. `scale` is 1 at 96 dpi.
    void draw(int width, int height, float scale, const Content& content);

private:
    TextLabel title;
    TextLabel status;
    TextLabel figures;
    TextLabel keys;
};

}  // namespace demo
