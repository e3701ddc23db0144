#pragma once

#include <windows.h>

// What the engine's processes write to each other's pipes: each message is one overlapped WriteFile, a text of ten
// megabytes as well.
//
// What Wine does: the data goes to its server through a pipe that holds 64 KB, in one system call of the thread that
// writes. A signal cuts that call short, and Wine then gives the thread up ("partial write" in its log); the page or
// the engine goes with it. Wine masks its own signals meanwhile. But its server stops a thread, as a debugger does, for
// each look at the thread's registers, and a process's first thread for each look of others at the process's memory.
// The engine's profiler does the former ten times a second with the main threads; a list of a process's modules is
// thousands of the latter. Windows copies in the kernel.
//
// How it was proven: in a trace of the kernel's signals such a stop was what cut the write short. Of twelve games that
// exchanged texts of 1 and 10 MB with their page on a busy machine, ten lost the page in this way within fourteen
// texts. A program with neither engine nor library, whose memory others look at, loses the thread as well: that is a
// test.
//
// How to see that it may go: the half of that test that has no divertPipeWrites fails.
namespace ZEMO::Core::Wine {

/// Leads the import of WriteFile in `module`, which must never be unloaded, to a function that has a thread of its own
/// make the long overlapped writes to pipes, one that nobody looks at. The caller waits until it is made and gets its
/// answer, so the order of the writes stays. All others go through as they are. False, with nothing changed, when the
/// module does not import it by name. Once in a process.
bool divertPipeWrites(HMODULE module);

}  // namespace ZEMO::Core::Wine
