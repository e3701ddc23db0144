#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
#include <wbemidl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/com_pointer.h"
#include "core/com_text.h"
#include "core/platform_state.h"
#include "core/platform_text.h"
#include "zemo/platform.h"

// What only the management service knows. Each look-up initialises COM for itself, and every interface is released
// before that is undone: the destructors run in the reverse order of the declarations.
namespace ZEMO::Core {

std::mutex platformMutex;

}  // namespace ZEMO::Core

namespace ZEMO::Platform::Misc {
namespace {

std::string deviceModelCache;
std::vector<std::string> gpuModelCache;

struct Apartment {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    Apartment() = default;
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (SUCCEEDED(result)) CoUninitialize();  // S_FALSE counts as well
    }
};

std::shared_ptr<IWbemServices> connect(const wchar_t* nameSpace, DWORD capabilities) {
    IWbemLocator* rawLocator = nullptr;
    if (FAILED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                reinterpret_cast<void**>(&rawLocator)))) {
        return {};
    }
    const auto locator = Core::adoptCom(rawLocator);
    IWbemServices* rawServices = nullptr;
    if (FAILED(locator->ConnectServer(Core::ComText(nameSpace).get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                      &rawServices))) {
        return {};
    }
    auto services = Core::adoptCom(rawServices);
    if (FAILED(CoSetProxyBlanket(services.get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                                 RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, capabilities))) {
        return {};
    }
    return services;
}

std::shared_ptr<IEnumWbemClassObject> query(IWbemServices& services, const wchar_t* text, long flags) {
    IEnumWbemClassObject* objects = nullptr;
    if (FAILED(services.ExecQuery(Core::ComText(L"WQL").get(), Core::ComText(text).get(), flags, nullptr, &objects)))
        return {};
    return Core::adoptCom(objects);
}

std::shared_ptr<IWbemClassObject> next(IEnumWbemClassObject& objects) {
    IWbemClassObject* object = nullptr;
    ULONG count = 0;
    if (FAILED(objects.Next(WBEM_INFINITE, 1, &object, &count)) || count == 0) return {};
    return Core::adoptCom(object);
}

/// The text of a property; nothing when it can't be read or is no text.
std::optional<std::string> property(IWbemClassObject& object, const wchar_t* name) {
    struct Value : VARIANT {
        Value() { VariantInit(this); }
        Value(const Value&) = delete;
        Value& operator=(const Value&) = delete;
        ~Value() { VariantClear(this); }
    } value;
    if (FAILED(object.Get(name, 0, &value, nullptr, nullptr)) || value.vt != VT_BSTR) return {};
    return Core::wideToUtf8(value.bstrVal ? value.bstrVal : L"");
}

std::string findDeviceModel() {
    const Apartment apartment;
    if (FAILED(apartment.result)) return {};
    const auto services = connect(L"ROOT\\CIMV2", EOAC_NONE);
    if (!services) return {};
    const auto objects =
        query(*services, L"SELECT * FROM Win32_ComputerSystem", WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY);
    const auto computer = objects ? next(*objects) : nullptr;
    return computer ? property(*computer, L"Model").value_or("") : std::string();
}

void fillGpuModels() {
    const Apartment apartment;
    // Where COM was initialised before, nothing is asked, unlike for the device model. Callers rely on both.
    if (FAILED(apartment.result) || apartment.result == S_FALSE) return;
    const auto services = connect(L"\\\\.\\root\\cimv2", EOAC_DEFAULT);
    if (!services) return;
    const auto objects = query(*services, L"select * from Win32_VideoController", WBEM_FLAG_FORWARD_ONLY);
    if (!objects) return;
    while (const auto adapter = next(*objects)) {
        auto name = property(*adapter, L"Name");
        if (!name) return;
        gpuModelCache.push_back(std::move(*name));
    }
}

}  // namespace

std::string getDeviceModel() {
    if (!deviceModelCache.empty()) return deviceModelCache;
    const std::lock_guard lock(Core::platformMutex);
    if (deviceModelCache.empty()) deviceModelCache = findDeviceModel();  // another thread may have been first
    return deviceModelCache;
}

std::vector<std::string> getGPUModelList() {
    if (gpuModelCache.empty()) fillGpuModels();
    return gpuModelCache;
}

}  // namespace ZEMO::Platform::Misc
