#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace ZEMO::Test {

/// Processes whose parent is this process, by program name ("cef.subprocess.exe").
std::vector<DWORD> childProcesses();
/// Empty when it can't be read.
std::wstring childCommandLine(DWORD processId);
/// The text after "--type=" in a child's command line; empty when there is none or it can't be read.
std::string childType(DWORD processId);
bool killProcess(DWORD processId);
/// Each child's kind and threads: what a page that does not come has got so far.
std::string childrenText();

}  // namespace ZEMO::Test
