#pragma once

#include <windows.h>

#include <memory>
#include <mutex>

namespace ZEMO::UI {

class ZEMOWindow;

/// What an own window's thread and its layer share. Both hold it, so it outlives either of them. The window's thread
/// takes a strong reference to the layer for the length of each message; the lock is held only to get it.
class OwnWindowLink {
public:
    /// The layer is complete from here on.
    void attach(const std::weak_ptr<ZEMOWindow>& completeLayer);
    /// The layer for one message; empty before attach and once the last reference is going.
    std::shared_ptr<ZEMOWindow> lockLayer();

    void windowCreated(HWND created);
    void windowDestroyed(HWND destroyed);
    /// Posts WM_CLOSE to `target`, the window or a child of it, while the window lives: a handle of a window that is
    /// gone may be another's by now.
    void postClose(HWND target);
    /// Stops the dispatch to the layer for good. Leaves a window alone whose handle may belong to someone else by now.
    void clearUserData();

private:
    std::mutex access;
    std::weak_ptr<ZEMOWindow> layer;
    HWND window = nullptr;  ///< null once it is destroyed
};

}  // namespace ZEMO::UI
