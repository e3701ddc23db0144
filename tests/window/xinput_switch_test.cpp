#include "layers/xinput_switch.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "support/import_replaced.h"

namespace ZEMO::Test {
namespace {

using Switched = std::vector<BOOL>;
Switched switched;
void WINAPI record(BOOL enable) { switched.push_back(enable); }

/// Lets the system's own XInputEnable jump to the recorder: without a controller nobody can read back whether XInput is
/// on, and a replaced look-up would not show that the system's function is the one that is called.
class RealCallsRecorded {
public:
    RealCallsRecorded() : place(reinterpret_cast<void*>(UI::systemXInputEnable())) {
        switched.clear();
        std::memcpy(before.data(), place, before.size());
        std::array<unsigned char, 12> jump{0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xE0};  // mov rax, ...; jmp rax
        auto* const target = &record;
        std::memcpy(&jump[2], &target, sizeof target);
        write(jump);
    }
    ~RealCallsRecorded() { write(before); }
    RealCallsRecorded(const RealCallsRecorded&) = delete;
    RealCallsRecorded& operator=(const RealCallsRecorded&) = delete;

private:
    void write(const std::array<unsigned char, 12>& code) {
        DWORD protection = 0;
        VirtualProtect(place, code.size(), PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(place, code.data(), code.size());
        VirtualProtect(place, code.size(), protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), place, code.size());
    }
    void* place;
    std::array<unsigned char, 12> before{};
};

/// As in a process that has not loaded any of them.
HMODULE WINAPI withoutXInput(LPCWSTR name) {
    if (name && std::wstring(name).starts_with(L"xinput")) return nullptr;
    return systemFunction<decltype(GetModuleHandleW)>(L"kernel32.dll", "GetModuleHandleW")(name);
}

}  // namespace

TEST(XInputSwitch, GameHasLoadedTheLibrary_ItsFunctionIsCalledBothWays) {
    ASSERT_NE(UI::systemXInputEnable(), nullptr);
    const RealCallsRecorded recorded;
    UI::setXInputEnabled(false);
    UI::setXInputEnabled(true);
    EXPECT_EQ(switched, (Switched{FALSE, TRUE}));
}

TEST(XInputSwitch, GameHasLoadedNone_TheSystemsIsCalledAllTheSame) {
    ASSERT_NE(UI::systemXInputEnable(), nullptr);
    const RealCallsRecorded recorded;
    const ImportReplaced none("GetModuleHandleW", &withoutXInput);
    UI::setXInputEnabled(false);
    UI::setXInputEnabled(true);
    EXPECT_EQ(switched, (Switched{FALSE, TRUE}));
}

}  // namespace ZEMO::Test
