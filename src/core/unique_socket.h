#pragma once

#include <winsock2.h>

#include "core/unique_handle.h"

namespace ZEMO::Core {

/// A socket, whose creation answers INVALID_SOCKET on failure.
using UniqueSocket = UniqueHandle<SOCKET, &closesocket, -1>;

}  // namespace ZEMO::Core
