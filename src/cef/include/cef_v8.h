#pragma once

#include "include/cef_base.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"
#include "include/cef_task.h"

// Scripts of a page: only in the page's own process, only on its main thread.

class CefV8Exception;
class CefV8Handler;
class CefV8StackFrame;
class CefV8Value;

typedef std::vector<CefRefPtr<CefV8Value>> CefV8ValueList;

/// Known by name only: nothing here makes one or looks into one.
//@client
class CefV8Accessor : public virtual CefBaseRefCounted {};
/// Known by name only: nothing here makes one or looks into one.
//@client
class CefV8Interceptor : public virtual CefBaseRefCounted {};

//@engine
class CefV8Context : public virtual CefBaseRefCounted {
public:
    static CefRefPtr<CefV8Context> GetCurrentContext();
    static CefRefPtr<CefV8Context> GetEnteredContext();
    static bool InContext();
    virtual CefRefPtr<CefTaskRunner> GetTaskRunner() = 0;
    virtual bool IsValid() = 0;
    virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
    virtual CefRefPtr<CefFrame> GetFrame() = 0;
    virtual CefRefPtr<CefV8Value> GetGlobal() = 0;
    virtual bool Enter() = 0;
    virtual bool Exit() = 0;
    virtual bool IsSame(CefRefPtr<CefV8Context> that) = 0;
    //@optional script_url
    virtual bool Eval(const CefString& code, const CefString& script_url, int start_line, CefRefPtr<CefV8Value>& retval,
                      CefRefPtr<CefV8Exception>& exception) = 0;
};

//@client
class CefV8Handler : public virtual CefBaseRefCounted {
public:
    /// False: not handled.  A non-empty `exception` is thrown in the script.
    virtual bool Execute(const CefString& name, CefRefPtr<CefV8Value> object, const CefV8ValueList& arguments,
                         CefRefPtr<CefV8Value>& retval, CefString& exception) = 0;
};

//@engine
class CefV8Exception : public virtual CefBaseRefCounted {
public:
    virtual CefString GetMessage() = 0;
    virtual CefString GetSourceLine() = 0;
    virtual CefString GetScriptResourceName() = 0;
    virtual int GetLineNumber() = 0;
    virtual int GetStartPosition() = 0;
    virtual int GetEndPosition() = 0;
    virtual int GetStartColumn() = 0;
    virtual int GetEndColumn() = 0;
};

//@engine
class CefV8StackTrace : public virtual CefBaseRefCounted {
public:
    static CefRefPtr<CefV8StackTrace> GetCurrent(int frame_limit);
    virtual bool IsValid() = 0;
    virtual int GetFrameCount() = 0;
    virtual CefRefPtr<CefV8StackFrame> GetFrame(int index) = 0;
};

//@engine
class CefV8StackFrame : public virtual CefBaseRefCounted {
public:
    virtual bool IsValid() = 0;
    virtual CefString GetScriptName() = 0;
    virtual CefString GetScriptNameOrSourceURL() = 0;
    virtual CefString GetFunctionName() = 0;
    virtual int GetLineNumber() = 0;
    virtual int GetColumn() = 0;
    virtual bool IsEval() = 0;
    virtual bool IsConstructor() = 0;
};

//@engine
class CefV8Value : public virtual CefBaseRefCounted {
public:
    typedef cef_v8_propertyattribute_t PropertyAttribute;

    static CefRefPtr<CefV8Value> CreateUndefined();
    static CefRefPtr<CefV8Value> CreateNull();
    static CefRefPtr<CefV8Value> CreateBool(bool value);
    static CefRefPtr<CefV8Value> CreateInt(int32_t value);
    static CefRefPtr<CefV8Value> CreateUInt(uint32_t value);
    static CefRefPtr<CefV8Value> CreateDouble(double value);
    static CefRefPtr<CefV8Value> CreateDate(CefBaseTime date);
    //@optional value
    static CefRefPtr<CefV8Value> CreateString(const CefString& value);
    static CefRefPtr<CefV8Value> CreateObject(CefRefPtr<CefV8Accessor> accessor,
                                              CefRefPtr<CefV8Interceptor> interceptor);
    static CefRefPtr<CefV8Value> CreateArray(int length);
    static CefRefPtr<CefV8Value> CreateFunction(const CefString& name, CefRefPtr<CefV8Handler> handler);
    static CefRefPtr<CefV8Value> CreatePromise();
    virtual bool IsValid() = 0;
    virtual bool IsUndefined() = 0;
    virtual bool IsNull() = 0;
    virtual bool IsBool() = 0;
    virtual bool IsInt() = 0;
    virtual bool IsUInt() = 0;
    virtual bool IsDouble() = 0;
    virtual bool IsDate() = 0;
    virtual bool IsString() = 0;
    virtual bool IsObject() = 0;
    virtual bool IsArray() = 0;
    virtual bool IsArrayBuffer() = 0;
    virtual bool IsFunction() = 0;
    virtual bool IsPromise() = 0;
    virtual bool IsSame(CefRefPtr<CefV8Value> that) = 0;
    virtual bool GetBoolValue() = 0;
    virtual int32_t GetIntValue() = 0;
    virtual uint32_t GetUIntValue() = 0;
    virtual double GetDoubleValue() = 0;
    virtual CefBaseTime GetDateValue() = 0;
    virtual CefString GetStringValue() = 0;
    virtual bool IsUserCreated() = 0;
    virtual bool HasException() = 0;
    virtual CefRefPtr<CefV8Exception> GetException() = 0;
    virtual bool ClearException() = 0;
    virtual bool WillRethrowExceptions() = 0;
    virtual bool SetRethrowExceptions(bool rethrow) = 0;
    //@capi has_value_bykey
    //@optional key
    virtual bool HasValue(const CefString& key) = 0;
    //@capi has_value_byindex
    virtual bool HasValue(int index) = 0;
    //@capi delete_value_bykey
    //@optional key
    virtual bool DeleteValue(const CefString& key) = 0;
    //@capi delete_value_byindex
    virtual bool DeleteValue(int index) = 0;
    //@capi get_value_bykey
    //@optional key
    virtual CefRefPtr<CefV8Value> GetValue(const CefString& key) = 0;
    //@capi get_value_byindex
    virtual CefRefPtr<CefV8Value> GetValue(int index) = 0;
    //@capi set_value_bykey
    //@optional key
    virtual bool SetValue(const CefString& key, CefRefPtr<CefV8Value> value, PropertyAttribute attribute) = 0;
    //@capi set_value_byindex
    virtual bool SetValue(int index, CefRefPtr<CefV8Value> value) = 0;
    virtual bool GetKeys(std::vector<CefString>& keys) = 0;
    virtual int GetArrayLength() = 0;
    virtual CefString GetFunctionName() = 0;
    virtual CefRefPtr<CefV8Handler> GetFunctionHandler() = 0;
    virtual CefRefPtr<CefV8Value> ExecuteFunction(CefRefPtr<CefV8Value> object, const CefV8ValueList& arguments) = 0;
    virtual CefRefPtr<CefV8Value> ExecuteFunctionWithContext(CefRefPtr<CefV8Context> context,
                                                             CefRefPtr<CefV8Value> object,
                                                             const CefV8ValueList& arguments) = 0;
    virtual bool ResolvePromise(CefRefPtr<CefV8Value> arg) = 0;
    virtual bool RejectPromise(const CefString& errorMsg) = 0;
};

//@function
bool CefRegisterExtension(const CefString& extension_name, const CefString& javascript_code,
                          CefRefPtr<CefV8Handler> handler);
