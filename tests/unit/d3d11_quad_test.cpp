#include "render/d3d11/quad.h"

#include <gtest/gtest.h>

#include <vector>

namespace ZEMO::UI::D3D11 {
namespace {

std::vector<float> values(const Quad& quad) {
    std::vector<float> list;
    for (const Vertex& v : quad) list.insert(list.end(), {v.x, v.y, v.z, v.u, v.v});
    return list;
}

// Top left, top right, bottom left, bottom right.
TEST(D3D11Quad, WholeClientArea_CoversTheTargetWithRowZeroAtTheTop) {
    EXPECT_EQ(values(makeQuad(quadEdges(0, 0, 1, 1), true)),
              (std::vector<float>{-1, 1, 1, 0, 0, 1, 1, 1, 1, 0, -1, -1, 1, 0, 1, 1, -1, 1, 1, 1}));
}

TEST(D3D11Quad, NotFlipped_RowZeroAtTheBottom) {
    EXPECT_EQ(values(makeQuad(quadEdges(0, 0, 1, 1), false)),
              (std::vector<float>{-1, 1, 1, 0, 1, 1, 1, 1, 1, 1, -1, -1, 1, 0, 0, 1, -1, 1, 1, 0}));
}

TEST(D3D11Quad, PartOfTheClientArea_FractionsWithYDownward) {
    const QuadEdges edges = quadEdges(0.25f, 0.125f, 0.5f, 0.25f);
    EXPECT_EQ(edges.left, -0.5f);
    EXPECT_EQ(edges.top, 0.75f);
    EXPECT_EQ(edges.right, 0.5f);
    EXPECT_EQ(edges.bottom, 0.25f);
}

TEST(D3D11Quad, CloseButton_SquareFromTheUpperRightCorner) {
    const QuadEdges edges = closeButtonEdges(800, 400, 36, 20);
    EXPECT_FLOAT_EQ(edges.left, 1 - 2 * 56.0f / 800);
    EXPECT_FLOAT_EQ(edges.right, 1 - 2 * 20.0f / 800);
    EXPECT_FLOAT_EQ(edges.top, 1 - 2 * 20.0f / 400);
    EXPECT_FLOAT_EQ(edges.bottom, 1 - 2 * 56.0f / 400);
}

}  // namespace
}  // namespace ZEMO::UI::D3D11
