#pragma once

#include "include/cef_base.h"

//@engine
class CefCommandLine : public virtual CefBaseRefCounted {
public:
    typedef std::vector<CefString> ArgumentList;
    typedef std::map<CefString, CefString> SwitchMap;

    //@capi create
    static CefRefPtr<CefCommandLine> CreateCommandLine();
    //@capi get_global
    static CefRefPtr<CefCommandLine> GetGlobalCommandLine();
    virtual bool IsValid() = 0;
    virtual bool IsReadOnly() = 0;
    virtual CefRefPtr<CefCommandLine> Copy() = 0;
    virtual void InitFromString(const CefString& command_line) = 0;
    virtual void Reset() = 0;
    virtual void GetArgv(std::vector<CefString>& argv) = 0;
    virtual CefString GetCommandLineString() = 0;
    virtual CefString GetProgram() = 0;
    virtual void SetProgram(const CefString& program) = 0;
    virtual bool HasSwitches() = 0;
    virtual bool HasSwitch(const CefString& name) = 0;
    virtual CefString GetSwitchValue(const CefString& name) = 0;
    virtual void GetSwitches(SwitchMap& switches) = 0;
    virtual void AppendSwitch(const CefString& name) = 0;
    virtual void AppendSwitchWithValue(const CefString& name, const CefString& value) = 0;
    virtual bool HasArguments() = 0;
    virtual void GetArguments(ArgumentList& arguments) = 0;
    virtual void AppendArgument(const CefString& argument) = 0;
    virtual void PrependWrapper(const CefString& wrapper) = 0;
};
