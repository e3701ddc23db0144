#pragma once

#include "include/cef_base.h"

//@engine
class CefUnresponsiveProcessCallback : public virtual CefBaseRefCounted {
public:
    virtual void Wait() = 0;
    virtual void Terminate() = 0;
};
