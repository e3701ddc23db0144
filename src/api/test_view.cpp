#include "api/test_view.h"

#include "core/never_destroyed.h"

namespace ZEMO::UI {

void keepTestView(std::shared_ptr<IZEMOWebView> view) {
    // At the end of the process the view's threads are gone before static objects are.
    static Core::NeverDestroyed<std::shared_ptr<IZEMOWebView>> lastTestWebView;
    *lastTestWebView = std::move(view);
}

}  // namespace ZEMO::UI
