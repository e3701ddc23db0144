#pragma once

#include "include/cef_base.h"

/// Receives a string that the engine produces later, on its UI thread.
//@client
class CefStringVisitor : public virtual CefBaseRefCounted {
public:
    virtual void Visit(const CefString& string) = 0;
};
