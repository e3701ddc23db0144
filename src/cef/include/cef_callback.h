#pragma once

#include "include/cef_base.h"

/// Goes on with, or cancels, a request that was put off.
//@engine
class CefCallback : public virtual CefBaseRefCounted {
public:
    //@capi cont
    virtual void Continue() = 0;
    virtual void Cancel() = 0;
};

//@client
class CefCompletionCallback : public virtual CefBaseRefCounted {
public:
    virtual void OnComplete() = 0;
};
