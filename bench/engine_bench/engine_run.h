#pragma once

#include <array>
#include <string>
#include <vector>

namespace ZEMO::Bench {

/// Microseconds of each round trip of a script, one list for each size of kAnswerBytes.
using ScriptTimes = std::array<std::vector<double>, 3>;
inline constexpr std::array kAnswerBytes{100, 10 << 10, 512 << 10};

enum class Host { Library, Bare };

/// What one run of an engine shall do. An engine can start once in a process, so each run is a process of its own: this
/// program again, which finds its order in the environment (the command line would be merged into the engine's).
struct RunOrder {
    Host host = Host::Library;
    int width = 0, height = 0;
    int countSeconds = 0;      ///< how long new pictures are counted; 0: only the first frames
    bool runsScripts = false;  ///< round trips of scripts are timed, and no pictures
    std::string address;       ///< one word
};

/// What one run found.
struct RunResult {
    double firstFrameMs = 0;     ///< from the first call that makes a view to the first frame
    double pageShownMs = 0;      ///< to the first frame that shows the page; 0 where pictures are counted
    int pictures = 0;            ///< in the counted seconds
    double framesPerSecond = 0;  ///< by the times of the first and the last of them
    ScriptTimes scripts;         ///< where scripts were run
};

/// Runs the order in a process of its own and waits for its end and that of its helpers. Throws std::runtime_error with
/// what the run said when it failed.
RunResult runInOwnProcess(const RunOrder& order);

/// The one main of these programs: carries an order out where there is one, else drives. Never returns.
[[noreturn]] void mainOfRuns(int (*drive)());

}  // namespace ZEMO::Bench
