#include "core/wine/child_processes.h"

#include <atomic>
#include <vector>

#include "core/unique_handle.h"
#include "core/wine/import_table.h"

namespace ZEMO::Core::Wine {
namespace {

using CreateFunction = decltype(&::CreateProcessW);

// What stood in the import: the system's function, or that of somebody who came earlier.
std::atomic<CreateFunction> systemCreateProcess = nullptr;
// Closed by the system with this process, and its processes end with it.
std::atomic<HANDLE> job = nullptr;

// Wine's list of a new process's attributes, which the system's headers leave opaque.
struct Attribute {
    DWORD_PTR name;
    SIZE_T size;
    void* value;
};
struct AttributeList {
    DWORD mask, capacity, count, padding;
    DWORD_PTR unused;
    Attribute attributes[1];
};

/// A caller's attributes and the job.
class WithJob {
public:
    explicit WithJob(const STARTUPINFOEXW& start, HANDLE tie) : info(start), handle(tie) {
        const auto* given = reinterpret_cast<const AttributeList*>(start.lpAttributeList);
        const DWORD count = given ? given->count : 0;
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, count + 1, 0, &size);
        memory.resize(size);
        info.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
        info.StartupInfo.cb = sizeof info;
        made = InitializeProcThreadAttributeList(info.lpAttributeList, count + 1, 0, &size);
        for (DWORD i = 0; i < count; ++i) add(given->attributes[i]);
        add({PROC_THREAD_ATTRIBUTE_JOB_LIST, sizeof handle, &handle});
    }
    ~WithJob() {
        if (made) DeleteProcThreadAttributeList(info.lpAttributeList);
    }
    WithJob(const WithJob&) = delete;
    WithJob& operator=(const WithJob&) = delete;

    explicit operator bool() const { return made && complete; }
    STARTUPINFOW* get() { return &info.StartupInfo; }

private:
    void add(const Attribute& attribute) {
        complete = made && complete &&
                   UpdateProcThreadAttribute(info.lpAttributeList, 0, attribute.name, attribute.value, attribute.size,
                                             nullptr, nullptr);
    }
    STARTUPINFOEXW info;
    HANDLE handle;
    std::vector<unsigned char> memory;
    bool made = false, complete = true;
};

BOOL WINAPI createTied(const wchar_t* program, wchar_t* line, SECURITY_ATTRIBUTES* process, SECURITY_ATTRIBUTES* thread,
                       BOOL inherit, DWORD flags, void* environment, const wchar_t* directory, STARTUPINFOW* start,
                       PROCESS_INFORMATION* started) {
    const CreateFunction create = systemCreateProcess;
    STARTUPINFOEXW given{};
    if (flags & EXTENDED_STARTUPINFO_PRESENT) {
        given = *reinterpret_cast<const STARTUPINFOEXW*>(start);
    } else {
        given.StartupInfo = *start;
    }
    WithJob tied(given, job);
    if (tied && create(program, line, process, thread, inherit, flags | EXTENDED_STARTUPINFO_PRESENT, environment,
                       directory, tied.get(), started)) {
        return TRUE;
    }
    return create(program, line, process, thread, inherit, flags, environment, directory, start, started);
}

UniqueKernelHandle jobThatEndsWithUs() {
    UniqueKernelHandle made(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (!made || !SetInformationJobObject(made.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits)) {
        return {};
    }
    return made;
}

}  // namespace

bool tieChildProcesses(HMODULE module) {
    void** const place = findImport(module, "CreateProcessW");
    if (!place) return false;
    UniqueKernelHandle made = jobThatEndsWithUs();
    if (!made) return false;
    job = made.release();
    systemCreateProcess = reinterpret_cast<CreateFunction>(*place);
    return replaceImport(place, reinterpret_cast<void*>(&createTied));
}

}  // namespace ZEMO::Core::Wine
