#pragma once

#include <windows.h>

// Handles that the engine moves out of another process: DuplicateHandle with DUPLICATE_CLOSE_SOURCE.
//
// What Wine does: its server copies a handle by itself, but has a thread of the source process do a move, and waits for
// it without limit. When that process is ended after the thread took the task, nobody answers. The engine's I/O thread
// then stands still for good, and no page starts any more. Windows moves in the kernel.
//
// How it was proven: a program with neither engine nor library moved handles out of a child and ended it meanwhile: 19
// of 58 moves never returned, and none of 150 copies. With views that open, draw and close one after the other, on a
// page with new layers in each frame, 20 of 21 games stood still within 60 views, each in that call.
//
// How to see that it may go: without divertHandleMoves, a thousand moves out of processes that are being ended come
// back.
//
// The engine's child processes need nothing of this: only the browser process holds handles of the others.
namespace ZEMO::Core::Wine {

/// Leads the import of DuplicateHandle in `module`, which must never be unloaded, to a function that copies and leaves
/// the closing of the source to threads of its own (remote_closer.h). Calls that Wine does at once go through as they
/// are. False, with nothing changed, when the module does not import it by name. Once in a process.
bool divertHandleMoves(HMODULE module);

}  // namespace ZEMO::Core::Wine
