#include "layers/deck/extra_window_rules.h"

#include <gtest/gtest.h>

#include <iterator>

namespace ZEMO::UI {

// Where nothing prints them by itself.
static void PrintTo(const ViewMessageRoute& route, std::ostream* out) { *out << static_cast<int>(route); }

namespace {

struct PlaceCase {
    int32_t width, height;
    Rect button, view;
};
constexpr PlaceCase kPlaces[] = {
    {1280, 800, {1235, 755, 45, 45}, {0, 0, 1280, 755}},
    {640, 400, {595, 355, 45, 45}, {0, 0, 640, 355}},
    {45, 45, {0, 0, 45, 45}, {0, 0, 45, 0}},
    {46, 46, {1, 1, 45, 45}, {0, 0, 46, 1}},
    {0, 0, {-45, -45, 45, 45}, {0, 0, 0, -45}},
};

TEST(ExtraWindowRules, Places_ViewOverTheStripButtonInItsRightCorner) {
    ASSERT_EQ(std::size(kPlaces), 5u);
    for (const PlaceCase& c : kPlaces) {
        EXPECT_EQ(extraButtonPlace(c.width, c.height), c.button) << c.width << "x" << c.height;
        EXPECT_EQ(extraViewPlace(c.width, c.height), c.view) << c.width << "x" << c.height;
    }
}

TEST(ExtraWindowRules, EveryMessageNumber_HasItsRoute) {
    for (uint32_t message = 0; message <= 0xFFFF; ++message) {
        ViewMessageRoute expected = ViewMessageRoute::Default;
        for (const uint32_t posted : {0x006u, 0x010u, 0x200u, 0x201u, 0x202u, 0x20Au})
            if (message == posted) expected = ViewMessageRoute::ToParent;
        for (const uint32_t swallowed : {0x204u, 0x205u})
            if (message == swallowed) expected = ViewMessageRoute::Swallowed;
        ASSERT_EQ(extraViewMessageRoute(message), expected) << message;
    }
}

}  // namespace
}  // namespace ZEMO::UI
