#pragma once

#include <memory>

#include "include/base/cef_ref_counted.h"

template <class T>
using CefRefPtr = scoped_refptr<T>;

template <class T, class D = std::default_delete<T>>
using CefOwnPtr = std::unique_ptr<T, D>;

/// Not owned, valid only during the call it is passed to.
template <class T>
using CefRawPtr = T*;
