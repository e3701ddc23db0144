#pragma once

#include "include/cef_base.h"

/// Stands in for the engine's own texts and data files.
//@client
class CefResourceBundleHandler : public virtual CefBaseRefCounted {
public:
    typedef cef_scale_factor_t ScaleFactor;

    virtual bool GetLocalizedString(int string_id, CefString& string) = 0;
    /// `data` must live as long as the process.
    virtual bool GetDataResource(int resource_id, void*& data, size_t& data_size) = 0;
    virtual bool GetDataResourceForScale(int resource_id, ScaleFactor scale_factor, void*& data, size_t& data_size) = 0;
};
