#include "script_host.h"

#include <string>

#include "core/json_quoted.h"
#include "core/process_messages.h"
#include "include/cef_values.h"

namespace ZEMO::UI {
namespace {

/// Runs first in every document. Everything that it uses later is taken now: a page may replace its globals, and would
/// then read or forge what belongs to the game.
constexpr char kDocumentScript[] = R"((function(send, noJson) {
    'use strict';
    const { stringify } = JSON, { defineProperty, freeze, getOwnPropertyDescriptor } = Object, text = String;
    const objects = { __proto__: null };

    const errorText = (where, error) => {
        try { return [where + text(error)]; } catch { return [where + 'an error without a text']; }
    };
    const toText = (value) => {
        try {
            return typeof value === 'symbol' ? [noJson] : stringify(value);
        } catch (error) {
            return errorText('Uncaught ', error);
        }
    };
    const settle = async (promise, answer) => {
        let outcome;
        try { outcome = toText(await promise); } catch (error) { outcome = errorText('Uncaught (in promise) ', error); }
        answer(outcome);
    };
    const BindObjectAsync = async (name) => {
        name = text(name);
        const value = objects[name] ??= freeze({ postMessage() { send(name); } });
        // Not by assignment: names like `location` take one in their own way. A page's own `var` keeps its kind.
        const there = getOwnPropertyDescriptor(window, name);
        const fixed = there && !there.configurable;
        defineProperty(window, name, fixed ? { value } : { value, configurable: true, enumerable: true, writable: true });
        return value;
    };
    defineProperty(window, 'BindObjectAsync', { value: BindObjectAsync, configurable: true, writable: true });
    return [toText, settle];
}))";

constexpr char kNoScripts[] = "Uncaught Error: the page runs no scripts";
/// The engine hands out neither of them, so which one it was can't be told.
constexpr char kNoJson[] = "Uncaught TypeError: Do not know how to serialize a BigInt or a Symbol";

class EnteredContext {
public:
    explicit EnteredContext(const CefRefPtr<CefV8Context>& which) : context(which), entered(which->Enter()) {}
    ~EnteredContext() {
        if (entered) context->Exit();
    }
    EnteredContext(const EnteredContext&) = delete;
    EnteredContext& operator=(const EnteredContext&) = delete;
    explicit operator bool() const { return entered; }

private:
    const CefRefPtr<CefV8Context>& context;
    const bool entered;
};

void sendAnswer(const CefRefPtr<CefFrame>& frame, const CefString& id, const CefString& result,
                const CefString& error) {
    const CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(Core::kEvaluateJavascript);
    const CefRefPtr<CefListValue> arguments = message->GetArgumentList();
    arguments->SetString(Core::kEvaluateId, id);
    arguments->SetString(Core::kEvaluateResult, result);
    arguments->SetString(Core::kEvaluateError, error);
    frame->SendProcessMessage(PID_BROWSER, message);
}

/// `outcome`: what the document's toText gives.
void sendOutcome(const CefRefPtr<CefFrame>& frame, const CefString& id, const CefRefPtr<CefV8Value>& outcome) {
    if (outcome && outcome->IsArray()) return sendAnswer(frame, id, {}, outcome->GetValue(0)->GetStringValue());
    sendAnswer(frame, id, outcome && outcome->IsString() ? outcome->GetStringValue() : CefString(), {});
}

/// The frame whose script has just called into this program; null when it is gone.
CefRefPtr<CefFrame> callingFrame() {
    const CefRefPtr<CefV8Context> context = CefV8Context::GetCurrentContext();
    return context ? context->GetFrame() : nullptr;
}

/// send(name): a bound object was used.
class ObjectUsed : public CefV8Handler {
public:
    bool Execute(const CefString& /*name*/, CefRefPtr<CefV8Value> /*object*/, const CefV8ValueList& arguments,
                 CefRefPtr<CefV8Value>& /*retval*/, CefString& /*exception*/) override {
        const CefRefPtr<CefFrame> frame = callingFrame();
        if (!frame || arguments.empty()) return true;
        const CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(Core::kBindObjectAsync);
        message->GetArgumentList()->SetString(Core::kBindObjectName, arguments[0]->GetStringValue());
        frame->SendProcessMessage(PID_BROWSER, message);
        return true;
    }

private:
    IMPLEMENT_REFCOUNTING(ObjectUsed);
};

/// answer(outcome): a promise that a script gave as its result has settled.
class PromiseSettled : public CefV8Handler {
public:
    explicit PromiseSettled(CefString request) : id(std::move(request)) {}

    bool Execute(const CefString& /*name*/, CefRefPtr<CefV8Value> /*object*/, const CefV8ValueList& arguments,
                 CefRefPtr<CefV8Value>& /*retval*/, CefString& /*exception*/) override {
        const CefRefPtr<CefFrame> frame = callingFrame();
        if (frame && !arguments.empty()) sendOutcome(frame, id, arguments[0]);
        return true;
    }

private:
    const CefString id;

    IMPLEMENT_REFCOUNTING(PromiseSettled);
};

}  // namespace

void ScriptHost::onContextCreated(const CefRefPtr<CefFrame>& frame, const CefRefPtr<CefV8Context>& context) {
    if (!frame->IsMain()) return;
    const EnteredContext entered(context);
    CefRefPtr<CefV8Value> install;
    CefRefPtr<CefV8Exception> exception;
    if (!entered || !context->Eval(kDocumentScript, "", 0, install, exception)) return;
    const CefRefPtr<CefV8Value> functions = install->ExecuteFunction(
        nullptr, {CefV8Value::CreateFunction("send", new ObjectUsed), CefV8Value::CreateString(kNoJson)});
    if (functions) documents.push_back({context, functions->GetValue(0), functions->GetValue(1)});
}

void ScriptHost::onContextReleased(const CefRefPtr<CefV8Context>& context) {
    std::erase_if(documents, [&](const Document& document) { return document.context->IsSame(context); });
}

ScriptHost::Document ScriptHost::find(const CefRefPtr<CefV8Context>& context) const {
    for (const Document& document : documents) {
        if (context && document.context->IsSame(context)) return document;
    }
    return {};
}

bool ScriptHost::onMessage(const CefRefPtr<CefFrame>& frame, const CefRefPtr<CefProcessMessage>& message) const {
    if (message->GetName() != Core::kEvaluateJavascript) return false;
    const CefRefPtr<CefListValue> arguments = message->GetArgumentList();
    if (arguments && frame->IsMain()) {
        evaluate(frame, arguments->GetString(Core::kEvaluateId), arguments->GetString(Core::kEvaluateScript));
    }
    return true;
}

void ScriptHost::evaluate(const CefRefPtr<CefFrame>& frame, const CefString& id, const CefString& script) const {
    // A copy: the script may do anything, and with it the list.
    const Document document = find(frame->GetV8Context());
    if (!document.context) return sendAnswer(frame, id, {}, kNoScripts);
    if (script.empty()) return sendAnswer(frame, id, {}, {});  // which the engine takes for no script at all
    const EnteredContext entered(document.context);
    CefRefPtr<CefV8Value> value;
    CefRefPtr<CefV8Exception> exception;
    if (!document.context->Eval(script, "", 0, value, exception)) {
        return sendAnswer(frame, id, {}, exception ? exception->GetMessage() : CefString(kNoScripts));
    }
    if (!value || !value->IsValid()) return sendAnswer(frame, id, {}, kNoJson);
    if (value->IsString()) {  // the commonest of long results: not once more through the page
        const CefString text = value->GetStringValue();
        const std::u16string quoted = Core::jsonQuoted({text.c_str(), text.length()});
        return sendAnswer(frame, id, CefString(quoted.data(), quoted.size(), false), {});
    }
    if (!value->IsPromise()) return sendOutcome(frame, id, document.toText->ExecuteFunction(nullptr, {value}));
    document.settle->ExecuteFunction(nullptr, {value, CefV8Value::CreateFunction("answer", new PromiseSettled(id))});
}

}  // namespace ZEMO::UI
