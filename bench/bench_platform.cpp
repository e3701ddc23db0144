// What a look-up costs, next to its floor: the same system calls without the comparison and the conversions, in the
// same program. The number of running processes is in the counters, as the cost grows with it.
#include <benchmark/benchmark.h>
#include <windows.h>

#include <tlhelp32.h>

#include <string>

#include "zemo/platform.h"

namespace {

using namespace ZEMO::Platform::Misc;

int walkProcesses() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) ++count;
    CloseHandle(snapshot);
    return count;
}

void processWalkFloor(benchmark::State& state) {
    int count = 0;
    for (auto _ : state) benchmark::DoNotOptimize(count = walkProcesses());
    state.counters["processes"] = count;
}
BENCHMARK(processWalkFloor)->Unit(benchmark::kMicrosecond);

void processLookUpMiss(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(getProcessorID("no such program.exe"));
    state.counters["processes"] = walkProcesses();
}
BENCHMARK(processLookUpMiss)->Unit(benchmark::kMicrosecond);

void processLookUpSelf(benchmark::State& state) {
    wchar_t path[1024] = {};
    GetModuleFileNameW(nullptr, path, 1024);
    const std::wstring wide(path);
    std::string name;
    for (const wchar_t c : wide.substr(wide.rfind(L'\\') + 1)) name += static_cast<char>(c);
    for (auto _ : state) benchmark::DoNotOptimize(getProcessorID(name));
}
BENCHMARK(processLookUpSelf)->Unit(benchmark::kMicrosecond);

void windowSize(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(getWindowWidth());
}
BENCHMARK(windowSize)->Unit(benchmark::kMicrosecond);

void cpuModel(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(getCPUModel());
}
BENCHMARK(cpuModel)->Unit(benchmark::kMicrosecond);

void dynamicPort(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(GetDynamicPort());
}
BENCHMARK(dynamicPort)->Unit(benchmark::kMicrosecond);

}  // namespace
