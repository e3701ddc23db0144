#pragma once

#include "include/cef_base.h"

typedef cef_thread_id_t CefThreadId;

/// Runs once on the thread it was posted to, and is released there.
//@client
class CefTask : public virtual CefBaseRefCounted {
public:
    virtual void Execute() = 0;
};

//@engine
class CefTaskRunner : public virtual CefBaseRefCounted {
public:
    static CefRefPtr<CefTaskRunner> GetForCurrentThread();
    static CefRefPtr<CefTaskRunner> GetForThread(CefThreadId threadId);
    virtual bool IsSame(CefRefPtr<CefTaskRunner> that) = 0;
    virtual bool BelongsToCurrentThread() = 0;
    virtual bool BelongsToThread(CefThreadId threadId) = 0;
    virtual bool PostTask(CefRefPtr<CefTask> task) = 0;
    virtual bool PostDelayedTask(CefRefPtr<CefTask> task, int64_t delay_ms) = 0;
};

//@function
bool CefCurrentlyOn(CefThreadId threadId);
//@function
bool CefPostTask(CefThreadId threadId, CefRefPtr<CefTask> task);
//@function
bool CefPostDelayedTask(CefThreadId threadId, CefRefPtr<CefTask> task, int64_t delay_ms);
