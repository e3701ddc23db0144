#pragma once

#include "mesh.h"
#include "sky.h"

#include <vector>

namespace demo {

/// The game's world: a low-poly planet with a ring and a moon in front of a night sky. Modest on purpose: it keeps its
/// frame rate on a software rasterizer. Needs a current OpenGL context.
class Scene {
public:
    Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// One frame. Leaves a projection in client pixels with y downward behind, for everything flat that follows.
    void draw(int width, int height, double seconds);

    /// A wave of light runs out from the planet: the page's button does something in the game.
    void celebrate(double seconds) { celebratedAt = seconds; }

private:
    /// A glow around the planet: brightness by distance from its middle, in planet radii.
    struct AirProfile {
        float (*glow)(float distance);
        float from, to;
        int rings;
        float shade;  // what the night side keeps of it
    };

    void drawAir(float x, float y, float radius, const AirProfile& air) const;
    void drawAirInFront(int width, int height, float x, float y, float radius) const;
    void drawWave(float x, float y, float radius, double seconds) const;
    void drawCities(float turn) const;
    void drawRing(double seconds) const;

    struct Rock {
        float angle, distance, height, size, spin;
        std::size_t shape;
    };

    Sky sky;
    Mesh planet;
    Mesh moon;
    std::vector<Mesh> rockShapes;
    std::vector<Rock> rocks;
    std::vector<Vec3> cities;
    double celebratedAt = -100;
};

/// Client pixels, y downward; what the HUD and the page are drawn with.
void setFlatProjection(int width, int height);

}  // namespace demo
