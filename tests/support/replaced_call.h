#pragma once

#include <windows.h>

namespace ZEMO::Test {

/// One entry of this program's import table holds another function while this lives: for what can't be provoked in the
/// real call. The entry of a function f is `extern "C" decltype(&::f) __imp_f;`. Other modules, the library's file and
/// the system's among them, keep calling the real one; other threads of this program meet the replacement as well.
template <class Function>
class ReplacedCall {
public:
    ReplacedCall(Function& place, Function other) : entry(place), before(place) { write(other); }
    ~ReplacedCall() { write(before); }
    ReplacedCall(const ReplacedCall&) = delete;
    ReplacedCall& operator=(const ReplacedCall&) = delete;
    Function original() const { return before; }

private:
    void write(Function function) {
        DWORD protection = 0;
        VirtualProtect(&entry, sizeof entry, PAGE_READWRITE, &protection);
        entry = function;
        VirtualProtect(&entry, sizeof entry, protection, &protection);
    }
    Function& entry;
    Function before;
};

}  // namespace ZEMO::Test
