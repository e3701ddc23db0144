#include "api/test_view.h"

namespace ZEMO::UI {

void keepTestView(std::shared_ptr<IZEMOWebView> view) {
    // Never destroyed: at the end of the process the view's threads are gone before static objects are.
    static auto& lastTestWebView = *std::make_unique<std::shared_ptr<IZEMOWebView>>().release();
    lastTestWebView = std::move(view);
}

}  // namespace ZEMO::UI
