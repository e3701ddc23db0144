#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// The engine's stack profiler, which stops a thread of each of its processes ten times a second to copy its stack. Its
// results are for the engine's makers and go nowhere here.
//
// What Wine does: it suspends a thread by a signal, wherever the thread is in Wine's own code or in the display's, and
// its server stops it once more for its registers. Where the profiler ends between the two calls, as at a process's
// end, nobody lets the thread run again.
//
// How it was seen: a graphics process that leaves by itself was started again and again on a busy machine; one of some
// 820 stayed for ever, suspended, with no other thread of Wine's left; none of 1,959 without the profiler. A game whose
// page never came had a graphics process that stood still in the middle of its start; that the profiler did it is
// likely and not proven.
//
// How to see that it may go: `cef.subprocess.exe --type=gpu-process --no-sandbox --start-stack-profiler` ends each of
// some thousands of times.
namespace ZEMO::Core::Wine {

/// The command line of a program with the engine's own switch against its profiler, in front of all other arguments.
std::wstring withoutStackProfiler(std::wstring_view commandLine);

/// Has `engine`, which must not be initialised yet, find that switch on this process's command line; everybody else
/// sees it as it is. The engine passes the answer on to its other processes. False, with nothing changed, when `engine`
/// does not import GetCommandLineW by name. Any number of times; this module must be pinned.
bool disableStackProfiler(HMODULE engine);

}  // namespace ZEMO::Core::Wine
