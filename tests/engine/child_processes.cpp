#include "engine/child_processes.h"

#include <tlhelp32.h>
#include <winternl.h>

#include <format>
#include <memory>

namespace ZEMO::Test {
namespace {

struct CloseHandleDeleter {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, CloseHandleDeleter>;

template <class Visit>
void eachChild(const Visit& visit) {
    const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more; more = Process32NextW(snapshot.get(), &entry)) {
        if (entry.th32ParentProcessID == GetCurrentProcessId()) visit(entry);
    }
}

}  // namespace

std::vector<DWORD> childProcesses() {
    std::vector<DWORD> children;
    eachChild([&](const PROCESSENTRY32W& child) { children.push_back(child.th32ProcessID); });
    return children;
}

std::wstring childCommandLine(DWORD processId) {
    const OwnedHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
    if (!process) return {};
    PROCESS_BASIC_INFORMATION basic{};
    if (NtQueryInformationProcess(process.get(), ProcessBasicInformation, &basic, sizeof basic, nullptr)) return {};
    const auto read = [&](const void* address, void* to, size_t bytes) {
        SIZE_T done = 0;
        return ReadProcessMemory(process.get(), address, to, bytes, &done) && done == bytes;
    };
    PEB peb{};
    RTL_USER_PROCESS_PARAMETERS parameters{};
    if (!read(basic.PebBaseAddress, &peb, sizeof peb)) return {};
    if (!read(peb.ProcessParameters, &parameters, sizeof parameters)) return {};
    std::wstring line(parameters.CommandLine.Length / sizeof(wchar_t), L'\0');
    if (!read(parameters.CommandLine.Buffer, line.data(), parameters.CommandLine.Length)) return {};
    return line;
}

std::string childType(DWORD processId) {
    const std::wstring line = childCommandLine(processId);
    const size_t at = line.find(L"--type=");
    if (at == std::wstring::npos) return {};
    std::string type;
    for (size_t i = at + 7; i < line.size() && line[i] != L' ' && line[i] != L'"'; ++i) {
        type += static_cast<char>(line[i]);
    }
    return type;
}

bool killProcess(DWORD processId) {
    const OwnedHandle process(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, processId));
    return process && TerminateProcess(process.get(), 1) && WaitForSingleObject(process.get(), 10'000) == WAIT_OBJECT_0;
}

std::string childrenText() {
    std::string text;
    eachChild([&](const PROCESSENTRY32W& child) {
        text += std::format("{}{} {} of {} threads", text.empty() ? "" : ", ", child.th32ProcessID,
                            childType(child.th32ProcessID), child.cntThreads);
    });
    return text.empty() ? "none" : text;
}

}  // namespace ZEMO::Test
