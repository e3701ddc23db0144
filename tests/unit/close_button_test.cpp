#include "layers/close_button.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "render/display_scale.h"

namespace ZEMO::UI {
namespace {

constexpr RECT kClient{0, 0, 1000, 600};

XButton sized(float scale, const RECT& client = kClient) {
    XButton button(scale);
    button.onResize(client);
    return button;
}

/// Found by asking for every point, not by looking into the button.
RECT hitArea(XButton& button, const RECT& client = kClient) {
    RECT area{};
    for (LONG y = 0; y < 200; ++y) {
        for (LONG x = client.right - 300; x <= client.right; ++x) {
            if (!button.hitTest({x, y}, client)) continue;
            if (area.right == 0) area = {x, y, x + 1, y + 1};
            area.left = std::min(area.left, x);
            area.right = std::max(area.right, x + 1);
            area.bottom = y + 1;
        }
    }
    return area;
}

/// The narrow button is smaller than the wide one, so that the choice between them shows.
struct TwoSizes : XButton {
    explicit TwoSizes(float scale) : XButton(scale) { sizeNarrow = logicalToDevice(24, scale); }
};

}  // namespace

TEST(XButton, EachScale_HitAreaInDevicePixels) {
    const struct {
        float scale;
        RECT area;
    } cases[] = {{1.0f, {944, 20, 980, 56}},
                 {1.25f, {930, 25, 975, 70}},
                 {1.5f, {916, 30, 970, 84}},
                 {2.0f, {888, 40, 960, 112}}};
    for (const auto& one : cases) {
        XButton button = sized(one.scale);
        const RECT area = hitArea(button);
        EXPECT_TRUE(EqualRect(&area, &one.area))
            << one.scale << ": " << area.left << "," << area.top << " to " << area.right << "," << area.bottom;
    }
    EXPECT_EQ(std::size(cases), 4u);
}

TEST(XButton, RightAndBottomEdges_AreOutside) {
    XButton button = sized(1.0f);
    EXPECT_FALSE(button.hitTest({980, 20}, kClient));
    EXPECT_TRUE(button.hitTest({979, 55}, kClient));
    EXPECT_FALSE(button.hitTest({979, 56}, kClient));
    EXPECT_TRUE(button.hitTest({944, 20}, kClient));
    EXPECT_FALSE(button.hitTest({943, 20}, kClient));
    EXPECT_FALSE(button.hitTest({944, 19}, kClient));
}

TEST(XButton, NarrowWindow_SameSizeAtTheThresholdAndBelow) {
    for (const LONG width : {897L, 898L, 896L, 300L}) {
        const RECT client{0, 0, width, 600};
        XButton button = sized(1.0f, client);
        const RECT area = hitArea(button, client);
        const RECT expected{width - 56, 20, width - 20, 56};
        EXPECT_TRUE(EqualRect(&area, &expected)) << width;
    }
}

TEST(XButton, SizesThatDiffer_WideAboveTheScaledThresholdOnly) {
    const struct {
        float scale;
        LONG left, right;
        LONG side;
    } cases[] = {{1.0f, 0, 898, 36},   {1.0f, 0, 897, 24},  {1.0f, 0, 300, 24},  {1.0f, 100, 998, 36},
                 {1.0f, 100, 997, 24}, {2.0f, 0, 1795, 72}, {2.0f, 0, 1794, 48}, {2.0f, 0, 898, 48},
                 {1.5f, 0, 1346, 54},  {1.5f, 0, 1345, 36}};
    for (const auto& one : cases) {
        TwoSizes button(one.scale);
        const RECT client{one.left, 0, one.right, 600};
        button.onResize(client);
        const RECT area = hitArea(button, client);
        EXPECT_EQ(area.right - area.left, one.side) << one.scale << ", " << one.right - one.left;
        EXPECT_EQ(area.bottom - area.top, one.side) << one.scale << ", " << one.right - one.left;
    }
    EXPECT_EQ(std::size(cases), 10u);
}

TEST(XButton, ResizedAcrossTheThreshold_FollowsEachTime) {
    TwoSizes button(1.0f);
    for (const LONG width : {898L, 897L, 898L}) {
        const RECT client{0, 0, width, 600};
        button.onResize(client);
        const RECT area = hitArea(button, client);
        EXPECT_EQ(area.right - area.left, width == 898 ? 36 : 24) << width;
    }
}

TEST(XButton, BeforeAnyResize_HitsNothing) {
    XButton button(1.0f);
    const RECT area = hitArea(button);
    EXPECT_TRUE(IsRectEmpty(&area));
}

TEST(XButton, CreatedForAWindow_TakesThatWindowsScale) {
    XButton ofWindow(static_cast<HWND>(nullptr));
    ofWindow.onResize(kClient);
    XButton ofScale = sized(getWindowScale(nullptr));
    const RECT a = hitArea(ofWindow);
    const RECT b = hitArea(ofScale);
    EXPECT_TRUE(EqualRect(&a, &b));
    EXPECT_FALSE(IsRectEmpty(&a));
}

TEST(XButton, PointerEntersAndLeaves_HandThenArrowOnlyOnTheChange) {
    const HCURSOR hand = LoadCursorW(nullptr, IDC_HAND);
    const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    const HCURSOR other = LoadCursorW(nullptr, IDC_CROSS);
    const HCURSOR before = SetCursor(other);
    XButton button = sized(1.0f);

    button.onMouseMove({500, 300}, kClient);
    EXPECT_EQ(GetCursor(), other) << "never over the button: the cursor is none of its business";
    button.onMouseMove({950, 30}, kClient);
    EXPECT_EQ(GetCursor(), hand);
    SetCursor(other);
    button.onMouseMove({951, 31}, kClient);
    EXPECT_EQ(GetCursor(), other) << "set a second time within the button";
    button.onMouseMove({500, 300}, kClient);
    EXPECT_EQ(GetCursor(), arrow);
    SetCursor(other);
    button.onMouseMove({501, 300}, kClient);
    EXPECT_EQ(GetCursor(), other);
    SetCursor(before);
}

TEST(XButton, MouseMove_AsksTheVirtualHitTest) {
    struct Everywhere : XButton {
        using XButton::XButton;
        bool hitTest(const POINT&, const RECT&) override { return true; }
    } button(1.0f);
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, IDC_CROSS));
    button.onMouseMove({0, 0}, kClient);
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_HAND));
    SetCursor(before);
}

TEST(XButton, Click_RunsTheActionAndNothingWithoutOne) {
    XButton button(1.0f);
    button.click();
    int clicks = 0;
    button.setClickCallback([&] { ++clicks; });
    button.click();
    button.click();
    EXPECT_EQ(clicks, 2);
    button.setClickCallback(nullptr);
    button.click();
    EXPECT_EQ(clicks, 2);
}

TEST(XButton, ActionDestroysTheButton_WhatItCapturedLivesToItsEnd) {
    // Static, so that the action reads nothing from itself after the button has gone.
    static std::unique_ptr<XButton> button;
    static std::weak_ptr<int> captured;
    static bool aliveAtTheEnd = false;
    button = std::make_unique<XButton>(1.0f);
    auto token = std::make_shared<int>(7);
    captured = token;
    button->setClickCallback([token = std::move(token)] {
        button.reset();
        aliveAtTheEnd = !captured.expired();
    });
    button->click();
    EXPECT_TRUE(aliveAtTheEnd);
    EXPECT_TRUE(captured.expired());
    EXPECT_EQ(button, nullptr);
}

}  // namespace ZEMO::UI
