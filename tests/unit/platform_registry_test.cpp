#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "support/helper_process.h"
#include "support/made_up_machine.h"
#include "support/process_usage.h"
#include "zemo/platform.h"

namespace {

using namespace ZEMO::Test;
using ZEMO::Platform::Misc::getCPUModel;

constexpr wchar_t kProcessorKey[] = LR"(HARDWARE\DESCRIPTION\System\CentralProcessor\0)";

TEST(PlatformCpuModel, ComparedWithRegistryTool_SameName) {
    const auto lines = runHelper(L"reg.exe", {LR"(query)", LR"(HKLM\HARDWARE\DESCRIPTION\System\CentralProcessor\0)",
                                              L"/v", L"ProcessorNameString"});
    std::string told;
    for (const std::string& line : lines) {
        const size_t type = line.find("REG_SZ");
        if (type != std::string::npos) told = line.substr(line.find_first_not_of(' ', type + 6));
    }
    ASSERT_FALSE(told.empty()) << (lines.empty() ? "no output" : lines.front());
    std::string asked = getCPUModel();
    while (!asked.empty() && asked.back() == ' ') asked.pop_back();  // the tool's line may have lost them
    while (!told.empty() && told.back() == ' ') told.pop_back();
    EXPECT_EQ(asked, told);
}

TEST(PlatformCpuModel, NoKey_UnknownCpu) {
    MadeUpMachine machine;
    machine.stand();
    EXPECT_EQ(getCPUModel(), "unknown cpu");
}

TEST(PlatformCpuModel, KeyWithoutValue_Empty) {
    MadeUpMachine machine;
    machine.addKey(kProcessorKey);
    machine.stand();
    EXPECT_EQ(getCPUModel(), "");
}

TEST(PlatformCpuModel, ValueOfAnotherType_Empty) {
    MadeUpMachine machine;
    machine.setNumber(kProcessorKey, L"ProcessorNameString", 0x00410041);
    machine.stand();
    EXPECT_EQ(getCPUModel(), "");
}

TEST(PlatformCpuModel, MadeUpNames_ArriveWhole) {
    const std::wstring kNames[] = {L"",
                                   L"  Spaces kept @ 3.00GHz  ",
                                   L"프로세서 \xD83D\xDE00",
                                   std::wstring(127, L'x'),
                                   std::wstring(128, L'y'),
                                   std::wstring(5000, L'가')};
    const std::string kExpected[] = {
        "", "  Spaces kept @ 3.00GHz  ", "프로세서 😀", std::string(127, 'x'), std::string(128, 'y'), [] {
            std::string text;
            for (int i = 0; i < 5000; ++i) text += "가";
            return text;
        }()};
    for (size_t i = 0; i < std::size(kNames); ++i) {
        MadeUpMachine machine;
        machine.setText(kProcessorKey, L"ProcessorNameString", kNames[i]);
        machine.stand();
        EXPECT_EQ(getCPUModel(), kExpected[i]) << i;
    }
}

TEST(PlatformCpuModel, NameIsBrokenUtf16_RaisesRangeError) {
    MadeUpMachine machine;
    machine.setText(kProcessorKey, L"ProcessorNameString", L"broken \xD83D here");
    machine.stand();
    EXPECT_THROW(getCPUModel(), std::range_error);
}

TEST(PlatformCpuModel, ManyLookups_NoHandleIsLeft) {
    getCPUModel();
    const ProcessUsage before = processUsage();
    for (int i = 0; i < 50; ++i) {
        getCPUModel();
        ZEMO::Platform::Misc::getOsVersion();
        ZEMO::Platform::Misc::getProcessorID("no such program.exe");
    }
    const ProcessUsage after = processUsage();
    EXPECT_LT(after.handles, before.handles + 20);
    EXPECT_LT(after.keys, before.keys + 20);
}

}  // namespace
