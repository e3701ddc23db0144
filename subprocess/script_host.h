#pragma once

#include <vector>

#include "include/cef_frame.h"
#include "include/cef_process_message.h"
#include "include/cef_v8.h"

namespace ZEMO::UI {

/// The page's half of the script bridge: runs the game's scripts and answers with their results, and gives the page's
/// own scripts `window.BindObjectAsync`.
///
/// Main thread of a page's process. Main frames only: what a page shows in its sub-frames may come from anybody. One
/// process may run several pages, and a page has a new script context with each document.
class ScriptHost {
public:
    void onContextCreated(const CefRefPtr<CefFrame>& frame, const CefRefPtr<CefV8Context>& context);
    void onContextReleased(const CefRefPtr<CefV8Context>& context);
    /// False: the message is not for this object.
    bool onMessage(const CefRefPtr<CefFrame>& frame, const CefRefPtr<CefProcessMessage>& message) const;

private:
    /// A document's context with two functions that live in it, out of the page's reach.
    struct Document {
        CefRefPtr<CefV8Context> context;
        CefRefPtr<CefV8Value> toText;  ///< (value): its JSON text, undefined, or an array with an error's text
        CefRefPtr<CefV8Value> settle;  ///< (promise, answer): calls answer with what toText gives for its outcome
    };

    Document find(const CefRefPtr<CefV8Context>& context) const;
    void evaluate(const CefRefPtr<CefFrame>& frame, const CefString& id, const CefString& script) const;

    std::vector<Document> documents;
};

}  // namespace ZEMO::UI
