#pragma once

#include "vec3.h"

#include <vector>

namespace demo {

/// Triangles with one colour and one normal each: the low-poly look. Plain arrays, drawn with vertex arrays.
class Mesh {
public:
    void addTriangle(Vec3 a, Vec3 b, Vec3 c, Vec3 colour);
    void draw() const;

private:
    struct Vertex {
        Vec3 position;
        Vec3 normal;
        Vec3 colour;
    };
    std::vector<Vertex> vertices;
};

/// A planet of radius about 1 with seas, coasts, forests and ice.
Mesh makePlanet();
/// A grey, dented ball of radius about 1, different for each seed.
Mesh makeRock(unsigned seed, int detail);
/// Places on the planet's land where people live: unit directions.
std::vector<Vec3> planetCities();

}  // namespace demo
