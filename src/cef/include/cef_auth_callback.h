#pragma once

#include "include/cef_base.h"

//@engine
class CefAuthCallback : public virtual CefBaseRefCounted {
public:
    //@capi cont
    //@optional username password
    virtual void Continue(const CefString& username, const CefString& password) = 0;
    virtual void Cancel() = 0;
};
