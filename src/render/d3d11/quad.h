#pragma once

#include <array>

namespace ZEMO::UI::D3D11 {

/// As the input layout reads it.
struct Vertex {
    float x, y, z, u, v;
};
static_assert(sizeof(Vertex) == 20);

/// Top left, top right, bottom left, bottom right: a strip of two triangles.
using Quad = std::array<Vertex, 4>;

/// Edges in the target's own space: -1 to 1, y upward.
struct QuadEdges {
    float left, top, right, bottom;
};

/// A rectangle given as fractions of the client area, y downward.
QuadEdges quadEdges(float x, float y, float width, float height);

/// The close button's square in the upper right corner. All in device pixels.
QuadEdges closeButtonEdges(int clientWidth, int clientHeight, int size, float margin);

/// `flip` shows row 0 of the texture at the top.
Quad makeQuad(const QuadEdges& edges, bool flip);

}  // namespace ZEMO::UI::D3D11
