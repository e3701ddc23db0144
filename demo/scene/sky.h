#pragma once

#include "vec3.h"

#include <vector>

namespace demo {

/// The night behind everything: a nebula, painted once into a texture, and stars that twinkle and wander slowly.
/// Needs a current OpenGL context.
class Sky {
public:
    Sky();
    ~Sky();
    Sky(const Sky&) = delete;
    Sky& operator=(const Sky&) = delete;

    /// Fills the view. Expects a projection in client pixels with y downward.
    void draw(float width, float height, double seconds) const;

private:
    void drawStars(float width, float height, double seconds) const;
    void drawMeteor(float width, float height, double seconds) const;

    struct Star {
        float angle;     // around the pole, radians
        float distance;  // from the pole, in view heights
        float size;      // pixels at a view height of 720
        float brightness;
        float phase;
        Vec3 colour;
    };

    std::vector<Star> stars;
    unsigned nebula = 0;
};

}  // namespace demo
