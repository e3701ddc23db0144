#include "noise.h"

namespace demo {

namespace {

float lattice(int x, int y, int z) {
    auto h = static_cast<std::uint32_t>(x) * 374761393u + static_cast<std::uint32_t>(y) * 668265263u +
             static_cast<std::uint32_t>(z) * 2147483647u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return static_cast<float>((h ^ (h >> 16)) & 0xffffff) / 16777215.0f;
}

float lerp(float a, float b, float t) { return a + (b - a) * t; }

}  // namespace

float valueNoise(Vec3 at) {
    const float fx = std::floor(at.x), fy = std::floor(at.y), fz = std::floor(at.z);
    const int x = static_cast<int>(fx), y = static_cast<int>(fy), z = static_cast<int>(fz);
    const float u = smoothStep(0, 1, at.x - fx), v = smoothStep(0, 1, at.y - fy), w = smoothStep(0, 1, at.z - fz);
    const auto plane = [&](int k) {
        return lerp(lerp(lattice(x, y, k), lattice(x + 1, y, k), u),
                    lerp(lattice(x, y + 1, k), lattice(x + 1, y + 1, k), u), v);
    };
    return lerp(plane(z), plane(z + 1), w);
}

float fractalNoise(Vec3 at, int octaves) {
    float sum = 0, weight = 0.5f, total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * valueNoise(at);
        total += weight;
        weight *= 0.5f;
        at = at * 2.03f + Vec3{17.1f, 9.2f, 4.7f};
    }
    return sum / total;
}

}  // namespace demo
