#include "sky.h"

#include "../gl.h"
#include "noise.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace demo {

namespace {

constexpr int kNebulaWidth = 640;
constexpr int kNebulaHeight = 360;
constexpr int kStarCount = 1300;
constexpr float kTwoPi = 6.2831853f;

Vec3 nebulaColour(float x, float y) {
    // Night blue, a little lighter toward the bottom.
    Vec3 colour = mix({0.012f, 0.016f, 0.045f}, {0.050f, 0.045f, 0.135f}, smoothStep(0.0f, 1.1f, y));
    // A band across the view, bent and torn by noise.
    const float bend = fractalNoise({x * 2.1f, y * 2.1f, 1.5f}, 4) - 0.5f;
    const float across = (y - 0.98f + 0.50f * x + bend * 0.60f) / 0.34f;
    const float band = std::exp(-across * across);
    const float cloud = smoothStep(0.38f, 0.80f, fractalNoise({x * 4.2f + 3, y * 4.2f, 7.3f}, 5));
    const float dust = smoothStep(0.46f, 0.66f, fractalNoise({x * 5.1f, y * 5.1f + 8, 2.9f}, 5));
    const float hue = smoothStep(0.35f, 0.65f, fractalNoise({x * 1.6f + 9, y * 1.6f, 4.1f}, 3));
    const Vec3 glow = mix({0.46f, 0.15f, 0.58f}, {0.07f, 0.36f, 0.56f}, hue);
    colour = colour + glow * (band * (0.26f + 0.95f * cloud));
    colour = colour + Vec3{0.95f, 0.62f, 0.55f} * (0.22f * band * band * cloud * cloud);
    return colour * (1.0f - 0.55f * dust * band);
}

unsigned makeNebula() {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(kNebulaWidth) * kNebulaHeight * 4);
    Dice dice(7);
    std::uint8_t* out = pixels.data();
    for (int y = 0; y < kNebulaHeight; ++y) {
        for (int x = 0; x < kNebulaWidth; ++x, out += 4) {
            const Vec3 c =
                nebulaColour(1.78f * static_cast<float>(x) / kNebulaWidth, static_cast<float>(y) / kNebulaHeight);
            const float grain = dice.next(0, 1.6f);  // a soft gradient in 8 bits shows steps without it
            const auto byte = [&](float v) {
                return static_cast<std::uint8_t>(std::clamp(v * 255 + grain, 0.0f, 255.0f));
            };
            out[0] = byte(c.z), out[1] = byte(c.y), out[2] = byte(c.x), out[3] = 255;
        }
    }
    unsigned texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kNebulaWidth, kNebulaHeight, 0, GL_BGRA, GL_UNSIGNED_BYTE, pixels.data());
    return texture;
}

}  // namespace

Sky::Sky() : nebula(makeNebula()) {
    Dice dice(2026);
    for (int i = 0; i < kStarCount; ++i) {
        const float rank = dice.next();  // few bright stars, many faint ones
        Star star{};
        star.angle = dice.next(0, kTwoPi);
        star.distance = 0.4f + 1.9f * std::sqrt(dice.next());
        star.size = 1.0f + 2.4f * std::pow(rank, 10.0f);
        star.brightness = 0.35f + 0.65f * rank * rank;
        star.phase = dice.next(0, kTwoPi);
        star.colour = mix({1.0f, 0.86f, 0.72f}, {0.72f, 0.84f, 1.0f}, dice.next());
        stars.push_back(star);
    }
    std::sort(stars.begin(), stars.end(), [](const Star& a, const Star& b) { return a.size < b.size; });
}

Sky::~Sky() { glDeleteTextures(1, &nebula); }

void Sky::draw(float width, float height, double seconds) const {
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, nebula);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(0, 0);
    glTexCoord2f(1, 0), glVertex2f(width, 0);
    glTexCoord2f(1, 1), glVertex2f(width, height);
    glTexCoord2f(0, 1), glVertex2f(0, height);
    glEnd();
    glDisable(GL_TEXTURE_2D);

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    drawStars(width, height, seconds);
    drawMeteor(width, height, seconds);
}

void Sky::drawStars(float width, float height, double seconds) const {
    const float turn = static_cast<float>(std::fmod(seconds * 0.004, static_cast<double>(kTwoPi)));
    const float unit = height / 720.0f;
    const auto time = static_cast<float>(std::fmod(seconds, 1000.0));
    glEnable(GL_POINT_SMOOTH);
    float size = 0;
    glBegin(GL_POINTS);
    for (const Star& star : stars) {
        // Stars are sorted: the point size, which can't change inside a batch, changes only a few times.
        const float wanted = std::ceil(star.size * unit * 2) / 2;
        if (wanted != size) {
            glEnd();
            glPointSize(size = wanted);
            glBegin(GL_POINTS);
        }
        const float x = 0.62f * width + height * star.distance * std::cos(star.angle + turn);
        const float y = -0.55f * height + height * star.distance * std::sin(star.angle + turn);
        if (x < 0 || y < 0 || x > width || y > height) continue;
        const float twinkle = 0.78f + 0.22f * std::sin(time * (0.8f + star.brightness) + star.phase);
        glColor4f(star.colour.x, star.colour.y, star.colour.z, star.brightness * twinkle);
        glVertex2f(x, y);
    }
    glEnd();
    glDisable(GL_POINT_SMOOTH);
}

void Sky::drawMeteor(float width, float height, double seconds) const {
    constexpr double kEvery = 7.0;
    constexpr double kLasts = 1.1;
    const double since = std::fmod(seconds + 5.2, kEvery);
    if (since > kLasts) return;
    Dice dice(static_cast<std::uint32_t>((seconds + 5.2) / kEvery) * 7919u + 13u);
    dice.next();
    const float startX = width * dice.next(0.15f, 0.8f), startY = height * dice.next(0.02f, 0.25f);
    const auto along = static_cast<float>(since / kLasts);
    const float dx = 0.36f * height, dy = 0.17f * height;
    const float headX = startX + dx * along, headY = startY + dy * along;
    const float fade = std::sin(3.14159f * along);
    glLineWidth(std::max(1.0f, 1.6f * height / 720));
    glEnable(GL_LINE_SMOOTH);
    glBegin(GL_LINES);
    glColor4f(0.8f, 0.9f, 1.0f, 0.0f), glVertex2f(headX - 0.30f * dx, headY - 0.30f * dy);
    glColor4f(1.0f, 1.0f, 1.0f, 0.9f * fade), glVertex2f(headX, headY);
    glEnd();
    glDisable(GL_LINE_SMOOTH);
}

}  // namespace demo
