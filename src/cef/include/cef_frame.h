#pragma once

#include "include/cef_base.h"
#include "include/cef_process_message.h"
#include "include/cef_request.h"
#include "include/cef_string_visitor.h"

class CefBrowser;
class CefDOMVisitor;
class CefV8Context;

//@engine
class CefFrame : public virtual CefBaseRefCounted {
public:
    virtual bool IsValid() = 0;
    virtual void Undo() = 0;
    virtual void Redo() = 0;
    virtual void Cut() = 0;
    virtual void Copy() = 0;
    virtual void Paste() = 0;
    virtual void PasteAndMatchStyle() = 0;
    //@capi del
    virtual void Delete() = 0;
    virtual void SelectAll() = 0;
    virtual void ViewSource() = 0;
    virtual void GetSource(CefRefPtr<CefStringVisitor> visitor) = 0;
    virtual void GetText(CefRefPtr<CefStringVisitor> visitor) = 0;
    virtual void LoadRequest(CefRefPtr<CefRequest> request) = 0;
    virtual void LoadURL(const CefString& url) = 0;
    //@optional script_url
    virtual void ExecuteJavaScript(const CefString& code, const CefString& script_url, int start_line) = 0;
    virtual bool IsMain() = 0;
    virtual bool IsFocused() = 0;
    virtual CefString GetName() = 0;
    virtual CefString GetIdentifier() = 0;
    virtual CefRefPtr<CefFrame> GetParent() = 0;
    virtual CefString GetURL() = 0;
    virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
    /// In the script's process only.
    virtual CefRefPtr<CefV8Context> GetV8Context() = 0;
    /// In the script's process only.
    virtual void VisitDOM(CefRefPtr<CefDOMVisitor> visitor) = 0;
    virtual void SendProcessMessage(CefProcessId target_process, CefRefPtr<CefProcessMessage> message) = 0;
};
