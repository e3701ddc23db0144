#include "core/platform_winrt_activation.h"

#if !ZEMO_WINRT_PROJECTION

#include <windows.h>

#include <objbase.h>
#include <objidl.h>
#include <oleauto.h>
#include <roapi.h>

#include <algorithm>
#include <string_view>

#include "core/com_text.h"
#include "core/system_function.h"
#include "core/unique_handle.h"

// The interface by which the runtime's classes say more about a failure; not every compiler has its header.
MIDL_INTERFACE("82BA7092-4C88-427D-A7BC-16DD93FEB67E")
IZemoRestrictedErrorInfo : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetErrorDetails(BSTR * description, HRESULT * error, BSTR * restrictedDescription,
                                                      BSTR * capabilitySid) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetReference(BSTR * reference) = 0;
};
__CRT_UUID_DECL(IZemoRestrictedErrorInfo, 0x82BA7092, 0x4C88, 0x427D, 0xA7, 0xBC, 0x16, 0xDD, 0x93, 0xFE, 0xB6, 0x7E)

namespace ZEMO::Core {
namespace {

struct Runtime {
    const HMODULE combase = LoadLibraryExW(L"combase.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const decltype(&::RoGetActivationFactory) getFactory =
        systemFunction<decltype(::RoGetActivationFactory)>(combase, "RoGetActivationFactory");
    const decltype(&::WindowsCreateString) createString =
        systemFunction<decltype(::WindowsCreateString)>(combase, "WindowsCreateString");
    const decltype(&::WindowsDeleteString) deleteString =
        systemFunction<decltype(::WindowsDeleteString)>(combase, "WindowsDeleteString");
    const decltype(&::WindowsGetStringRawBuffer) buffer =
        systemFunction<decltype(::WindowsGetStringRawBuffer)>(combase, "WindowsGetStringRawBuffer");
    HRESULT(WINAPI* const increaseMtaUsage)(void** cookie) =
        systemFunction<HRESULT WINAPI(void**)>(combase, "CoIncrementMTAUsage");
    const bool usable = getFactory && createString && deleteString && buffer;
};

const Runtime& runtime() {
    static const Runtime calls;
    if (!calls.usable) ZEMO::Platform::WinRt::throw_hresult(HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
    return calls;
}

std::wstring trimmed(std::wstring text) {
    text.erase(std::find_if_not(text.rbegin(), text.rend(), [](wchar_t c) { return iswspace(c); }).base(), text.end());
    return text;
}

/// What the failing side said, if it spoke of this very failure. Takes it off the thread.
std::wstring toldMessage(HRESULT result) {
    IErrorInfo* rawInfo = nullptr;
    if (GetErrorInfo(0, &rawInfo) != S_OK) return {};
    const auto info = adoptCom(rawInfo);
    IZemoRestrictedErrorInfo* rawRestricted = nullptr;
    if (FAILED(info->QueryInterface(__uuidof(IZemoRestrictedErrorInfo), reinterpret_cast<void**>(&rawRestricted)))) {
        return {};
    }
    const auto restricted = adoptCom(rawRestricted);
    HRESULT told = S_OK;
    ComText description, restrictedDescription, capability;
    if (FAILED(restricted->GetErrorDetails(description.out(), &told, restrictedDescription.out(), capability.out())) ||
        told != result) {
        return {};
    }
    return trimmed(restrictedDescription ? restrictedDescription.text() : description.text());
}

/// Registration-free activation: "A.B.C" may live in A.B.dll or A.dll. False when none has the class.
bool factoryOfNamedDll(const wchar_t* className, HSTRING name, REFIID interfaceId, void** factory) {
    using GetFactory = HRESULT WINAPI(HSTRING, IActivationFactory**);
    std::wstring path = className;
    for (size_t dot = path.rfind(L'.'); dot != std::wstring::npos; dot = path.rfind(L'.')) {
        path.resize(dot);
        UniqueModule library(LoadLibraryExW((path + L".dll").c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS));
        const auto getFactory = systemFunction<GetFactory>(library.get(), "DllGetActivationFactory");
        IActivationFactory* raw = nullptr;
        if (getFactory && SUCCEEDED(getFactory(name, &raw)) && raw) {
            const auto found = adoptCom(raw);
            if (SUCCEEDED(found->QueryInterface(interfaceId, factory))) {
                static_cast<void>(library.release());  // it stays loaded
                return true;
            }
        }
    }
    return false;
}

}  // namespace

void checkRuntime(HRESULT result) {
    if (FAILED(result)) ZEMO::Platform::WinRt::throw_hresult(result, toldMessage(result));
}

RuntimeString::RuntimeString(const std::wstring& text) {
    checkRuntime(runtime().createString(text.c_str(), static_cast<UINT32>(text.size()), &value));
}

RuntimeString::~RuntimeString() {
    if (value) runtime().deleteString(value);
}

std::string RuntimeString::utf8() const {
    UINT32 length = 0;
    const wchar_t* text = runtime().buffer(value, &length);
    const int units = static_cast<int>(length);
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string result(bytes > 0 ? static_cast<size_t>(bytes) : 0, '\0');
    if (!result.empty()) WideCharToMultiByte(CP_UTF8, 0, text, units, result.data(), bytes, nullptr, nullptr);
    return result;
}

void activationFactory(const wchar_t* className, REFIID interfaceId, void** factory) {
    const Runtime& calls = runtime();
    const RuntimeString name{std::wstring(className)};
    HRESULT result = calls.getFactory(name.get(), interfaceId, factory);
    if (result == CO_E_NOTINITIALIZED && calls.increaseMtaUsage) {
        void* cookie = nullptr;
        calls.increaseMtaUsage(&cookie);
        result = calls.getFactory(name.get(), interfaceId, factory);
    }
    if (SUCCEEDED(result)) return;
    const std::wstring message = toldMessage(result);
    if (factoryOfNamedDll(className, name.get(), interfaceId, factory)) return;
    ZEMO::Platform::WinRt::throw_hresult(result, message);
}

bool isAgile(IUnknown* object) {
    IUnknown* agile = nullptr;
    const HRESULT result = object->QueryInterface(__uuidof(IAgileObject), reinterpret_cast<void**>(&agile));
    adoptCom(agile);
    return SUCCEEDED(result);
}

void pinServer(IUnknown* object) {
    const void* firstOperation = **reinterpret_cast<const void* const* const*>(object);
    HMODULE server = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       static_cast<const wchar_t*>(firstOperation), &server);
}

}  // namespace ZEMO::Core
#endif
