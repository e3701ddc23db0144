#include "api/test_view.h"

#include <mutex>
#include <utility>

#include "core/never_destroyed.h"

namespace ZEMO::UI {

void keepTestView(std::shared_ptr<IZEMOWebView> view) {
    // At the end of the process the view's threads are gone before static objects are.
    static Core::NeverDestroyed<std::shared_ptr<IZEMOWebView>> lastTestWebView;
    static std::mutex access;
    {
        const std::lock_guard lock(access);
        lastTestWebView->swap(view);
    }
    // The one before ends here, unlocked: its end calls the game.
}

}  // namespace ZEMO::UI
