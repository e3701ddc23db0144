#pragma once

#include <set>

#include "include/cef_browser.h"
#include "include/cef_dom.h"
#include "include/cef_frame.h"

namespace ZEMO::UI {

/// Tells the browser process that a password field gained or lost the focus, so that the input method can be kept away
/// from it. The engine names the element that really has the focus, also inside frames and shadow trees.
///
/// Main thread of a page's process. One such process may run several pages, and a page's frames may be in several.
class PasswordFocus {
public:
    /// `node`: what has the focus in `frame` now; null for nothing.
    void onFocusedNodeChanged(const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame,
                              const CefRefPtr<CefDOMNode>& node);
    void onBrowserDestroyed(const CefRefPtr<CefBrowser>& browser);

private:
    std::set<int> focusedIn;  ///< pages whose last report was a gain
};

}  // namespace ZEMO::UI
