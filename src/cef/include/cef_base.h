#pragma once

#include <windows.h>

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "include/base/cef_macros.h"
#include "include/internal/cef_ptr.h"
#include "include/internal/cef_string.h"
#include "include/internal/cef_time_wrappers.h"
#include "include/internal/cef_types.h"
#include "include/internal/cef_win.h"

/// Base of everything that is shared with the engine.  Any thread may count; the last Release deletes.
class CefBaseRefCounted {
public:
    virtual void AddRef() const = 0;
    /// True when this was the last reference.
    virtual bool Release() const = 0;
    virtual bool HasOneRef() const = 0;
    virtual bool HasAtLeastOneRef() const = 0;

protected:
    virtual ~CefBaseRefCounted() = default;
};

/// Base of objects that only live during the call they are passed to.
class CefBaseScoped {
public:
    virtual ~CefBaseScoped() = default;
};

class CefRefCount {
public:
    CefRefCount() = default;
    void AddRef() const { count_.fetch_add(1, std::memory_order_relaxed); }
    bool Release() const { return count_.fetch_sub(1, std::memory_order_acq_rel) == 1; }
    bool HasOneRef() const { return count_.load(std::memory_order_acquire) == 1; }
    bool HasAtLeastOneRef() const { return count_.load(std::memory_order_acquire) >= 1; }

private:
    mutable std::atomic<int> count_{0};
    DISALLOW_COPY_AND_ASSIGN(CefRefCount);
};

#define IMPLEMENT_REFCOUNTING(ClassName)                                             \
public:                                                                              \
    void AddRef() const override { ref_count_.AddRef(); }                            \
    bool Release() const override {                                                  \
        if (!ref_count_.Release()) return false;                                     \
        delete static_cast<const ClassName*>(this);                                  \
        return true;                                                                 \
    }                                                                                \
    bool HasOneRef() const override { return ref_count_.HasOneRef(); }               \
    bool HasAtLeastOneRef() const override { return ref_count_.HasAtLeastOneRef(); } \
                                                                                     \
private:                                                                             \
    CefRefCount ref_count_
