#include "mesh.h"

#include "../gl.h"
#include "noise.h"

#include <array>

namespace demo {

namespace {

using Triangle = std::array<Vec3, 3>;

/// An icosahedron, each face split in four `detail` times, on the unit sphere.
std::vector<Triangle> makeSphere(int detail) {
    const float t = 1.6180340f;
    const std::array<Vec3, 12> p{{{-1, t, 0},
                                  {1, t, 0},
                                  {-1, -t, 0},
                                  {1, -t, 0},
                                  {0, -1, t},
                                  {0, 1, t},
                                  {0, -1, -t},
                                  {0, 1, -t},
                                  {t, 0, -1},
                                  {t, 0, 1},
                                  {-t, 0, -1},
                                  {-t, 0, 1}}};
    constexpr int kFaces[20][3] = {{0, 11, 5},  {0, 5, 1},  {0, 1, 7},  {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4},
                                   {11, 10, 2}, {10, 7, 6}, {7, 1, 8},  {3, 9, 4},  {3, 4, 2},   {3, 2, 6}, {3, 6, 8},
                                   {3, 8, 9},   {4, 9, 5},  {2, 4, 11}, {6, 2, 10}, {8, 6, 7},   {9, 8, 1}};
    std::vector<Triangle> triangles;
    for (const auto& f : kFaces) triangles.push_back({normalized(p[f[0]]), normalized(p[f[1]]), normalized(p[f[2]])});
    for (; detail > 0; --detail) {
        std::vector<Triangle> finer;
        for (const auto& [a, b, c] : triangles) {
            const Vec3 ab = normalized(a + b), bc = normalized(b + c), ca = normalized(c + a);
            finer.insert(finer.end(),
                         {Triangle{a, ab, ca}, Triangle{ab, b, bc}, Triangle{ca, bc, c}, Triangle{ab, bc, ca}});
        }
        triangles = std::move(finer);
    }
    return triangles;
}

/// Below 0 is water.
float heightAt(Vec3 direction) { return fractalNoise(direction * 1.45f + Vec3{5.2f, 1.3f, 8.8f}, 3) - 0.475f; }

Vec3 onPlanet(Vec3 direction) {
    const float height = heightAt(direction);
    return direction * (1.0f + (height > 0 ? 0.30f * height : 0.0f));
}

Vec3 planetColour(Vec3 direction, float height, float jitter) {
    Vec3 colour;
    if (height < 0) {
        colour = mix({0.07f, 0.40f, 0.56f}, {0.03f, 0.16f, 0.38f}, smoothStep(0.0f, 0.16f, -height));
    } else if (height < 0.008f) {
        colour = {0.87f, 0.76f, 0.52f};
    } else if (height < 0.10f) {
        colour = mix({0.34f, 0.62f, 0.30f}, {0.14f, 0.42f, 0.27f}, height * 10);
    } else {
        colour = mix({0.46f, 0.38f, 0.36f}, {0.92f, 0.93f, 0.97f}, smoothStep(0.12f, 0.20f, height));
    }
    const float polar = std::fabs(direction.y) + 0.5f * height;
    colour = mix(colour, {0.90f, 0.95f, 1.0f}, smoothStep(0.84f, 0.90f, polar));
    return colour * (0.92f + 0.16f * jitter);
}

}  // namespace

void Mesh::addTriangle(Vec3 a, Vec3 b, Vec3 c, Vec3 colour) {
    const Vec3 normal = normalized(cross(b - a, c - a));
    for (const Vec3& position : {a, b, c}) vertices.push_back({position, normal, colour});
}

void Mesh::draw() const {
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), &vertices[0].position);
    glNormalPointer(GL_FLOAT, sizeof(Vertex), &vertices[0].normal);
    glColorPointer(3, GL_FLOAT, sizeof(Vertex), &vertices[0].colour);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(vertices.size()));
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

Mesh makePlanet() {
    Mesh mesh;
    Dice dice(11);
    for (const auto& [a, b, c] : makeSphere(3)) {
        const Vec3 middle = normalized(a + b + c);
        mesh.addTriangle(onPlanet(a), onPlanet(b), onPlanet(c), planetColour(middle, heightAt(middle), dice.next()));
    }
    return mesh;
}

Mesh makeRock(unsigned seed, int detail) {
    Mesh mesh;
    Dice dice(seed);
    const Vec3 offset{dice.next(0, 50), dice.next(0, 50), dice.next(0, 50)};
    const auto dented = [&](Vec3 v) { return v * (0.68f + 0.62f * fractalNoise(v * 1.4f + offset, 3)); };
    for (const auto& [a, b, c] : makeSphere(detail)) {
        const Vec3 colour = mix({0.50f, 0.46f, 0.50f}, {0.68f, 0.60f, 0.56f}, dice.next());
        mesh.addTriangle(dented(a), dented(b), dented(c), colour);
    }
    return mesh;
}

std::vector<Vec3> planetCities() {
    std::vector<Vec3> cities;
    Dice dice(99);
    while (cities.size() < 150) {
        const Vec3 v{dice.next(-1, 1), dice.next(-1, 1), dice.next(-1, 1)};
        if (dot(v, v) > 1 || dot(v, v) < 0.01f) continue;
        const Vec3 direction = normalized(v);
        const float height = heightAt(direction);
        if (height > 0.01f && height < 0.10f && std::fabs(direction.y) < 0.75f)
            cities.push_back(onPlanet(direction) * 1.004f);
    }
    return cities;
}

}  // namespace demo
