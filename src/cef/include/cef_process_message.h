#pragma once

#include "include/cef_base.h"
#include "include/cef_values.h"

typedef cef_process_id_t CefProcessId;

//@engine
class CefProcessMessage : public virtual CefBaseRefCounted {
public:
    static CefRefPtr<CefProcessMessage> Create(const CefString& name);
    virtual bool IsValid() = 0;
    virtual bool IsReadOnly() = 0;
    virtual CefRefPtr<CefProcessMessage> Copy() = 0;
    virtual CefString GetName() = 0;
    /// Null when the message was made for a shared memory region.
    virtual CefRefPtr<CefListValue> GetArgumentList() = 0;
};
