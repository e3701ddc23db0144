#include "scene.h"

#include "../gl.h"
#include "noise.h"

#include <algorithm>
#include <cmath>

namespace demo {

namespace {

constexpr float kPi = 3.14159265f;
constexpr float kEyeDistance = 5.2f;
constexpr Vec3 kSun{-0.62f, 0.48f, 0.62f};

/// How bright the air is at `r` planet radii. Behind the planet it glows outward from the rim; in front of it only a
/// seam along the rim is left, which also softens the edge of the polygons.
float airBehind(float r) { return std::exp(-std::max(0.0f, r - 0.97f) * 7.5f) * smoothStep(1.5f, 1.25f, r); }
float airInFront(float r) { return 0.5f * smoothStep(0.66f, 1.0f, r) * smoothStep(1.02f, 0.99f, r); }

/// A camera that looks at the planet; `centerX` and `centerY` say where the planet stands, from -1 to 1. The shift
/// happens after the perspective, so the planet stays round wherever it stands.
void setSpaceProjection(int width, int height, float centerX, float centerY, float lens) {
    const float aspect = static_cast<float>(width) / static_cast<float>(std::max(height, 1));
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glTranslatef(centerX, centerY, 0);
    const double side = 0.1 / lens;
    glFrustum(-side * aspect, side * aspect, -side, side, 0.1, 30.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void setSunLight() {
    const float direction[] = {kSun.x, kSun.y, kSun.z, 0};
    const float sun[] = {1.08f, 1.02f, 0.94f, 1};
    const float night[] = {0.045f, 0.06f, 0.13f, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, direction);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, sun);
    glLightfv(GL_LIGHT0, GL_AMBIENT, night);
    const float none[] = {0, 0, 0, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, none);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_NORMALIZE);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
}

}  // namespace

void setFlatProjection(int width, int height) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, height, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

Scene::Scene() : planet(makePlanet()), moon(makeRock(5, 2)), cities(planetCities()) {
    for (unsigned seed = 20; seed < 24; ++seed) rockShapes.push_back(makeRock(seed, 1));
    Dice dice(4);
    for (int i = 0; i < 72; ++i) {
        const float size = dice.next();
        rocks.push_back({dice.next(0, 2 * kPi), dice.next(1.52f, 2.02f), dice.next(-0.035f, 0.035f),
                         0.011f + 0.032f * size * size * size, dice.next(20, 90),
                         static_cast<std::size_t>(i) % rockShapes.size()});
    }
}

void Scene::draw(int width, int height, double seconds) {
    glViewport(0, 0, width, height);
    glDisable(GL_LIGHTING);
    glDisable(GL_SCISSOR_TEST);
    glShadeModel(GL_SMOOTH);
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);

    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    setFlatProjection(width, height);
    sky.draw(w, h, seconds);

    // The planet stands left of the middle, where a panel on the right leaves it free.
    const float centerX = w > h ? -0.30f : 0.0f;
    const float centerY = -0.10f;
    const float lens = 2.62f;
    // The silhouette of a ball is a little larger than its radius over its distance.
    const float radius = 0.5f * h * lens / std::sqrt(kEyeDistance * kEyeDistance - 1);
    const float x = w * (0.5f + 0.5f * centerX), y = h * (0.5f - 0.5f * centerY);
    drawAir(x, y, radius, {airBehind, 0.92f, 1.5f, 10, 0.36f});
    drawWave(x, y, radius, seconds);

    setSpaceProjection(width, height, centerX, centerY, lens);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glDisable(GL_BLEND);
    setSunLight();
    glShadeModel(GL_FLAT);
    glTranslatef(0, 0, -kEyeDistance);
    glRotatef(17, 1, 0, 0);
    glRotatef(-14, 0, 0, 1);

    const auto turn = static_cast<float>(std::fmod(seconds * 5.0 + 40, 360.0));
    glPushMatrix();
    glRotatef(turn, 0, 1, 0);
    planet.draw();
    drawCities(turn);
    glPopMatrix();
    drawAirInFront(width, height, x, y, radius);

    glPushMatrix();
    glRotatef(static_cast<float>(std::fmod(seconds * 9.0 + 300, 360.0)), 0, 1, 0);
    glTranslatef(2.45f, 0.42f, 0);
    glRotatef(static_cast<float>(std::fmod(seconds * 12.0, 360.0)), 0.3f, 1, 0);
    glScalef(0.13f, 0.13f, 0.13f);
    moon.draw();
    glPopMatrix();

    drawRing(seconds);

    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glShadeModel(GL_SMOOTH);
    setFlatProjection(width, height);
}

void Scene::drawAir(float x, float y, float radius, const AirProfile& air) const {
    // Rings of plain colour: several times cheaper on a software rasterizer than a texture of the same size.
    constexpr int kSegments = 72;
    const float step = (air.to - air.from) / static_cast<float>(air.rings);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    for (int ring = 0; ring < air.rings; ++ring) {
        const float inner = air.from + step * static_cast<float>(ring), outer = inner + step;
        glBegin(GL_QUAD_STRIP);
        for (int i = 0; i <= kSegments; ++i) {
            const float angle = 2 * kPi * static_cast<float>(i) / kSegments;
            const float c = std::cos(angle), s = std::sin(angle);
            const float sunny = air.shade + (1 - air.shade) * smoothStep(-0.7f, 1.0f, (-c - s) * 0.75f);
            glColor4f(0.30f, 0.55f, 1.0f, 0.85f * sunny * air.glow(outer));
            glVertex2f(x + radius * outer * c, y + radius * outer * s);
            glColor4f(0.30f, 0.55f, 1.0f, 0.85f * sunny * air.glow(inner));
            glVertex2f(x + radius * inner * c, y + radius * inner * s);
        }
        glEnd();
    }
}

void Scene::drawAirInFront(int width, int height, float x, float y, float radius) const {
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glEnable(GL_BLEND);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    setFlatProjection(width, height);
    drawAir(x, y, radius, {airInFront, 0.66f, 1.02f, 8, 0.0f});
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
}

void Scene::drawWave(float x, float y, float radius, double seconds) const {
    const double since = seconds - celebratedAt;
    if (since < 0 || since > 2.4) return;
    const auto along = static_cast<float>(since / 2.4);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    for (int ring = 0; ring < 3; ++ring) {
        const float local = along * 1.5f - 0.2f * static_cast<float>(ring);
        if (local <= 0 || local >= 1) continue;
        const float inner = radius * (1.0f + 1.6f * local), outer = inner + radius * 0.10f;
        const float fade = 0.65f * (1 - local) * (1 - local);
        glBegin(GL_QUAD_STRIP);
        for (int i = 0; i <= 96; ++i) {
            const float angle = 2 * kPi * static_cast<float>(i) / 96;
            glColor4f(1.0f, 0.80f, 0.42f, 0), glVertex2f(x + inner * std::cos(angle), y + inner * std::sin(angle));
            glColor4f(1.0f, 0.80f, 0.42f, fade), glVertex2f(x + outer * std::cos(angle), y + outer * std::sin(angle));
        }
        glEnd();
    }
}

void Scene::drawCities(float turn) const {
    // Lights come on where the sun has set: the sun's direction, turned back into the planet's own space.
    const float tiltX = -17 * kPi / 180, tiltZ = 14 * kPi / 180, spin = -turn * kPi / 180;
    Vec3 sun = normalized(kSun);
    sun = {sun.x, sun.y * std::cos(tiltX) - sun.z * std::sin(tiltX), sun.y * std::sin(tiltX) + sun.z * std::cos(tiltX)};
    sun = {sun.x * std::cos(tiltZ) - sun.y * std::sin(tiltZ), sun.x * std::sin(tiltZ) + sun.y * std::cos(tiltZ), sun.z};
    sun = {sun.x * std::cos(spin) + sun.z * std::sin(spin), sun.y, -sun.x * std::sin(spin) + sun.z * std::cos(spin)};
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glDepthMask(GL_FALSE);
    glPointSize(2);
    glBegin(GL_POINTS);
    for (const Vec3& city : cities) {
        const float dark = smoothStep(0.02f, -0.18f, dot(city, sun));
        glColor4f(1.0f, 0.74f, 0.36f, 0.85f * dark);
        glVertex3f(city.x, city.y, city.z);
    }
    glEnd();
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
    glEnable(GL_LIGHTING);
}

void Scene::drawRing(double seconds) const {
    for (const Rock& rock : rocks) {
        const float speed = 6.5f / (rock.distance * rock.distance);
        glPushMatrix();
        glRotatef(static_cast<float>(std::fmod(seconds * speed, 360.0)) + rock.angle * 180 / kPi, 0, 1, 0);
        glTranslatef(rock.distance, rock.height, 0);
        glRotatef(static_cast<float>(std::fmod(seconds * rock.spin, 360.0)), 0.5f, 1, 0.2f);
        glScalef(rock.size, rock.size, rock.size);
        rockShapes[rock.shape].draw();
        glPopMatrix();
    }

    // Dust between the rocks: bands that the depth buffer hides behind the planet.
    constexpr struct {
        float inner, outer, alpha;
    } kBands[] = {{1.44f, 1.58f, 0.10f}, {1.61f, 1.83f, 0.20f}, {1.87f, 2.08f, 0.11f}};
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    glShadeModel(GL_SMOOTH);
    for (const auto& band : kBands) {
        glBegin(GL_QUAD_STRIP);
        for (int i = 0; i <= 120; ++i) {
            const float angle = 2 * kPi * static_cast<float>(i) / 120;
            const float c = std::cos(angle), s = std::sin(angle);
            glColor4f(0.78f, 0.72f, 0.86f, band.alpha), glVertex3f(band.inner * c, 0, band.inner * s);
            glColor4f(0.92f, 0.80f, 0.70f, band.alpha), glVertex3f(band.outer * c, 0, band.outer * s);
        }
        glEnd();
    }
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
    glShadeModel(GL_FLAT);
}

}  // namespace demo
