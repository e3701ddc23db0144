#pragma once

#include "include/cef_base.h"
#include "include/cef_client.h"
#include "include/cef_command_line.h"
#include "include/cef_preference.h"

//@client
class CefBrowserProcessHandler : public virtual CefBaseRefCounted {
public:
    virtual void OnRegisterCustomPreferences(cef_preferences_type_t type, CefRawPtr<CefPreferenceRegistrar> registrar) {
    }
    virtual void OnContextInitialized() {}
    virtual void OnBeforeChildProcessLaunch(CefRefPtr<CefCommandLine> command_line) {}
    virtual bool OnAlreadyRunningAppRelaunch(CefRefPtr<CefCommandLine> command_line,
                                             const CefString& current_directory) {
        return false;
    }
    virtual void OnScheduleMessagePumpWork(int64_t delay_ms) {}
    virtual CefRefPtr<CefClient> GetDefaultClient() { return nullptr; }
    virtual CefRefPtr<CefRequestContextHandler> GetDefaultRequestContextHandler() { return nullptr; }
};
