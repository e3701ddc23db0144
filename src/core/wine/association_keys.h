#pragma once

#include <windows.h>

// Keys of the registry that the shell closes twice.
//
// What Wine does: AssocQueryStringW keeps the scheme's key under two names, and closes both when it has answered. Where
// another thread got a handle of that number in between, the second call closes that one, whatever it is. In 5 of some
// 180 runs of the responder's tests on a crowded machine it was the handle by which Wine's server gets to know that the
// responder's select has its answer: neither a call nor the time limit ended it then.
//
// How it was proven: in the server's own record of such a run. A test has another thread make events while associations
// are looked up three hundred times; without the guard 20 to 50 of them are closed from under it.
//
// How to see that it may go: that test passes without guardAssociationQueries.
namespace ZEMO::Core::Wine {

/// Leads RegOpenKeyExW and RegCloseKey of `shell` (shell32.dll, where the query is at home) to functions that see,
/// between beginAssociationQuery and endAssociationQuery on one thread, which keys are closed already. All other calls
/// go through. This module must be pinned. False, with nothing changed, when `shell` does not import them by name. Any
/// number of times, under the lock of the queries.
bool guardAssociationQueries(HMODULE shell);

/// One query at a time; the caller holds the lock of the queries.
void beginAssociationQuery();
void endAssociationQuery();

}  // namespace ZEMO::Core::Wine
