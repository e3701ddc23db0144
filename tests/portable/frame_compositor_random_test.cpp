#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "portable/frame_consumer.h"
#include "render/frame_compositor.h"

// Random views, popups and close buttons against a plain model of the compositor, and against a consumer that holds
// only what the dirty rectangles gave it.
namespace ZEMO::UI {
namespace {

/// Edges, exclusive at right and bottom, wide enough for any sum of two ints.
struct Edges {
    long long l = 0, t = 0, r = 0, b = 0;
    bool has(long long x, long long y) const { return l <= x && x < r && t <= y && y < b; }
    bool none() const { return r <= l || b <= t; }
    bool meets(const Edges& o) const { return !none() && !o.none() && l < o.r && o.l < r && t < o.b && o.t < b; }
    friend bool operator==(const Edges&, const Edges&) = default;
};

/// The compositor told a second time, pixel by pixel and without care for speed: for every pixel of the frame, in which
/// areas does it lie, and what is drawn there last.
class Model {
public:
    struct Out {
        Pixels pixels;
        Edges prescribed;   // the rectangle to report when popup and icon never met
        bool exact = true;  // false when more may be reported, so that the consumer's copy stays right
    };

    std::vector<uint8_t> icon;
    int iconWidth = 0, iconHeight = 0, closeSize = 0, closeMargin = 0;
    bool open = false;
    int popupLeft = 0, popupTop = 0;
    bool force = false;

    void show(bool visible) {
        open = visible;
        if (!visible) list.clear();
    }

    Out paintView(bool drawClose, const Pixels& frame, int w, int h) {
        const bool resized = w != width || h != height;
        Edges dirty;
        const Edges whole{0, 0, w, h};
        if (resized) {
            dirty = whole;
            composing = false;
        } else if (std::exchange(force, false)) {
            dirty = whole;
        } else {
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    if (page[static_cast<size_t>(y) * w + x] == frame[static_cast<size_t>(y) * w + x]) continue;
                    if (dirty.none()) dirty = {x, y, x + 1, y + 1};
                    dirty = {std::min<long long>(dirty.l, x), dirty.t, std::max<long long>(dirty.r, x + 1), y + 1};
                }
            }
        }
        width = w;
        height = h;
        page = frame;
        const bool popupUsed = open && !list.empty();
        if (!popupUsed && !drawClose) {
            Out out{page, dirty, !overlaysShown};
            composing = overlaysShown = false;
            lastPopup = {};
            lastPopup.l = lastPopup.r = keptX;
            lastPopup.t = lastPopup.b = keptY;
            lastCloseSize = 0;
            met = false;
            return out;
        }
        const Edges popup = popupUsed ? popupArea() : Edges{};
        const int size = drawClose && closeSize > 0 ? closeSize : 0;
        const int closeX = size > 0 ? w - closeMargin - size : 0;
        const Edges close{closeX, closeMargin, closeX + size, closeMargin + size};
        const Edges oldClose{lastCloseX, lastCloseY, lastCloseX + lastCloseSize, lastCloseY + lastCloseSize};
        const bool popupNew = !(popup == lastPopup);
        const bool closeNew = closeX != lastCloseX || closeMargin != lastCloseY || size != lastCloseSize;
        const bool popupAgain = popupUsed && (popupNew || dirty.meets(popup));
        const bool closeAgain = drawClose && (closeNew || popupAgain || dirty.meets(close));
        const bool scratch = !composing;

        met = met || popup.meets(close) || lastPopup.meets(close) || popup.meets(oldClose) || lastPopup.meets(oldClose);
        Out out{{}, scratch ? whole : dirty, !met};
        if (closeAgain && !closeNew && !scratch && dirty.meets(close)) out.exact = false;
        if (strayed && popupAgain && !popupNew) out.exact = false;
        if (popupAgain) strayed = false;
        if (scratch) picture = page;
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const size_t i = static_cast<size_t>(y) * w + x;
                const bool restored = scratch || dirty.has(x, y) || (popupNew && lastPopup.has(x, y)) ||
                                      (closeNew && oldClose.has(x, y)) || (popupAgain && popup.has(x, y)) ||
                                      (closeAgain && close.has(x, y));
                if (restored) picture[i] = page[i];
                if (popupUsed && (scratch || popupAgain)) drawPopupPixel(x, y, popup);
                if (drawClose && (scratch || closeAgain)) drawClosePixel(x, y);
            }
        }
        if (popupNew) grow(out.prescribed, lastPopup), grow(out.prescribed, popup);
        if (closeNew) grow(out.prescribed, oldClose), grow(out.prescribed, close);
        composing = overlaysShown = true;
        lastPopup = popup;
        keptX = popup.l;
        keptY = popup.t;
        lastCloseX = closeX;
        lastCloseY = closeMargin;
        lastCloseSize = size;
        out.pixels = picture;
        return out;
    }

    std::optional<Out> paintPopup(bool drawClose, const Pixels& frame, int w, int h) {
        list = frame;
        listWidth = w;
        listHeight = h;
        if (page.empty() || !composing) return std::nullopt;
        const Edges popup = popupArea();
        if (!(popup == lastPopup)) strayed = true;
        Out out{{}, clip(popup), true};
        if (popup.none()) out.prescribed = {};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (popup.has(x, y))
                    picture[static_cast<size_t>(y) * width + x] = page[static_cast<size_t>(y) * width + x];
                drawPopupPixel(x, y, popup);
            }
        }
        const Edges close{width - closeMargin - closeSize, closeMargin, width - closeMargin, closeMargin + closeSize};
        if (out.prescribed.meets(close)) met = true;
        if (drawClose && closeSize > 0 && out.prescribed.meets(close)) {
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) drawClosePixel(x, y);
            }
            grow(out.prescribed, close);
        }
        out.pixels = picture;
        return out;
    }

private:
    Edges popupArea() const {
        return {popupLeft, popupTop, static_cast<long long>(popupLeft) + listWidth,
                static_cast<long long>(popupTop) + listHeight};
    }
    Edges clip(Edges e) const {
        const long long w = e.r - e.l, h = e.b - e.t;
        e.l = std::max(0ll, e.l);
        e.t = std::max(0ll, e.t);
        e.r = e.l + std::min(w, width - e.l);
        e.b = e.t + std::min(h, height - e.t);
        return e.none() ? Edges{} : e;
    }
    void grow(Edges& e, const Edges& by) const {
        if (by.none()) return;
        e = clip(e.none() ? by
                          : Edges{std::min(e.l, by.l), std::min(e.t, by.t), std::max(e.r, by.r), std::max(e.b, by.b)});
    }
    void drawPopupPixel(int x, int y, const Edges& popup) {
        if (popup.l < 0 || !popup.has(x, y)) return;
        picture[static_cast<size_t>(y) * width + x] =
            list[static_cast<size_t>(y - popup.t) * listWidth + static_cast<size_t>(x - popup.l)];
    }
    void drawClosePixel(int x, int y) {
        const int i = x - (width - closeMargin - closeSize), j = y - closeMargin;
        if (icon.empty() || i < 0 || j < 0 || i >= closeSize || j >= closeSize) return;
        const auto source = [this](int at, int iconSize) {
            return (static_cast<float>(at) + 0.5f) * static_cast<float>(iconSize) / static_cast<float>(closeSize) -
                   0.5f;
        };
        const float sx = source(i, iconWidth), sy = source(j, iconHeight);
        const int x0 = sx < 0 ? 0 : static_cast<int>(sx), y0 = sy < 0 ? 0 : static_cast<int>(sy);
        const int x1 = std::min(iconWidth - 1, x0 + 1), y1 = std::min(iconHeight - 1, y0 + 1);
        const float fx = sx - std::floor(sx), fy = sy - std::floor(sy);
        const auto texel = [&](int tx, int ty, int c) {
            return static_cast<float>(icon[(static_cast<size_t>(ty) * iconWidth + tx) * 4 + c]);
        };
        const auto sample = [&](int c) {
            const float a = texel(x0, y0, c) * (1 - fx) + texel(x1, y0, c) * fx;
            const float b = texel(x0, y1, c) * (1 - fx) + texel(x1, y1, c) * fx;
            return a * (1 - fy) + b * fy;
        };
        const float alpha = sample(3) / 255;
        uint32_t& pixel = picture[static_cast<size_t>(y) * width + x];
        uint32_t blended = 0xFF000000;
        for (int c = 0; c < 3; ++c) {
            blended |=
                static_cast<uint32_t>(static_cast<float>(pixel >> 8 * c & 0xFF) * (1 - alpha) + sample(c) * alpha)
                << 8 * c;
        }
        pixel = blended;
    }

    int width = 0, height = 0;
    Pixels page, picture, list;
    int listWidth = 0, listHeight = 0;
    bool composing = false;
    bool overlaysShown = false;  // the consumer's copy may hold popup or icon
    bool met = false;            // popup and icon were drawn over each other
    bool strayed = false;        // a popup was drawn away from where the last view frame had it
    Edges lastPopup;
    long long keptX = 0, keptY = 0;
    int lastCloseX = 0, lastCloseY = 0, lastCloseSize = 0;
};

class FrameCompositorRandom : public testing::TestWithParam<unsigned> {};

}  // namespace

TEST_P(FrameCompositorRandom, AnySequence_PixelsAsTheModelAndTheCopyReplayed) {
    constexpr int kFrames = 12'500;
    std::mt19937 random(GetParam());
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    int exact = 0, popups = 0, closes = 0, frames = 0;

    while (frames < kFrames) {  // one view after another
        Consumer consumer;
        FrameCompositor compositor(consumer.sink());
        Model model;
        model.iconWidth = 1 + below(6);
        model.iconHeight = 1 + below(6);
        model.icon.resize(static_cast<size_t>(model.iconWidth) * model.iconHeight * 4);
        for (uint8_t& byte : model.icon) byte = static_cast<uint8_t>(random());
        model.closeSize = below(8) ? 1 + below(9) : 0;
        model.closeMargin = below(6);
        compositor.setCloseImage(model.icon, model.iconWidth, model.iconHeight);
        compositor.setCloseMetrics(model.closeSize, model.closeMargin);

        int width = 0, height = 0;
        Pixels page;
        bool drawClose = false;
        Point places[2];
        Size list{3, 4};
        const auto resize = [&] {
            width = 1 + below(below(8) ? 14 : 40);
            height = 1 + below(below(8) ? 14 : 40);
            page.assign(static_cast<size_t>(width) * height, static_cast<uint32_t>(random()));
        };
        resize();
        const auto check = [&](const std::optional<Model::Out>& expected) {
            if (!expected) {
                ASSERT_TRUE(consumer.calls.empty());
                return;
            }
            ASSERT_EQ(consumer.calls.size(), 1u);
            const Presented& call = consumer.last();
            ASSERT_EQ(call.pixels, expected->pixels);
            ASSERT_EQ(consumer.copy, expected->pixels) << "the dirty rectangle misses a change";
            const Edges& want = expected->prescribed;
            const Rect wanted = want.none()
                                    ? Rect{}
                                    : Rect{static_cast<int>(want.l), static_cast<int>(want.t),
                                           static_cast<int>(want.r - want.l), static_cast<int>(want.b - want.t)};
            if (expected->exact) {
                ++exact;
                ASSERT_EQ(call.dirty, wanted);
            } else if (wanted.width > 0) {
                ASSERT_TRUE(contains(call.dirty, wanted));
            }
            ASSERT_TRUE(contains({0, 0, width, height}, call.dirty));
        };

        for (int step = 0; step < 300; ++step) {
            consumer.calls.clear();
            switch (below(12)) {
                case 0:
                    model.show(true);
                    compositor.onPopupShow(true);
                    [[fallthrough]];
                case 1: {
                    // often back to a place where it was before
                    Point& place = places[below(2)];
                    if (!below(3)) place = {below(width + 12) - 6, below(height + 12) - 6};
                    model.popupLeft = place.x;
                    model.popupTop = place.y;
                    if (!below(20)) (below(2) ? model.popupLeft : model.popupTop) = below(2) ? INT_MAX : INT_MIN;
                    compositor.onPopupRect({model.popupLeft, model.popupTop, 0, 0});
                    break;
                }
                case 2:
                    if (below(2)) break;
                    model.show(false);
                    compositor.onPopupShow(false);
                    break;
                case 3:
                case 4: {
                    if (!below(3)) list = {1 + below(12), 1 + below(12)};
                    const auto [w, h] = list;
                    Pixels listPixels(static_cast<size_t>(w) * h);
                    for (uint32_t& pixel : listPixels) pixel = static_cast<uint32_t>(random());
                    compositor.paintPopup(drawClose, listPixels.data(), w, h);
                    ASSERT_NO_FATAL_FAILURE(check(model.paintPopup(drawClose, listPixels, w, h)))
                        << "popup, step " << step;
                    ++popups;
                    break;
                }
                case 5:
                    if (!below(3)) drawClose = !drawClose;
                    break;
                default: {
                    switch (below(10)) {
                        case 0:
                            if (!below(3)) resize();
                            break;
                        case 1:
                            break;  // the same frame again
                        case 2:
                            for (uint32_t& pixel : page) pixel = static_cast<uint32_t>(random());
                            break;
                        case 3:
                            model.force = true;
                            compositor.forceFullFrame();
                            break;
                        case 4:
                            page[static_cast<size_t>(below(static_cast<int>(page.size())))] ^= 0x80000000u;
                            break;
                        default: {
                            const int x = below(width), y = below(height);
                            const int w = 1 + below(width - x), h = 1 + below(height - y);
                            const auto colour = static_cast<uint32_t>(random());
                            for (int i = 0; i < w * h; ++i)
                                page[static_cast<size_t>(y + i / w) * width + x + i % w] = colour + i % 3;
                        }
                    }
                    compositor.paintView(drawClose, page.data(), width, height);
                    ASSERT_NO_FATAL_FAILURE(check(model.paintView(drawClose, page, width, height)))
                        << "view, step " << step;
                    ++frames;
                    closes += drawClose;
                }
            }
        }
    }
    EXPECT_GT(popups, frames / 10);
    EXPECT_GT(closes, frames / 4);
    EXPECT_GT(exact, frames / 3) << "too few frames were held to the exact rectangle";
    RecordProperty("frames", frames);
    RecordProperty("exact", exact);
}

INSTANTIATE_TEST_SUITE_P(Seeds, FrameCompositorRandom, testing::Range(1u, 9u));  // 8 x 12,500 frames

}  // namespace ZEMO::UI
