#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <objbase.h>

#include <string>
#include <vector>

#include "support/helper_process.h"
#include "support/import_replaced.h"
#include "zemo/platform.h"

// The answers are kept for the life of a process, so that each test asks in a process of its own, the probe.
namespace {

using namespace ZEMO::Test;
using namespace ZEMO::Platform::Misc;
using testing::ElementsAre;
using Lines = std::vector<std::string>;

Lines probe(const std::vector<std::wstring>& arguments) {
    return runHelper(helperPath(L"platform_probe.exe"), arguments);
}

// What the system's own command line tool says: one value a line, under a heading.
Lines told(const std::vector<std::wstring>& question) {
    Lines values;
    for (std::string line : runHelper(L"wmic.exe", question)) {
        while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.pop_back();
        if (!line.empty()) values.push_back(line);
    }
    if (!values.empty()) values.erase(values.begin());
    return values;
}

TEST(PlatformDeviceModel, ComparedWithCommandLine_SameModel) {
    const Lines model = told({L"computersystem", L"get", L"model"});
    ASSERT_EQ(model.size(), 1u);
    EXPECT_THAT(probe({L"call=getDeviceModel", L"call=getDeviceModel"}),
                ElementsAre("getDeviceModel value " + model[0], "getDeviceModel value " + model[0], "done"));
}

TEST(PlatformGpuModels, ComparedWithCommandLine_SameNames) {
    const Lines names = told({L"path", L"win32_videocontroller", L"get", L"name"});
    ASSERT_FALSE(names.empty());
    std::string list;
    for (const auto& name : names) list += "[" + name + "]";
    EXPECT_THAT(probe({L"call=getGPUModelList", L"call=getGPUModelList"}),
                ElementsAre("getGPUModelList value " + list, "getGPUModelList value " + list, "done"));
}

// The asymmetry: a thread that is in the multi-threaded apartment already gets the model, but not the list.
TEST(PlatformWmi, ThreadAlreadyMultiThreaded_ModelButNoGpus) {
    const Lines lines = probe({L"set=MADE_UP_WMI_VALUES=found", L"wmi", L"mta", L"call=getDeviceModel",
                               L"call=getGPUModelList", L"uninit", L"call=getGPUModelList", L"wmi-live"});
    EXPECT_THAT(lines, ElementsAre("wmi registered 00000000", "com 00000000", "wmi connect ROOT\\CIMV2",
                                   "wmi blanket 10|0|3|3|0", "wmi query WQL|SELECT * FROM Win32_ComputerSystem|48",
                                   "wmi get Model", "getDeviceModel value found", "getGPUModelList value ",
                                   "wmi connect \\\\.\\root\\cimv2", "wmi blanket 10|0|3|3|2048",
                                   "wmi query WQL|select * from Win32_VideoController|32", "wmi get Name",
                                   "getGPUModelList value [found]", "wmi live 0", "done"));
}

TEST(PlatformWmi, ThreadIsSingleThreaded_NeitherUntilItIsNoLonger) {
    const Lines lines = probe({L"set=MADE_UP_WMI_VALUES=found", L"wmi", L"sta", L"call=getDeviceModel",
                               L"call=getGPUModelList", L"uninit", L"call=getDeviceModel", L"call=getGPUModelList"});
    EXPECT_THAT(lines, testing::Contains("com 00000000"));
    Lines results;
    for (const auto& line : lines) {
        if (line.starts_with("get")) results.push_back(line);
    }
    EXPECT_THAT(results, ElementsAre("getDeviceModel value ", "getGPUModelList value ", "getDeviceModel value found",
                                     "getGPUModelList value [found]"));
}

// With the apartment counted right, the thread can change its kind after the calls and one uninitialisation.
TEST(PlatformWmi, CalledOnInitialisedThread_LeavesItAsItWas) {
    const Lines lines = probe({L"set=MADE_UP_WMI_VALUES=found", L"wmi", L"mta", L"call=getGPUModelList",
                               L"call=getGPUModelList", L"call=getDeviceModel", L"mta", L"uninit", L"uninit", L"sta"});
    Lines states;
    for (const auto& line : lines) {
        if (line.starts_with("com")) states.push_back(line);
    }
    EXPECT_THAT(states, ElementsAre("com 00000000", "com 00000001", "com 00000000"));
}

TEST(PlatformWmi, KnownOnce_NotAskedAgain) {
    const Lines lines = probe({L"set=MADE_UP_WMI_VALUES=one", L"wmi", L"call=getDeviceModel", L"call=getGPUModelList",
                               L"set=MADE_UP_WMI_VALUES=two", L"call=getDeviceModel", L"call=getGPUModelList", L"mta",
                               L"call=getGPUModelList", L"uninit", L"sta", L"call=getDeviceModel"});
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](auto& line) { return line.starts_with("wmi query"); }), 2);
    const Lines last(lines.end() - 7, lines.end());
    EXPECT_THAT(last, ElementsAre("getDeviceModel value one", "getGPUModelList value [one]", "com 00000000",
                                  "getGPUModelList value [one]", "com 00000000", "getDeviceModel value one", "done"));
}

// The first of them finds the model, and every later look-up would fail: those that waited must not wipe it.
TEST(PlatformDeviceModel, ThreadsAskTogether_AllGetWhatTheFirstFound) {
    const std::wstring event = L"ZemoWmiFirst" + std::to_wstring(GetCurrentProcessId());
    const Lines lines = probe({L"set=MADE_UP_WMI_VALUES=found", L"set=MADE_UP_WMI_FIRST=" + event, L"wmi",
                               L"together=getDeviceModel", L"call=getDeviceModel", L"wmi-live"});
    EXPECT_THAT(lines, testing::Contains("getDeviceModel value found").Times(9));
    EXPECT_THAT(lines, testing::Contains("wmi connect ROOT\\CIMV2").Times(1));
    EXPECT_THAT(lines, testing::Contains("wmi live 0"));
}

TEST(PlatformWmi, StepFails_EmptyAndAllIsReleasedAndTheNextCallAsksAgain) {
    for (const wchar_t* step : {L"connect", L"blanket", L"query"}) {
        const Lines lines =
            probe({L"set=MADE_UP_WMI_VALUES=found", L"wmi", std::wstring(L"set=MADE_UP_WMI_FAIL=") + step,
                   L"call=getDeviceModel", L"call=getGPUModelList", L"wmi-live", L"set=MADE_UP_WMI_FAIL=",
                   L"call=getDeviceModel", L"call=getGPUModelList", L"wmi-live"});
        Lines results;
        for (const auto& line : lines) {
            if (line.starts_with("get") || line.starts_with("wmi live")) results.push_back(line);
        }
        EXPECT_THAT(results, ElementsAre("getDeviceModel value ", "getGPUModelList value ", "wmi live 0",
                                         "getDeviceModel value found", "getGPUModelList value [found]", "wmi live 0"))
            << testing::PrintToString(std::wstring(step));
    }
}

TEST(PlatformWmi, ObjectsAndProperties_GiveWhatIsText) {
    const struct {
        const wchar_t* objects;
        const char* model;
        const char* gpus;
    } kRows[] = {
        {L"", "", ""},                                     // no object
        {L"카드;Second 😀", "카드", "[카드][Second 😀]"},  // the model is the first object's
        {L"<null>", "", ""},
        {L"<number>", "", ""},
        {L"<missing>", "", ""},
        {L"<fail>", "", ""},
        {L"one;<fail>;three", "one", "[one]"},  // what was read before the failure stays
        {L"one;<missing>;three", "one", "[one]"},
    };
    for (const auto& row : kRows) {
        const Lines lines = probe({std::wstring(L"set=MADE_UP_WMI_VALUES=") + row.objects, L"wmi",
                                   L"call=getDeviceModel", L"call=getGPUModelList", L"wmi-live"});
        Lines results;
        for (const auto& line : lines) {
            if (line.starts_with("get") || line.starts_with("wmi live")) results.push_back(line);
        }
        EXPECT_THAT(results, ElementsAre(std::string("getDeviceModel value ") + row.model,
                                         std::string("getGPUModelList value ") + row.gpus, "wmi live 0"));
    }
}

// A machine without the locator can't be had: this process's import of its creation is replaced. What is known already
// is kept for the life of a process, so a process that asked before has nothing to see here.
int locators = 0;
HRESULT WINAPI noLocator(REFCLSID, IUnknown*, DWORD, REFIID, void** object) {
    return ++locators, *object = nullptr, REGDB_E_CLASSNOTREG;
}

TEST(PlatformWmi, NoLocator_BothAreEmptyAskedAgainNextTimeAndComIsGivenBack) {
    const ImportReplaced failing("CoCreateInstance", &noLocator);
    locators = 0;
    for (int call = 1; call <= 2; ++call) {
        EXPECT_EQ(getDeviceModel(), "");
        EXPECT_TRUE(getGPUModelList().empty());
        EXPECT_EQ(locators, 2 * call);
    }
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK) << "this thread is in no apartment";
    CoUninitialize();
}

}  // namespace
