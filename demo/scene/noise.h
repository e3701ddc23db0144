#pragma once

#include "vec3.h"

#include <cstdint>

namespace demo {

/// Smooth random values between 0 and 1, the same in each run.
float valueNoise(Vec3 at);
/// Several octaves of it; between 0 and 1, mostly near 0.5.
float fractalNoise(Vec3 at, int octaves);

/// A small random generator for placing things.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : state(seed) {}
    float next(float from = 0, float to = 1) {
        state = state * 1664525u + 1013904223u;
        return from + (to - from) * static_cast<float>(state >> 8) / 16777216.0f;
    }

private:
    std::uint32_t state;
};

}  // namespace demo
