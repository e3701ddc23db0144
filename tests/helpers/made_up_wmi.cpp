#include "helpers/made_up_wmi.h"

#include "helpers/made_up_wmi_stubs.h"

#include <objidl.h>
#include <oleauto.h>

#include <atomic>
#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ZEMO::Test {
namespace {

std::atomic<long> liveObjects{0};

std::wstring setting(const wchar_t* name) {
    wchar_t text[1024] = {};
    GetEnvironmentVariableW(name, text, 1024);
    return text;
}

bool fails(const wchar_t* step) { return setting(L"MADE_UP_WMI_FAIL") == step; }

template <class Base>
class Counted : public Base {
public:
    Counted() { ++liveObjects; }
    virtual ~Counted() { --liveObjects; }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
    ULONG STDMETHODCALLTYPE Release() override {
        const long left = --references_;
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = find(id);
        if (!*object) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

protected:
    virtual void* find(REFIID id) { return id == __uuidof(IUnknown) ? static_cast<Base*>(this) : nullptr; }

private:
    std::atomic<long> references_{1};
};

class Computer : public Counted<IWbemClassObjectStub> {
public:
    explicit Computer(std::wstring value) : value_(std::move(value)) {}
    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE*, LONG*) override {
        std::printf("wmi get %ls\n", name);
        if (value_ == L"<missing>") return WBEM_E_NOT_FOUND;
        VariantInit(value);
        value->vt = value_ == L"<null>" ? VT_NULL : value_ == L"<number>" ? VT_I4 : VT_BSTR;
        if (value->vt == VT_BSTR) value->bstrVal = SysAllocString(value_.c_str());
        if (value->vt == VT_I4) value->lVal = 7;
        return S_OK;
    }

private:
    const std::wstring value_;
};

class Objects : public Counted<IEnumWbemClassObject> {
public:
    Objects() {
        std::wstring all = setting(L"MADE_UP_WMI_VALUES");
        for (size_t start = 0; !all.empty() && start != std::wstring::npos;) {
            const size_t end = all.find(L';', start);
            values_.push_back(all.substr(start, end == std::wstring::npos ? end : end - start));
            start = end == std::wstring::npos ? end : end + 1;
        }
    }
    HRESULT STDMETHODCALLTYPE Next(LONG, ULONG, IWbemClassObject** object, ULONG* count) override {
        *object = nullptr;
        *count = 0;
        if (next_ == values_.size()) return WBEM_S_FALSE;
        const std::wstring& value = values_[next_++];
        if (value == L"<fail>") return WBEM_E_TRANSPORT_FAILURE;
        *object = new Computer(value);
        *count = 1;
        return WBEM_S_NO_ERROR;
    }
    HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return E_NOTIMPL; }

private:
    std::vector<std::wstring> values_;
    size_t next_ = 0;
};

class Services : public Counted<IWbemServicesStub> {
public:
    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext*,
                                        IEnumWbemClassObject** objects) override {
        std::printf("wmi query %ls|%ls|%ld\n", language, query, flags);
        if (fails(L"query")) return WBEM_E_INVALID_QUERY;
        *objects = new Objects;
        return S_OK;
    }

protected:
    void* find(REFIID id) override {
        if (id == __uuidof(IClientSecurity)) return static_cast<IClientSecurity*>(&security_);
        return Counted::find(id);
    }

private:
    struct Security : IClientSecurity {
        explicit Security(Services& holder) : owner(holder) {}
        Services& owner;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
            return owner.QueryInterface(id, object);
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return owner.AddRef(); }
        ULONG STDMETHODCALLTYPE Release() override { return owner.Release(); }
        HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**,
                                               DWORD*) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD authn, DWORD authz, OLECHAR*, DWORD level, DWORD imp,
                                             void*, DWORD capabilities) override {
            std::printf("wmi blanket %lu|%lu|%lu|%lu|%lu\n", authn, authz, level, imp, capabilities);
            return fails(L"blanket") ? E_ACCESSDENIED : S_OK;
        }
        HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown**) override { return E_NOTIMPL; }
    } security_{*this};
};

class Locator : public Counted<IWbemLocator> {
public:
    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR, const BSTR, const BSTR, LONG, const BSTR,
                                            IWbemContext*, IWbemServices** services) override {
        std::printf("wmi connect %ls\n", resource);
        if (fails(L"connect")) return WBEM_E_INVALID_NAMESPACE;
        if (const std::wstring name = setting(L"MADE_UP_WMI_FIRST"); !name.empty()) {
            static std::atomic<int> connections{0};
            if (++connections > 1) return WBEM_E_INVALID_NAMESPACE;
            const HANDLE go = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
            WaitForSingleObject(go, 20000);
            CloseHandle(go);
        }
        *services = new Services;
        return S_OK;
    }

protected:
    void* find(REFIID id) override {
        return id == __uuidof(IWbemLocator) ? static_cast<IWbemLocator*>(this) : Counted::find(id);
    }
};

class Factory : public IClassFactory {  // lives as long as the process
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = id == __uuidof(IUnknown) || id == __uuidof(IClassFactory);
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
        auto* locator = new Locator;
        const HRESULT result = locator->QueryInterface(id, object);
        locator->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

void registerMadeUpWmi() {
    // Shared: the thread may still be in its telling when this returns.
    const auto registered = std::make_shared<std::promise<void>>();
    std::future<void> done = registered->get_future();
    // On a thread of its own, whose apartment stays: the functions under test begin without COM on their thread.
    std::thread([registered] {
        static Factory factory;
        DWORD cookie = 0;
        HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        if (SUCCEEDED(result)) {
            result =
                CoRegisterClassObject(CLSID_WbemLocator, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
        }
        std::printf("wmi registered %08lx\n", result);
        registered->set_value();
        Sleep(INFINITE);
    }).detach();
    done.wait();
}

long madeUpWmiLiveObjects() { return liveObjects; }

}  // namespace ZEMO::Test
