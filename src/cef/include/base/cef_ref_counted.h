#pragma once

#include <atomic>

#include "include/base/cef_macros.h"
#include "include/base/cef_scoped_refptr.h"
