#pragma once

#include <windows.h>

// The processes that the engine starts.
//
// What Wine does: it makes every process suspended, and the parent resumes it once it has done its part. A parent that
// is killed in between, which is long on a busy machine, leaves a process that has not run one instruction and never
// will: nothing in the child program can end it. It keeps the library's files open.
//
// How it was proven: of 28 games that were killed while their engine started, 8 left such processes behind. Each had
// one thread, waiting for the server, and nothing but ntdll.dll and its own program mapped.
//
// How to see that it may go: the test of the killed games passes fifty times on a busy machine without
// tieChildProcesses.
namespace ZEMO::Core::Wine {

/// Has every process that `module`, which must never be unloaded, starts with CreateProcessW belong to a job from its
/// first moment, which the system ends with this process. Where the system refuses the job, the process starts without
/// it. False, with nothing changed, when the module does not import that function by name or there is no job. Once in
/// a process.
bool tieChildProcesses(HMODULE module);

}  // namespace ZEMO::Core::Wine
