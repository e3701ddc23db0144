#pragma once

#include "include/cef_base.h"
#include "include/cef_values.h"

/// Known by name only: nothing here makes one or looks into one.
//@scoped
class CefPreferenceRegistrar : public CefBaseScoped {};

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
