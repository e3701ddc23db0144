#pragma once

#include <windows.h>

#include <chrono>
#include <vector>

#include "core/unique_handle.h"

namespace ZEMO::Bench {

using CpuTime = std::chrono::duration<double, std::milli>;

/// The library's threads that come between two moments, in user and in kernel mode. The library names its threads to
/// nobody, but each thread of a process can be asked where it began: the engine's own in the engine's modules, the
/// system's in the system's, and those that C++ code of this program or of the library starts in the C runtime or in
/// the module itself. The program must start none of its own between the two moments. Used on one thread.
class LibraryThreads {
public:
    /// The first moment is now.
    LibraryThreads();
    /// The second one is now.
    void find();

    size_t count() const { return threads.size(); }
    /// What they have used of the processors since they began.
    CpuTime used() const;

private:
    std::vector<DWORD> before;
    std::vector<Core::UniqueKernelHandle> threads;
};

/// The same of this whole process, the engine's threads included.
CpuTime usedByProcess();

/// How fine the system counts a thread's time: the step in which that of the calling thread grows. Takes some steps of
/// work.
CpuTime threadTimeStep();

}  // namespace ZEMO::Bench
