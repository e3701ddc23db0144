#pragma once

#include "include/cef_base.h"
#include "include/cef_values.h"
#include "include/internal/cef_passed_by.h"

//@engine
class CefPreferenceManager : public virtual CefBaseRefCounted {
public:
    //@capi get_global
    static CefRefPtr<CefPreferenceManager> GetGlobalPreferenceManager();
    virtual bool HasPreference(const CefString& name) = 0;
    virtual CefRefPtr<CefValue> GetPreference(const CefString& name) = 0;
    virtual CefRefPtr<CefDictionaryValue> GetAllPreferences(bool include_defaults) = 0;
    virtual bool CanSetPreference(const CefString& name) = 0;
    virtual bool SetPreference(const CefString& name, CefRefPtr<CefValue> value, CefString& error) = 0;
};
