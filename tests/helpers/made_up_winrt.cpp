#include <windows.h>

#include <windows.globalization.h>

namespace ABI::Windows::System::UserProfile {
enum DayOfWeek : int;
}
#include <activation.h>
#include <oleauto.h>
#include <windows.system.userprofile.h>

#include <atomic>
#include <string>
#include <vector>

// A server of the runtime classes that the platform functions ask, with answers from the environment. It stands in for
// what the real classes can't be made to say: another user's settings, and failures.
//   MADE_UP_FACTORY_HR, MADE_UP_AD_HR, MADE_UP_COUNTRY_HR, MADE_UP_LANGUAGE_HR   failing codes in hexadecimal
//   MADE_UP_AD, MADE_UP_COUNTRY, MADE_UP_LANGUAGES (between commas)              answers
//   MADE_UP_TOLD                                                                 what a failing AdvertisingId tells
//   MADE_UP_TOLD_HR                                                              the code that it tells of, if another
//   MADE_UP_ACTIVATIONS                                                          counts the factories asked for
//   MADE_UP_BOUND                                                                set: factories are not agile
MIDL_INTERFACE("82BA7092-4C88-427D-A7BC-16DD93FEB67E")
IToldError : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetErrorDetails(BSTR*, HRESULT*, BSTR*, BSTR*) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetReference(BSTR*) = 0;
};
__CRT_UUID_DECL(IToldError, 0x82BA7092, 0x4C88, 0x427D, 0xA7, 0xBC, 0x16, 0xDD, 0x93, 0xFE, 0xB6, 0x7E)

namespace {

using namespace ABI::Windows::Globalization;
using namespace ABI::Windows::System::UserProfile;
using Strings = ABI::Windows::Foundation::Collections::IVectorView<HSTRING>;

std::wstring setting(const wchar_t* name) {
    wchar_t text[1024] = {};
    GetEnvironmentVariableW(name, text, 1024);
    return text;
}

HRESULT failure(const wchar_t* name) {
    const std::wstring text = setting(name);
    return text.empty() ? S_OK : static_cast<HRESULT>(std::wcstoul(text.c_str(), nullptr, 16));
}

template <class Call>
Call* runtimeCall(const char* name) {
    return reinterpret_cast<Call*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"combase.dll"), name)));
}

HRESULT give(const std::wstring& text, HSTRING* out) {
    return runtimeCall<HRESULT WINAPI(LPCWSTR, UINT32, HSTRING*)>("WindowsCreateString")(
        text.c_str(), static_cast<UINT32>(text.size()), out);
}

std::wstring take(HSTRING text) {
    return runtimeCall<LPCWSTR WINAPI(HSTRING, UINT32*)>("WindowsGetStringRawBuffer")(text, nullptr);
}

template <class Base>
class Object : public Base {
public:
    virtual ~Object() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        *out = find(id);
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long left = --references_;
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }

protected:
    virtual void* find(REFIID id) {
        return id == __uuidof(IUnknown) || id == __uuidof(Base) ? static_cast<Base*>(this) : nullptr;
    }

private:
    std::atomic<long> references_{1};
};

template <class Base>
class Inspectable : public Object<Base> {
public:
    HRESULT STDMETHODCALLTYPE GetIids(ULONG*, IID**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetRuntimeClassName(HSTRING*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTrustLevel(TrustLevel*) override { return E_NOTIMPL; }

protected:
    void* find(REFIID id) override {
        return id == __uuidof(IInspectable) ? static_cast<Base*>(this) : Object<Base>::find(id);
    }
};

class Told : public Object<IErrorInfo> {
public:
    HRESULT STDMETHODCALLTYPE GetGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD*) override { return E_NOTIMPL; }

protected:
    void* find(REFIID id) override {
        return id == __uuidof(IToldError) ? static_cast<IToldError*>(&details_) : Object::find(id);
    }

private:
    struct Details : IToldError {
        explicit Details(Told& holder) : owner(holder) {}
        Told& owner;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
            return owner.QueryInterface(id, out);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return owner.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return owner.Release(); }
        HRESULT STDMETHODCALLTYPE GetErrorDetails(BSTR* description, HRESULT* error, BSTR* restricted,
                                                  BSTR* capability) override {
            *description = SysAllocString(L"general");
            *error = setting(L"MADE_UP_TOLD_HR").empty() ? failure(L"MADE_UP_AD_HR") : failure(L"MADE_UP_TOLD_HR");
            *restricted = SysAllocString((setting(L"MADE_UP_TOLD") + L" \r\n").c_str());
            *capability = nullptr;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE GetReference(BSTR*) override { return E_NOTIMPL; }
    } details_{*this};
};

class Region : public Inspectable<IGeographicRegion> {
public:
    HRESULT STDMETHODCALLTYPE get_Code(HSTRING* out) override { return give(L"code", out); }
    HRESULT STDMETHODCALLTYPE get_CodeTwoLetter(HSTRING* out) override {
        const HRESULT failed = failure(L"MADE_UP_COUNTRY_HR");
        return FAILED(failed) ? failed : give(setting(L"MADE_UP_COUNTRY"), out);
    }
    HRESULT STDMETHODCALLTYPE get_CodeThreeLetter(HSTRING* out) override { return give(L"three letters", out); }
    HRESULT STDMETHODCALLTYPE get_CodeThreeDigit(HSTRING* out) override { return give(L"three digits", out); }
    HRESULT STDMETHODCALLTYPE get_DisplayName(HSTRING* out) override { return give(L"display", out); }
    HRESULT STDMETHODCALLTYPE get_NativeName(HSTRING* out) override { return give(L"native", out); }
    HRESULT STDMETHODCALLTYPE get_CurrenciesInUse(Strings**) override { return E_NOTIMPL; }
};

class Tongue : public Inspectable<ILanguage> {
public:
    explicit Tongue(std::wstring made) : made_(std::move(made)) {}
    HRESULT STDMETHODCALLTYPE get_LanguageTag(HSTRING* out) override { return give(L"tag of " + made_, out); }
    HRESULT STDMETHODCALLTYPE get_DisplayName(HSTRING* out) override { return give(L"display", out); }
    HRESULT STDMETHODCALLTYPE get_NativeName(HSTRING* out) override { return give(L"native", out); }
    HRESULT STDMETHODCALLTYPE get_Script(HSTRING* out) override { return give(L"script", out); }

private:
    const std::wstring made_;
};

class List : public Inspectable<Strings> {
public:
    List() {
        std::wstring rest = setting(L"MADE_UP_LANGUAGES");
        while (!rest.empty()) {
            const size_t end = rest.find(L',');
            items_.push_back(rest.substr(0, end));
            rest = end == std::wstring::npos ? L"" : rest.substr(end + 1);
        }
    }
    HRESULT STDMETHODCALLTYPE GetAt(UINT32 index, HSTRING* out) override {
        return index < items_.size() ? give(items_[index], out) : static_cast<HRESULT>(0x8000000B);
    }
    HRESULT STDMETHODCALLTYPE get_Size(UINT32* size) override {
        *size = static_cast<UINT32>(items_.size());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE IndexOf(HSTRING, UINT32*, BOOLEAN*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMany(UINT32, UINT32, HSTRING*, UINT32*) override { return E_NOTIMPL; }

private:
    std::vector<std::wstring> items_;
};

// The three static interfaces hang on one identity, that of the factory.
template <class Base>
class Tear : public Base {
public:
    explicit Tear(IActivationFactory& owner) : owner_(owner) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override { return owner_.QueryInterface(id, out); }
    ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }
    HRESULT STDMETHODCALLTYPE GetIids(ULONG*, IID**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetRuntimeClassName(HSTRING*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTrustLevel(TrustLevel*) override { return E_NOTIMPL; }

private:
    IActivationFactory& owner_;
};

class Advertising : public Tear<IAdvertisingManagerStatics> {
public:
    using Tear::Tear;
    HRESULT STDMETHODCALLTYPE get_AdvertisingId(HSTRING* out) override {
        const HRESULT failed = failure(L"MADE_UP_AD_HR");
        if (SUCCEEDED(failed)) return give(setting(L"MADE_UP_AD"), out);
        if (!setting(L"MADE_UP_TOLD").empty()) {
            auto* told = new Told;
            SetErrorInfo(0, told);
            told->Release();
        }
        return failed;
    }
};

class Preferences : public Tear<IGlobalizationPreferencesStatics> {
public:
    using Tear::Tear;
    HRESULT STDMETHODCALLTYPE get_Calendars(Strings**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Clocks(Strings**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Currencies(Strings**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Languages(Strings** out) override {
        *out = new List;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_HomeGeographicRegion(HSTRING*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_WeekStartsOn(ABI::Windows::System::UserProfile::DayOfWeek*) override {
        return E_NOTIMPL;
    }
};

class Languages : public Tear<ILanguageFactory> {
public:
    using Tear::Tear;
    HRESULT STDMETHODCALLTYPE CreateLanguage(HSTRING tag, ILanguage** out) override {
        const HRESULT failed = failure(L"MADE_UP_LANGUAGE_HR");
        if (FAILED(failed)) return failed;
        *out = new Tongue(take(tag));
        return S_OK;
    }
};

class Factory : public Inspectable<IActivationFactory> {
public:
    HRESULT STDMETHODCALLTYPE ActivateInstance(IInspectable** out) override {
        *out = new Region;
        return S_OK;
    }

protected:
    void* find(REFIID id) override {
        if (id == __uuidof(IAdvertisingManagerStatics)) return static_cast<IAdvertisingManagerStatics*>(&advertising_);
        if (id == __uuidof(IGlobalizationPreferencesStatics)) {
            return static_cast<IGlobalizationPreferencesStatics*>(&preferences_);
        }
        if (id == __uuidof(ILanguageFactory)) return static_cast<ILanguageFactory*>(&languages_);
        if (id == __uuidof(IAgileObject) && setting(L"MADE_UP_BOUND").empty()) {
            return static_cast<IUnknown*>(static_cast<IActivationFactory*>(this));
        }
        return Inspectable::find(id);
    }

private:
    Advertising advertising_{*this};
    Preferences preferences_{*this};
    Languages languages_{*this};
};

}  // namespace

extern "C" __declspec(dllexport) HRESULT WINAPI DllGetActivationFactory(HSTRING, IActivationFactory** out) {
    // Counted in the environment: after a failure the system may unload this server.
    SetEnvironmentVariableW(
        L"MADE_UP_ACTIVATIONS",
        std::to_wstring(std::wcstol(setting(L"MADE_UP_ACTIVATIONS").c_str(), nullptr, 10) + 1).c_str());
    *out = nullptr;
    const HRESULT failed = failure(L"MADE_UP_FACTORY_HR");
    if (FAILED(failed)) return failed;
    *out = new Factory;
    return S_OK;
}
