#pragma once

#include <windows.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <format>
#include <string>
#include <vector>

// What every engine benchmark's main shares: the figures' form and the way out.
namespace ZEMO::Bench {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

inline double milliseconds(Clock::duration span) { return std::chrono::duration<double, std::milli>(span).count(); }
inline double microseconds(Clock::duration span) { return std::chrono::duration<double, std::micro>(span).count(); }

/// One row of the table (tools/bench_table.py): all samples, and the case that is the least this one could cost.
inline void report(const std::string& name, const std::string& unit, const std::vector<double>& samples,
                   const std::string& floor = {}) {
    std::string list;
    for (const double sample : samples) list += std::format("{}{:.6g}", list.empty() ? "" : ",", sample);
    std::printf("{\"name\":\"%s\",\"unit\":\"%s\",\"samples\":[%s]%s}\n", name.c_str(), unit.c_str(), list.c_str(),
                floor.empty() ? "" : std::format(",\"floor\":\"{}\"", floor).c_str());
}

/// Runs `work` and ends the process with its result, at once: the next run's time must not hold this one's end. An
/// exception is a failure with its text.
[[noreturn]] inline void leaveWith(int (*work)()) {
    int result = 1;
    try {
        result = work();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "failed: %s\n", error.what());
    }
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(result));
    std::terminate();
}

}  // namespace ZEMO::Bench
