#pragma once

#include "engine_bench/engine_run.h"

namespace ZEMO::Bench {

/// Times round trips of scripts, one after the other, each sent by the answer of the one before it: through a view of
/// the library, or by plain process messages to a child program that runs the script and sends its text back. In this
/// process, which must be fresh. Throws std::runtime_error when an answer is missing or wrong.
ScriptTimes timeLibrary(const RunOrder& order);
ScriptTimes timeBare(const RunOrder& order);

}  // namespace ZEMO::Bench
