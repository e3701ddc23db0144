// The child of the binding's own engine tests: it answers messages, adds a native function to scripts and looks into
// the document, so that the operations of the page's process are called for real.
#include "../../subprocess/child_app.h"

namespace ZEMO::UI {
namespace {

/// twice(x): the text of x two times; throws without an argument.
class TwiceHandler : public CefV8Handler {
public:
    bool Execute(const CefString& name, CefRefPtr<CefV8Value>, const CefV8ValueList& arguments,
                 CefRefPtr<CefV8Value>& retval, CefString& exception) override {
        if (arguments.size() != 1 || !arguments[0]->IsString()) {
            exception = name.ToString() + " 인수 없음";
            return true;
        }
        const std::string text = arguments[0]->GetStringValue();
        retval = CefV8Value::CreateString(text + text);
        return true;
    }

private:
    IMPLEMENT_REFCOUNTING(TwiceHandler);
};

class EchoRenderProcess : public CefRenderProcessHandler {
public:
    void OnContextCreated(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>, CefRefPtr<CefV8Context> context) override {
        context->GetGlobal()->SetValue("twice", CefV8Value::CreateFunction("twice", new TwiceHandler),
                                       V8_PROPERTY_ATTRIBUTE_NONE);
    }

    void OnFocusedNodeChanged(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame> frame, CefRefPtr<CefDOMNode> node) override {
        auto message = CefProcessMessage::Create("focus");
        auto list = message->GetArgumentList();
        list->SetString(0, node ? node->GetElementAttribute("id") : CefString());
        list->SetInt(1, node ? static_cast<int>(node->GetFormControlElementType()) : -1);
        frame->SendProcessMessage(PID_BROWSER, message);
    }

    bool OnProcessMessageReceived(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame> frame, CefProcessId,
                                  CefRefPtr<CefProcessMessage> message) override {
        auto context = frame->GetV8Context();
        auto answer = CefProcessMessage::Create("answer");
        auto list = answer->GetArgumentList();
        if (message->GetName() == "echo") {
            list->SetList(0, message->GetArgumentList()->Copy());
        } else {
            CefRefPtr<CefV8Value> value;
            CefRefPtr<CefV8Exception> exception;
            const bool good = context->Enter() &&
                              context->Eval(message->GetArgumentList()->GetString(0), "eval.js", 7, value, exception);
            list->SetBool(0, good);
            if (good && value) list->SetString(1, value->GetStringValue());
            if (!good && exception) {
                list->SetString(1, exception->GetMessage());
                list->SetInt(2, exception->GetLineNumber());
            }
            context->Exit();
        }
        frame->SendProcessMessage(PID_BROWSER, answer);
        return true;
    }

private:
    IMPLEMENT_REFCOUNTING(EchoRenderProcess);
};

class EchoApp : public CefApp {
public:
    CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return renderProcess_; }

private:
    CefRefPtr<EchoRenderProcess> renderProcess_ = new EchoRenderProcess;
    IMPLEMENT_REFCOUNTING(EchoApp);
};

}  // namespace

CefRefPtr<CefApp> createChildApp() { return new EchoApp; }

}  // namespace ZEMO::UI
