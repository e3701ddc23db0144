#pragma once

#include "core/posted_text.h"

namespace ZEMO::UI {

using Core::postText;
using Core::takePostedText;

}  // namespace ZEMO::UI
