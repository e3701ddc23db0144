#include "core/wine/stack_profiler.h"

#include "core/never_destroyed.h"
#include "core/wine/import_table.h"

namespace ZEMO::Core::Wine {
namespace {

// The callers keep the pointer and ask at any time, at the end of the process as well.
wchar_t* WINAPI commandLineOfTheEngine() {
    static NeverDestroyed<std::wstring> line(withoutStackProfiler(GetCommandLineW()));
    return line->data();
}

}  // namespace

std::wstring withoutStackProfiler(std::wstring_view commandLine) {
    // Behind a "--" the engine takes a switch for text, so this one stands directly behind the program.
    const bool isQuoted = commandLine.starts_with(L'"');
    const size_t end = isQuoted ? commandLine.find(L'"', 1) : commandLine.find_first_of(L" \t");
    const size_t program = end == commandLine.npos ? commandLine.size() : end + (isQuoted ? 1 : 0);
    std::wstring line(commandLine.substr(0, program));
    if (isQuoted && end == commandLine.npos) line += L'"';
    return line.append(L" --disable-stack-profiler").append(commandLine.substr(program));
}

bool disableStackProfiler(HMODULE engine) {
    commandLineOfTheEngine();  // made while the import is the system's, should `engine` be this module
    void** const place = findImport(engine, "GetCommandLineW");
    return place && replaceImport(place, reinterpret_cast<void*>(&commandLineOfTheEngine));
}

}  // namespace ZEMO::Core::Wine
