#include "core/wine/wine.h"

#include "core/log.h"
#include "core/module_pin.h"
#include "core/never_destroyed.h"
#include "core/wine/association_keys.h"
#include "core/wine/child_processes.h"
#include "core/wine/handle_moves.h"
#include "core/wine/loader_order.h"
#include "core/wine/pipe_writes.h"
#include "core/wine/stack_profiler.h"

namespace ZEMO::Core::Wine {
namespace {

NeverDestroyed<std::mutex> turnsOfQueries;

}  // namespace

void guardEngine(HMODULE engine) {
    if (!isRunningUnderWine()) return;
    // The engine was loaded later, and would hear of the process's end before this library could keep it from that.
    if (!detachOwnModuleFirst()) logDebugA("the order of the modules could not be changed\n");
    if (!divertHandleMoves(engine)) logDebugA("the engine's handle moves could not be diverted\n");
    if (!tieChildProcesses(engine)) logDebugA("the engine's processes could not be tied to this one\n");
    if (!divertPipeWrites(engine)) logDebugA("the engine's long messages could not be diverted\n");
    if (!disableStackProfiler(engine)) logDebugA("the engine's stack profiler could not be disabled\n");
}

void skipEngineDetach(HMODULE engine) {
    if (isRunningUnderWine()) skipDetach(engine);
}

AssociationQuery::AssociationQuery() {
    if (!isRunningUnderWine()) return;
    pinOwnModule();  // the shell calls into it from now on
    turn = std::unique_lock(*turnsOfQueries);
    if (!guardAssociationQueries(GetModuleHandleW(L"shell32.dll"))) logDebugA("association queries are unguarded\n");
    beginAssociationQuery();
}

AssociationQuery::~AssociationQuery() {
    if (turn) endAssociationQuery();
}

}  // namespace ZEMO::Core::Wine
