#pragma once

#include "include/cef_base.h"

/// Known by name only: nothing here makes one or looks into one.
//@engine
class CefX509Certificate : public virtual CefBaseRefCounted {};
