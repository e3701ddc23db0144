#pragma once

#include "include/cef_base.h"
#include "include/cef_browser_process_handler.h"
#include "include/cef_command_line.h"
#include "include/cef_render_process_handler.h"
#include "include/cef_resource_bundle_handler.h"
#include "include/cef_scheme.h"

/// What one process of the engine is given.
//@client
class CefApp : public virtual CefBaseRefCounted {
public:
    virtual void OnBeforeCommandLineProcessing(const CefString& process_type, CefRefPtr<CefCommandLine> command_line) {}
    virtual void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) {}
    virtual CefRefPtr<CefResourceBundleHandler> GetResourceBundleHandler() { return nullptr; }
    virtual CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() { return nullptr; }
    virtual CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() { return nullptr; }
};

/// The exit code of a child process, or -1 in the browser process.
//@function
int CefExecuteProcess(const CefMainArgs& args, CefRefPtr<CefApp> application, void* windows_sandbox_info);
/// Once a process.  The calling thread becomes the UI thread unless the settings say otherwise.
//@function
bool CefInitialize(const CefMainArgs& args, const CefSettings& settings, CefRefPtr<CefApp> application,
                   void* windows_sandbox_info);
//@function
int CefGetExitCode();
/// On the thread that initialized; every browser is closed and every reference given up before.
//@function
void CefShutdown();
//@function
void CefDoMessageLoopWork();
//@function
void CefRunMessageLoop();
//@function
void CefQuitMessageLoop();
