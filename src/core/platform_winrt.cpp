#include <mutex>
#include <string>

#include "core/platform_state.h"
#include "zemo/platform.h"
#include "zemo/winrt_error.h"

// The user's identifier, region and language by the Windows Runtime. Two builds of one behaviour: with the C++
// projection where its classes are what the library raises, else over the plain binary interface.
#if ZEMO_WINRT_PROJECTION

#include <winrt/Windows.Foundation.Collections.h>
#include <winrt/Windows.Globalization.h>
#include <winrt/Windows.System.UserProfile.h>

#pragma comment(lib, "windowsapp")

namespace ZEMO::Platform::Misc {
namespace {

std::string advertisingId() {
    return winrt::to_string(winrt::Windows::System::UserProfile::AdvertisingManager::AdvertisingId());
}

std::string countryCode() {
    return winrt::to_string(winrt::Windows::Globalization::GeographicRegion().CodeTwoLetter());
}

std::string languageTag() {
    const auto languages = winrt::Windows::System::UserProfile::GlobalizationPreferences::Languages();
    return winrt::to_string(winrt::Windows::Globalization::Language(languages.GetAt(0)).LanguageTag());
}

}  // namespace
}  // namespace ZEMO::Platform::Misc

#else

#include <windows.globalization.h>

// The next header speaks of this enumeration in a namespace where nobody declares it.
namespace ABI::Windows::System::UserProfile {
enum DayOfWeek : int;
}
#include <activation.h>
#include <windows.system.userprofile.h>

#include "core/platform_winrt_activation.h"

namespace ZEMO::Platform::Misc {
namespace {

using ABI::Windows::Foundation::Collections::IVectorView;
using ABI::Windows::Globalization::IGeographicRegion;
using ABI::Windows::Globalization::ILanguage;
using ABI::Windows::Globalization::ILanguageFactory;
using ABI::Windows::System::UserProfile::IAdvertisingManagerStatics;
using ABI::Windows::System::UserProfile::IGlobalizationPreferencesStatics;
using Core::adoptCom;
using Core::checkRuntime;
using Core::RuntimeFactory;
using Core::RuntimeString;

RuntimeFactory<IAdvertisingManagerStatics> advertisingManager(L"Windows.System.UserProfile.AdvertisingManager");
RuntimeFactory<IGlobalizationPreferencesStatics> preferences(L"Windows.System.UserProfile.GlobalizationPreferences");
RuntimeFactory<ILanguageFactory> languageFactory(L"Windows.Globalization.Language");
RuntimeFactory<IActivationFactory> regionFactory(L"Windows.Globalization.GeographicRegion");

std::string advertisingId() {
    RuntimeString id;
    checkRuntime(advertisingManager.get()->get_AdvertisingId(id.out()));
    return id.utf8();
}

std::string countryCode() {
    IInspectable* rawInstance = nullptr;
    checkRuntime(regionFactory.get()->ActivateInstance(&rawInstance));
    const auto instance = adoptCom(rawInstance);
    IGeographicRegion* rawRegion = nullptr;
    checkRuntime(instance->QueryInterface(__uuidof(IGeographicRegion), reinterpret_cast<void**>(&rawRegion)));
    const auto region = adoptCom(rawRegion);
    RuntimeString code;
    checkRuntime(region->get_CodeTwoLetter(code.out()));
    return code.utf8();
}

std::string languageTag() {
    IVectorView<HSTRING>* rawLanguages = nullptr;
    checkRuntime(preferences.get()->get_Languages(&rawLanguages));
    const auto languages = adoptCom(rawLanguages);
    RuntimeString first;
    checkRuntime(languages->GetAt(0, first.out()));
    ILanguage* rawLanguage = nullptr;
    checkRuntime(languageFactory.get()->CreateLanguage(first.get(), &rawLanguage));
    const auto language = adoptCom(rawLanguage);
    RuntimeString tag;
    checkRuntime(language->get_LanguageTag(tag.out()));
    return tag.utf8();
}

}  // namespace
}  // namespace ZEMO::Platform::Misc

#endif

namespace ZEMO::Platform::Misc {

std::string getAdvertisingId() {
    const std::lock_guard lock(Core::platformMutex);
    return advertisingId();
}

bool getIsLimitAdTracking() {
    const std::lock_guard lock(Core::platformMutex);
    return advertisingId().empty();
}

std::string getCountry() { return countryCode(); }

std::string getLanguage() { return languageTag(); }

}  // namespace ZEMO::Platform::Misc
