#pragma once

#include <string>

namespace ZEMO::Test {

/// One command of the probe that has to do with windows and texts. False when it is none of them.
bool runIpcCommand(const std::wstring& name, const std::wstring& argument);

}  // namespace ZEMO::Test
