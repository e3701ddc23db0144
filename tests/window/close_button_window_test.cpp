#include <gtest/gtest.h>

#include "layers/close_button.h"
#include "layers/messages/track_mouse_leave.h"
#include "render/display_scale.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// The narrow button is smaller than the wide one, so that the choice between them shows.
class TwoSizes : public XButton {
public:
    TwoSizes() : XButton(1.0f) { sizeNarrow = 24; }
};

class TwoSizeLayer : public RecordingLayer {
public:
    using RecordingLayer::RecordingLayer;

private:
    std::unique_ptr<IXbtn> makeCloseButton() const override { return std::make_unique<TwoSizes>(); }
};

/// A layer with a close button on a game window whose client area is exactly 1000 pixels wide.
class CloseButtonWindow : public testing::Test {
protected:
    CloseButtonWindow() : frame(frameFor(1000, 600)) {
        SetWindowPos(fixture.game.handle(), nullptr, 60, 60, frame.cx, frame.cy, SWP_NOZORDER);
        show<RecordingLayer>();
    }
    ~CloseButtonWindow() override { ZEMOMultiLayerManager::instance().removeLayer(layer); }

    template <class Layer>
    void show() {
        if (layer) ZEMOMultiLayerManager::instance().removeLayer(layer);
        RecordingLayer::Options options;
        options.parent = fixture.game.handle();
        layer = ZEMOWindow::create<Layer>(options, journal);
        layer->setCustomCursor(nullptr);
        layer->createCloseButton([this] { journal->add("clicked"); });
        ZEMOMultiLayerManager::instance().addLayer(layer);
    }

    void resizeClient(LONG width, LONG height) {
        const SIZE size = frameFor(width, height);
        SetWindowPos(fixture.game.handle(), nullptr, 60, 60, size.cx, size.cy, SWP_NOZORDER);
        clientWidth = width;
    }

    static SIZE frameFor(LONG width, LONG height) {
        RECT r{0, 0, width, height};
        AdjustWindowRectEx(&r, WS_OVERLAPPEDWINDOW, FALSE, WS_EX_TOPMOST);
        return {r.right - r.left, r.bottom - r.top};
    }

    /// A press with the cursor at this client point: true when the button took it.
    bool pressAt(LONG x, LONG y) {
        bool clicked = false;
        bool counts = false;
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        while (!counts && std::chrono::steady_clock::now() < deadline) {
            // The window manager answers a new size late, and with an older one in between; on the window's thread it
            // can't do so during the press.
            fixture.game.onThread([&] {
                counts = fixture.game.client().right == clientWidth;
                if (counts) clicked = pressOnce(x, y);
            });
        }
        EXPECT_TRUE(counts) << "the window does not stay " << clientWidth << " wide";
        return clicked;
    }

    bool pressOnce(LONG x, LONG y) {
        const CursorAt at(clientToScreen(fixture.game.handle(), {x, y}));
        bool clicked = false;
        CursorAt::hold([&] {
            journal->clear();
            fixture.game.probe(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
            clicked = journal->count("clicked") == 1;
            EXPECT_NE(clicked, journal->count("onMouseButton(0,0,1,1)") == 1);
        });
        return clicked;
    }

    SubclassedGame fixture;
    SIZE frame;
    LONG clientWidth = 1000;
    std::shared_ptr<Journal> journal = std::make_shared<Journal>();
    std::shared_ptr<RecordingLayer> layer;
};

TEST_F(CloseButtonWindow, PressesAtTheEdges_HitInsideAndMissOutside) {
    ASSERT_EQ(getWindowScale(fixture.game.handle()), 1.0f) << "the places below are those of scale 1";
    struct Place {
        LONG x, y;
        bool hit;
    };
    const std::vector<Place> places = {
        {944, 20, true},  {943, 20, false}, {944, 19, false}, {979, 55, true}, {980, 20, false},
        {979, 56, false}, {980, 55, false}, {962, 38, true},  {999, 0, false}, {500, 300, false},
    };
    ASSERT_EQ(places.size(), 10u);
    for (const Place& place : places) EXPECT_EQ(pressAt(place.x, place.y), place.hit) << place.x << ", " << place.y;
}

TEST_F(CloseButtonWindow, WindowMadeNarrower_ButtonMovesWithTheRightEdge) {
    resizeClient(500, 400);
    EXPECT_TRUE(pressAt(444, 20));
    EXPECT_TRUE(pressAt(479, 55));
    EXPECT_FALSE(pressAt(443, 20));
    EXPECT_FALSE(pressAt(480, 20));
}

TEST_F(CloseButtonWindow, ButtonOfTwoSizes_IsMadeForTheWidthOfTheWindow) {
    show<TwoSizeLayer>();
    EXPECT_TRUE(pressAt(944, 55));
    resizeClient(897, 400);
    show<TwoSizeLayer>();
    EXPECT_FALSE(pressAt(852, 43));
    EXPECT_TRUE(pressAt(853, 43));
    EXPECT_FALSE(pressAt(853, 44));
}

TEST_F(CloseButtonWindow, WindowMadeNarrower_ButtonTakesItsNarrowSize) {
    show<TwoSizeLayer>();
    resizeClient(897, 400);
    EXPECT_TRUE(pressAt(853, 20));
    EXPECT_TRUE(pressAt(876, 43));
    EXPECT_FALSE(pressAt(852, 20));
    EXPECT_FALSE(pressAt(876, 44));
}

TEST_F(CloseButtonWindow, WindowMadeWider_ButtonTakesItsWideSize) {
    resizeClient(897, 400);
    show<TwoSizeLayer>();
    resizeClient(898, 400);
    EXPECT_TRUE(pressAt(842, 20));
    EXPECT_TRUE(pressAt(877, 55));
    EXPECT_FALSE(pressAt(841, 20));
    EXPECT_FALSE(pressAt(877, 56));
}

TEST_F(CloseButtonWindow, CursorOverTheButton_IsAHandAndAnArrowOutside) {
    const HCURSOR wait = LoadCursorW(nullptr, IDC_WAIT);
    int attempts = 0;
    const auto moveTo = [&](LONG x, LONG y) {
        HCURSOR after = nullptr;
        const CursorAt at(clientToScreen(fixture.game.handle(), {x, y}));
        attempts += CursorAt::hold([&] {
            trackMouseLeave = false;
            SetCursor(wait);
            fixture.game.probe(WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
            after = GetCursor();
        });
        return after;
    };
    HCURSOR onButton = nullptr, within = nullptr, outside = nullptr, farther = nullptr;
    fixture.game.onThread([&] {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        do {  // each move once only: the button answers to the change
            attempts = 0;
            moveTo(500, 300);
            onButton = moveTo(950, 30);
            within = moveTo(960, 40);
            outside = moveTo(500, 300);
            farther = moveTo(400, 300);
        } while (attempts != 5 && std::chrono::steady_clock::now() < deadline);
    });
    EXPECT_EQ(onButton, LoadCursorW(nullptr, IDC_HAND));
    EXPECT_EQ(within, wait);  // no second change
    EXPECT_EQ(outside, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(farther, wait);
}

}  // namespace
}  // namespace ZEMO::Test
