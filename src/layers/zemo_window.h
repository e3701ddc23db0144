#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "core/geometry.h"
#include "layers/close_button.h"
#include "layers/layer.h"
#include "layers/own_window_link.h"
#include "layers/window_events.h"
#include "render/custom_cursor_loader.h"

namespace ZEMO::UI {

class WindowMessage;
class ZEMOExtraWindowForSteamdeck;

/// Binds a layer to a native window and turns that window's messages into calls of the event interfaces, which the
/// derived class implements. In Layer style the window is the game's, and its messages come through handleMessage from
/// the layer manager. In Window style it is a window of this class's own, with a thread of its own.
///
/// Make one with ZEMOWindow::create, never on the stack: only then does an own window pass its messages on.
class ZEMOWindow : public ILayer,
                   public IIMEEvents,
                   public IInputEvents,
                   public IFocusEvents,
                   public IExternalInputEvents {
public:
    /// std::make_shared<T> with the arguments, then the step that lets an own window reach the complete object. Until
    /// then, and while the last reference goes, the window's messages take the system's default way.
    template <class T, class... Arguments>
    static std::shared_ptr<T> create(Arguments&&... arguments) {
        auto layer = std::make_shared<T>(std::forward<Arguments>(arguments)...);
        const ZEMOWindow& base = *layer;
        if (base.ownWindow) base.ownWindow->attach(std::shared_ptr<ZEMOWindow>(layer));
        return layer;
    }

    /// size is in logical pixels. In Window style this returns when the window exists (or could not be made: then
    /// getWindowHandle() is null). Throws std::system_error when its thread cannot be started.
    ZEMOWindow(const char* name, WindowStyle style, Size size, HWND parent, bool hasFrameConsumer, bool onSteamDeck,
               bool hasSteamOverlay);
    ~ZEMOWindow() override;
    ZEMOWindow(const ZEMOWindow&) = delete;
    ZEMOWindow& operator=(const ZEMOWindow&) = delete;

    HWND getWindowHandle() const { return window; }
    WindowStyle getWindowStyle() const { return windowStyle; }
    /// The child view window where there is one, else the window: what the engine and the renderers work with.
    HWND getViewWindowHandle() const { return viewChild ? viewChildWindow : window; }

    /// Once; a second call only drops its argument. Any thread, not two at a time.
    void createCloseButton(std::function<void()> callback);
    /// Presses the close button from code, if there is one.
    void clickCloseButton();

    bool handleMessage(LRESULT* result, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
    void setSteamOverlayActive(bool active) override { steamOverlayActive = active; }

    /// Closes the own window, as long as it is this view's: callable on any thread, also when the layer has gone. Empty
    /// on the game's window.
    std::function<void()> ownWindowCloser() const;

protected:
    /// The button that createCloseButton puts up; a derived class may bring one of its own kind.
    virtual std::unique_ptr<IXbtn> makeCloseButton() const { return std::make_unique<XButton>(window); }

    /// Hands over the child view window of the Steam Deck variant with its handle. On the window's thread, before the
    /// constructor returns.
    void setViewChild(std::shared_ptr<ZEMOExtraWindowForSteamdeck> child, HWND childWindow);

    /// The game's own cursor file, shown in place of the page's cursors; null for none. Set by the constructor.
    HCURSOR customCursor = nullptr;

private:
    // own_window_thread.cpp
    struct OwnThreadStart;
    void createOwnWindow();
    void buildOwnWindow();
    void createViewChild();
    static unsigned __stdcall ownWindowThread(void* argument);
    static LRESULT CALLBACK ownClassProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // messages/: one table from message to function for each style
    struct LayerStyle;
    struct OwnStyle;
    using OwnResult = std::optional<LRESULT>;  ///< empty: the system's default answer is wanted
    OwnResult windowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    void moveMouse(const WindowMessage& m, int x, int y, WPARAM keys);

    IXbtn* closeButtonIfShown() const { return closeButtonShown.load(std::memory_order_acquire); }
    bool isOnCloseButton(const WindowMessage& m) const;

    HWND window = nullptr;
    HWND parentWindow;
    std::string title;
    WindowStyle windowStyle;
    int32_t width;   ///< logical pixels
    int32_t height;  ///< logical pixels
    std::unique_ptr<IXbtn> closeButton;
    /// Set once the button is complete: it is made on the engine thread and used on the window's.
    std::atomic<IXbtn*> closeButtonShown = nullptr;
    bool frameConsumerActive;
    bool steamDeck;
    bool firstErase = true;
    CustomCursorLoader customCursorLoader;
    std::atomic<bool> steamOverlayActive;  ///< set on the game's thread
    std::shared_ptr<ZEMOExtraWindowForSteamdeck> viewChild;
    HWND viewChildWindow = nullptr;
    std::shared_ptr<OwnWindowLink> ownWindow;  ///< Window style only
};

}  // namespace ZEMO::UI
