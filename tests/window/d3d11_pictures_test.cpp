// What the Direct3D 11 renderer shows of a page's frames: real device, real window, the target read back as it is
// presented.
#include <gtest/gtest.h>

#include "render/d3d11/d3d11_renderer.h"
#include "window/d3d11_window.h"

namespace ZEMO::UI::test {
namespace {

TEST(D3D11Pictures, OpaquePageOfTheWindowsSize_SamePixels) {
    D3D11Window window(321, 203);
    const Picture page = noise(321, 203, 0xFF);
    window.paint(page);
    window.render();
    EXPECT_EQ(window.differences(page), "");
}

}  // namespace
}  // namespace ZEMO::UI::test
