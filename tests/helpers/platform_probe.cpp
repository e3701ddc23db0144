#include "helpers/platform_probe.h"

#include <windows.h>

#include <objbase.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "helpers/made_up_wmi.h"
#include "zemo/platform.h"
#include "zemo/winrt_error.h"

// Runs its arguments one after the other, each NAME or NAME=ARGUMENT, and prints a line for each result:
//   hklm=KEY       below HKEY_CURRENT_USER: stands for HKEY_LOCAL_MACHINE from here on
//   set=NAME=TEXT  an environment variable
//   sta, mta, uninit   COM on this thread
//   wmi            the made-up management service; wmi-live: its living objects
//   call=FUNCTION  "FUNCTION value TEXT" or "FUNCTION raised CLASS CODE MESSAGE"
//   together=FUNCTION  the same from eight threads at a time, a line for each; the event MADE_UP_WMI_FIRST is set when
//                      all have begun
//   activations    how often the made-up runtime classes were activated
// and those of platform_probe_ipc.cpp.
namespace {

using namespace ZEMO::Platform::Misc;

std::string joined(const std::vector<std::string>& list) {
    std::string text;
    for (const auto& item : list) text += "[" + item + "]";
    return text;
}

const std::map<std::wstring, std::function<std::string()>> kFunctions = {
    {L"getAppVersion", getAppVersion},
    {L"getCPUModel", getCPUModel},
    {L"getOsVersion", getOsVersion},
    {L"getDeviceModel", getDeviceModel},
    {L"getGPUModelList", [] { return joined(getGPUModelList()); }},
    {L"getAdvertisingId", getAdvertisingId},
    {L"getIsLimitAdTracking", [] { return std::string(getIsLimitAdTracking() ? "true" : "false"); }},
    {L"getCountry", getCountry},
    {L"getLanguage", getLanguage},
};

void call(const std::wstring& name) {
    const auto raised = [&](const char* type, const winrt::hresult_error& error) {
        std::printf("%ls raised %s %08lx %ls\n", name.c_str(), type, static_cast<unsigned long>(error.code()),
                    error.message().c_str());
    };
    try {
        const std::string value = kFunctions.at(name)();
        std::printf("%ls value %s\n", name.c_str(), value.c_str());
    } catch (const winrt::hresult_not_implemented& error) {
        raised("hresult_not_implemented", error);
    } catch (const winrt::hresult_class_not_registered& error) {
        raised("hresult_class_not_registered", error);
    } catch (const winrt::hresult_access_denied& error) {
        raised("hresult_access_denied", error);
    } catch (const winrt::hresult_out_of_bounds& error) {
        raised("hresult_out_of_bounds", error);
    } catch (const winrt::hresult_invalid_argument& error) {
        raised("hresult_invalid_argument", error);
    } catch (const winrt::hresult_error& error) {
        raised("hresult_error", error);
    } catch (const std::bad_alloc&) {
        std::printf("%ls raised bad_alloc\n", name.c_str());
    } catch (const std::range_error&) {
        std::printf("%ls raised range_error\n", name.c_str());
    }
}

void callTogether(const std::wstring& name) {
    wchar_t eventName[256] = {};
    GetEnvironmentVariableW(L"MADE_UP_WMI_FIRST", eventName, 256);
    const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, eventName);
    std::atomic<int> begun{0};
    std::vector<std::string> results(8);
    std::vector<std::thread> threads;
    for (std::string& result : results) {
        threads.emplace_back([&] {
            ++begun;
            result = kFunctions.at(name)();
        });
    }
    while (begun < 8) std::this_thread::yield();
    // Nothing shows that a thread has come as far as the lock. Were this too short, fewer than eight would wait there.
    Sleep(200);
    SetEvent(go);
    for (std::thread& thread : threads) thread.join();
    CloseHandle(go);
    for (const std::string& result : results) std::printf("%ls value %s\n", name.c_str(), result.c_str());
}

void replaceMachineRoot(const std::wstring& path) {
    HKEY key = nullptr;
    LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &key);
    if (status == ERROR_SUCCESS) status = RegOverridePredefKey(HKEY_LOCAL_MACHINE, key);
    if (key) RegCloseKey(key);
    std::printf("hklm %ld\n", status);
}

void setVariable(const std::wstring& text) {
    const size_t equals = text.find(L'=');
    SetEnvironmentVariableW(text.substr(0, equals).c_str(), text.substr(equals + 1).c_str());
}

void printActivations() {
    wchar_t count[16] = L"0";
    GetEnvironmentVariableW(L"MADE_UP_ACTIVATIONS", count, 16);
    std::printf("activations %ls\n", count);
}

void run(const std::wstring& command) {
    const size_t equals = command.find(L'=');
    const std::wstring name = command.substr(0, equals);
    const std::wstring argument = equals == std::wstring::npos ? L"" : command.substr(equals + 1);
    if (name == L"hklm") {
        replaceMachineRoot(argument);
    } else if (name == L"set") {
        setVariable(argument);
    } else if (name == L"sta" || name == L"mta") {
        const DWORD kind = name == L"sta" ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED;
        std::printf("com %08lx\n", CoInitializeEx(nullptr, kind));
    } else if (name == L"uninit") {
        CoUninitialize();
    } else if (name == L"wmi") {
        ZEMO::Test::registerMadeUpWmi();
    } else if (name == L"wmi-live") {
        std::printf("wmi live %ld\n", ZEMO::Test::madeUpWmiLiveObjects());
    } else if (name == L"call") {
        call(argument);
    } else if (name == L"together") {
        callTogether(argument);
    } else if (name == L"activations") {
        printActivations();
    } else if (!ZEMO::Test::runIpcCommand(name, argument)) {
        std::printf("unknown command %ls\n", command.c_str());
    }
    std::fflush(stdout);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    std::setvbuf(stdout, nullptr, _IOFBF, 1 << 16);
    for (int i = 1; i < count; ++i) run(arguments[i]);
    std::puts("done");
    std::fflush(stdout);
    return 0;
}
