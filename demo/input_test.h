#pragma once

#include "hands.h"
#include "test_stage.h"

namespace demo {

/// The self test's second half: a player at the page. Each step leaves the pages as it found them.
class InputTest {
public:
    explicit InputTest(TestStage& ground) : stage(ground), hands(ground.game) {}

    /// On pages/self_test.html, which is in front: its button, its field, its list, its scrolled part.
    void onThePage();
    void closeButton();
    /// A page that is made for a controller, played by its stand-in, the keyboard.
    void padPage();

private:
    void touch();
    void click();
    void type();
    void choose();
    void scroll();
    HWND reachPage();
    void click(double x, double y) { hands.click(stage.px(x), stage.px(y)); }
    void awaitState(const std::string& part);
    void awaitAsked(const std::string& command);

    TestStage& stage;
    Hands hands;
};

}  // namespace demo
