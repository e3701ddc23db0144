#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>

namespace ZEMO::UI {

/// The close button of a view as its window sees it: a hit area and an action. Points and client rectangles are device
/// pixels. All on the window's thread; the callback is set once, before the button is shown.
class IXbtn {
public:
    virtual bool hitTest(const POINT& point, const RECT& client) = 0;
    /// Chooses the size for this window width.
    virtual void onResize(const RECT& client) = 0;
    /// Shows the hand over the button and the arrow after it; only a change touches the cursor.
    virtual void onMouseMove(const POINT& point, const RECT& client) = 0;
    virtual void setClickCallback(std::function<void()> callback) = 0;
    /// Runs the action, if there is one. The action may destroy the view and with it this button.
    virtual void click() = 0;
    virtual ~IXbtn() = default;
};

/// The square in the top right corner. There is no window behind it: whoever shows the view's frame draws the icon.
class XButton : public IXbtn {
public:
    /// Takes the scale that `window` has now and keeps it.
    explicit XButton(HWND window);
    /// `scale`: device pixels for each logical pixel.
    explicit XButton(float scale);

    bool hitTest(const POINT& point, const RECT& client) override;
    void onResize(const RECT& client) override;
    void onMouseMove(const POINT& point, const RECT& client) override;
    void setClickCallback(std::function<void()> callback) override;
    void click() override;

private:
    std::function<void()> clickCallback;
    bool hovering = false;
    // Device pixels.
    int32_t size = 0;
    int32_t margin;
    int32_t scaledWidthThreshold;

protected:
    int32_t sizeWide;
    int32_t sizeNarrow;
};

}  // namespace ZEMO::UI
