#pragma once

#include <memory>

namespace ZEMO::UI {

class IZEMOView;

/// Hears when a view is shown and closed. Implemented by the game; called on the thread that called show or close, and
/// for a view in a window of its own also on that window's thread.
class ZEMOViewDelegate {
public:
    /// `view` is valid during the call; keep the shared pointer that the factory gave, not this one.
    /// At the end of each show.
    virtual void viewDidShow(IZEMOView* view) = 0;
    /// In close, or when the view's own window is closed; not when the view object dies. The view may be dropped here.
    virtual void viewDidClose(IZEMOView* view) = 0;
    virtual ~ZEMOViewDelegate() = default;
};

/// What all views share. One view is used from one thread: the game's.
class IZEMOView {
public:
    /// Puts the view on the screen. The first call creates the browser and starts the stored load; a later one, also
    /// after close, only brings the same page back. Returns before anything is painted.
    /// Throws std::system_error when a thread can't be started.
    virtual void show() = 0;

    /// show, then takes the view's close gate. This is no modal loop: the first wait returns at once, with the calling
    /// thread as the gate's owner; another thread that waits meanwhile blocks until the owner calls close.
    virtual void showAndWait() = 0;

    /// Takes the view off the screen, keeps its page, tells the view delegate. A view in a window of its own keeps that
    /// window until the view object dies.
    virtual void close() = 0;

    /// Held weakly: the game keeps its delegate alive for as long as it wants to hear of anything. Before show.
    virtual void setViewDelegate(std::shared_ptr<ZEMOViewDelegate> delegate) = 0;

    /// Logical pixels, truncated toward zero. Only the first show reads them, and only for a window of its own: a layer
    /// on the game's window has that window's client size, or the desktop's where there is no window yet.
    virtual void setSize(float width, float height) = 0;

    /// 0: a layer on the game's main window (default). 1: a native window of its own. No other value makes a view.
    /// Must not change between show and close.
    virtual void setDisplayMode(int mode) = 0;

    virtual ~IZEMOView() = default;
};

}  // namespace ZEMO::UI
