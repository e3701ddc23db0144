#include "layers/own_window_link.h"

namespace ZEMO::UI {

void OwnWindowLink::attach(const std::weak_ptr<ZEMOWindow>& completeLayer) {
    const std::lock_guard lock(access);
    layer = completeLayer;
}

std::shared_ptr<ZEMOWindow> OwnWindowLink::lockLayer() {
    const std::lock_guard lock(access);
    return layer.lock();
}

void OwnWindowLink::windowCreated(HWND created) {
    const std::lock_guard lock(access);
    window = created;
}

void OwnWindowLink::windowDestroyed(HWND destroyed) {
    const std::lock_guard lock(access);
    if (window == destroyed) window = nullptr;
}

void OwnWindowLink::postClose(HWND target) {
    const std::lock_guard lock(access);
    if (window) PostMessageW(target, WM_CLOSE, 0, 0);
}

void OwnWindowLink::clearUserData() {
    // Under the lock, so that the window cannot be destroyed (and its handle given away) in between. The call sends no
    // message, so the window's thread is not needed for it.
    const std::lock_guard lock(access);
    if (window) SetWindowLongPtrW(window, GWLP_USERDATA, 0);
}

}  // namespace ZEMO::UI
