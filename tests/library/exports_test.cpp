#include <gtest/gtest.h>
#include <windows.h>

#if defined(__GNUC__)
#include <cxxabi.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "zemo/ui.h"

// What leaves the library file: its export table, read as the loader reads it, and its version resource.
namespace ZEMO::Test {
namespace {

HMODULE library() { return GetModuleHandleW(L"ZEMOUIFramework.dll"); }

std::vector<std::string> exportedSymbols() {
    const auto* base = reinterpret_cast<const BYTE*>(library());
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& place = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* table = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + place.VirtualAddress);
    const auto* names = reinterpret_cast<const DWORD*>(base + table->AddressOfNames);
    std::vector<std::string> symbols;
    for (DWORD i = 0; i < table->NumberOfNames; ++i) {
        symbols.emplace_back(reinterpret_cast<const char*>(base + names[i]));
    }
    EXPECT_EQ(table->NumberOfFunctions, table->NumberOfNames) << "something is exported by number alone";
    return symbols;
}

std::set<std::string> exportedPlainNames() {
    std::set<std::string> plain;
    for (const std::string& symbol : exportedSymbols()) {
        if (!symbol.starts_with("_Z") && !symbol.starts_with("?")) plain.insert(symbol);
    }
    return plain;
}

std::string without(std::string text, const std::string& part, const std::string& instead = "") {
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + instead.size())) {
        text.replace(at, part.size(), instead);
    }
    return text;
}

}  // namespace

TEST(Exports, SixPlainNames_Unmangled) {
    EXPECT_EQ(exportedPlainNames(),
              (std::set<std::string>{"InitUILibraryTEST", "createWebViewTEST", "registerImeCompositionBoundsCallback",
                                     "registerImeEventCallback", "setImeProcess", "setUseExternalTsfIme"}));
}

#if defined(__GNUC__)
// Constructors and destructors appear once here and several times in the table.
TEST(Exports, FunctionsAndClasses_ExactlyTheOnesOfTheList) {
    const std::set<std::string> expected{
        "ZEMO::Core::IURL::~IURL()",
        "ZEMO::Core::JsonArrayContainer::JsonArrayContainer()",
        "ZEMO::Core::JsonArrayContainer::JsonArrayContainer(ZEMO::Core::JsonArrayContainer const&)",
        "ZEMO::Core::JsonArrayContainer::JsonArrayContainer(ZEMO::Core::JsonArrayContainer&&)",
        "ZEMO::Core::JsonArrayContainer::operator=(ZEMO::Core::JsonArrayContainer const&)",
        "ZEMO::Core::JsonArrayContainer::operator=(ZEMO::Core::JsonArrayContainer&&)",
        "ZEMO::Core::JsonArrayContainer::~JsonArrayContainer()",
        "ZEMO::Core::JsonContainer::JsonContainer()",
        "ZEMO::Core::JsonContainer::JsonContainer(ZEMO::Core::JsonContainer const&)",
        "ZEMO::Core::JsonContainer::operator=(ZEMO::Core::JsonContainer const&)",
        "ZEMO::Core::JsonContainer::~JsonContainer()",
        "ZEMO::Core::Platform::operator=(ZEMO::Core::Platform const&)",
        "ZEMO::Core::Platform::operator=(ZEMO::Core::Platform&&)",
        "ZEMO::Core::StringUtil::StrToHexStr(std::string const&)",
        "ZEMO::Core::StringUtil::base64DecodeString(std::string const&)",
        "ZEMO::Core::StringUtil::base64DecodeVector(std::string const&)",
        "ZEMO::Core::StringUtil::base64Encode(std::string const&)",
        "ZEMO::Core::StringUtil::base64Encode(std::vector<unsigned char> const&)",
        "ZEMO::Core::StringUtil::base64URLSafeDecode(std::string const&)",
        "ZEMO::Core::StringUtil::base64URLSafeEncode(std::string const&)",
        "ZEMO::Core::StringUtil::byteToHexStr(std::vector<unsigned char> const&)",
        "ZEMO::Core::StringUtil::changeLetterCase(std::string&, ZEMO::Core::StringUtil::LetterCase)",
        "ZEMO::Core::StringUtil::generateUUID()",
        "ZEMO::Core::StringUtil::getRandomData(unsigned long long)",
        "ZEMO::Core::StringUtil::getUrlSafeRandomString(unsigned long long)",
        "ZEMO::Core::StringUtil::hexStrToByte(std::string const&)",
        "ZEMO::Core::StringUtil::hexStrToStr(std::string const&)",
        "ZEMO::Core::StringUtil::isEmptyString(std::string const&)",
        "ZEMO::Core::StringUtil::isEqual(std::string const&, std::string const&, ZEMO::Core::StringSensitive)",
        "ZEMO::Core::StringUtil::isEqual(std::string_view, std::string_view, ZEMO::Core::StringSensitive)",
        "ZEMO::Core::StringUtil::isEqualCaseInSensitive(std::string const&, std::string const&)",
        "ZEMO::Core::StringUtil::isEqualCaseInSensitive(std::string_view, std::string_view)",
        "ZEMO::Core::StringUtil::longlongToString(long long)",
        "ZEMO::Core::StringUtil::operator=(ZEMO::Core::StringUtil const&)",
        "ZEMO::Core::StringUtil::operator=(ZEMO::Core::StringUtil&&)",
        "ZEMO::Core::StringUtil::removeCharacter(std::string&, char const&)",
        "ZEMO::Core::StringUtil::replaceAll(std::string const&, std::string const&, std::string const&)",
        "ZEMO::Core::StringUtil::replaceRangeBetweenStrings(std::string&, std::string const&, std::string const&, "
        "std::string const&, unsigned long long)",
        "ZEMO::Core::StringUtil::splitString(std::string const&, char)",
        "ZEMO::Core::StringUtil::trimString(std::string&)",
        "ZEMO::Core::URL::URL(ZEMO::Core::URL const&)",
        "ZEMO::Core::URL::URL(std::string const&)",
        "ZEMO::Core::URL::addPathSegment(std::string const&)",
        "ZEMO::Core::URL::addQueryParameter(std::string const&, std::string const&)",
        "ZEMO::Core::URL::getFragment() const",
        "ZEMO::Core::URL::getHost() const",
        "ZEMO::Core::URL::getPath() const",
        "ZEMO::Core::URL::getPort() const",
        "ZEMO::Core::URL::getQuery() const",
        "ZEMO::Core::URL::getQueryParameter(std::string const&) const",
        "ZEMO::Core::URL::getQueryParameters() const",
        "ZEMO::Core::URL::getScheme() const",
        "ZEMO::Core::URL::getUrl() const",
        "ZEMO::Core::URL::isEqual(ZEMO::Core::IURL const&) const",
        "ZEMO::Core::URL::isEqual(std::string const&) const",
        "ZEMO::Core::URL::isEqual(std::string_view) const",
        "ZEMO::Core::URL::operator=(ZEMO::Core::URL const&)",
        "ZEMO::Core::URL::setHost(std::string const&)",
        "ZEMO::Core::URL::setPort(std::string const&)",
        "ZEMO::Core::URL::setScheme(std::string const&)",
        "ZEMO::Core::URL::toEncodedString() const",
        "ZEMO::Core::URL::toString() const",
        "ZEMO::Core::URL::~URL()",
        "ZEMO::Platform::Misc::GetDynamicPort()",
        "ZEMO::Platform::Misc::getAdvertisingId()",
        "ZEMO::Platform::Misc::getAppVersion()",
        "ZEMO::Platform::Misc::getCPUModel()",
        "ZEMO::Platform::Misc::getCountry()",
        "ZEMO::Platform::Misc::getCpuType()",
        "ZEMO::Platform::Misc::getDeviceModel()",
        "ZEMO::Platform::Misc::getDeviceName()",
        "ZEMO::Platform::Misc::getGPUModelList()",
        "ZEMO::Platform::Misc::getIsLandscapeWindow()",
        "ZEMO::Platform::Misc::getIsLimitAdTracking()",
        "ZEMO::Platform::Misc::getLanguage()",
        "ZEMO::Platform::Misc::getMcc()",
        "ZEMO::Platform::Misc::getMnc()",
        "ZEMO::Platform::Misc::getOsVersion()",
        "ZEMO::Platform::Misc::getPhysicallyInstalledSystemMemory()",
        "ZEMO::Platform::Misc::getPhysicallyInstalledSystemMemoryGB()",
        "ZEMO::Platform::Misc::getPlatform()",
        "ZEMO::Platform::Misc::getProcessorID(std::string const&)",
        "ZEMO::Platform::Misc::getUserName()",
        "ZEMO::Platform::Misc::getWindowHeight()",
        "ZEMO::Platform::Misc::getWindowWidth()",
        "ZEMO::Platform::Misc::ipcOpen(std::function<void (std::string)>)",
        "ZEMO::Platform::Misc::ipcSend(std::string const&, std::string const&)",
        "ZEMO::UI::InitUIGraphicsHook()",
        "ZEMO::UI::InitUILibrary()",
        "ZEMO::UI::LocaleSetter::operator=(ZEMO::UI::LocaleSetter const&)",
        "ZEMO::UI::LocaleSetter::operator=(ZEMO::UI::LocaleSetter&&)",
        "ZEMO::UI::LocaleSetter::setUTF8PreservePreSettedLocale()",
        "ZEMO::UI::activeFocusMainWindow()",
        "ZEMO::UI::createFileSelectViewDialog()",
        "ZEMO::UI::createWebViewDefault()",
        "ZEMO::UI::getLocalHTMLResourcePath()",
        "ZEMO::UI::openBrowser(ZEMO::Core::IURL const&)",
        "ZEMO::UI::openIncognitoBrowser(ZEMO::Core::IURL const&)",
        "ZEMO::UI::processSteamDeckKeyboardClose()",
        "ZEMO::UI::sendGameControllerCustomMsgData(std::string const&)",
        "ZEMO::UI::sendGameControllerStatus(std::string const&)",
        "ZEMO::UI::sendUIRemoteInputEvent(std::string const&, std::string const&, std::string const&, int, int)",
        "ZEMO::UI::setOpenGLSleepTime(unsigned int)",
        "ZEMO::UI::setUIEngineOsrRenderEnabled(int)",
        "ZEMO::UI::setUIGameControllerScriptUseCallback(std::function<void (int)>)",
        "ZEMO::UI::setUIOpenExternalBrowserCallback(std::function<bool (std::string const&)>)",
        "ZEMO::UI::setUIOsrFramePresentCallback(std::function<void (void const*, int, int, int, int, int, int)>)",
        "ZEMO::UI::setUIShowSteamDeckKeyboardCallback(std::function<void (int)>)",
        "ZEMO::UI::setUISteamOverlayActiveStatus(bool)",
        "ZEMO::UI::updateUILanguage(char const*)",
        "typeinfo for ZEMO::Core::IURL",
        "typeinfo for ZEMO::Core::URL",
        "vtable for ZEMO::Core::IURL",
        "vtable for ZEMO::Core::URL",
    };
    std::set<std::string> exported;
    for (const std::string& symbol : exportedSymbols()) {
        if (!symbol.starts_with("_Z")) continue;
        const std::unique_ptr<char, void (*)(void*)> name(
            abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, nullptr), &std::free);
        std::string text = name ? name.get() : symbol;
        text = without(text, "[abi:cxx11]");
        text = without(text, "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >",
                       "std::string");
        text = without(text, "std::basic_string_view<char, std::char_traits<char> >", "std::string_view");
        text = without(text, ", std::allocator<unsigned char> ");
        exported.insert(text);
    }
    std::vector<std::string> difference;
    std::ranges::set_difference(expected, exported, std::back_inserter(difference));
    EXPECT_EQ(difference, std::vector<std::string>{}) << "missing";
    difference.clear();
    std::ranges::set_difference(exported, expected, std::back_inserter(difference));
    EXPECT_EQ(difference, std::vector<std::string>{}) << "exported without being on the list";
}
#endif

TEST(Exports, LibraryFile_HasAVersionResource) {
    wchar_t path[MAX_PATH] = {};
    ASSERT_NE(GetModuleFileNameW(library(), path, MAX_PATH), 0u);
    std::vector<BYTE> resource(GetFileVersionInfoSizeW(path, nullptr));
    ASSERT_FALSE(resource.empty());
    ASSERT_TRUE(GetFileVersionInfoW(path, 0, static_cast<DWORD>(resource.size()), resource.data()));
    VS_FIXEDFILEINFO* fixed = nullptr;
    UINT bytes = 0;
    ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\", reinterpret_cast<void**>(&fixed), &bytes));
    EXPECT_GE(HIWORD(fixed->dwFileVersionMS), 1);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    void* name = nullptr;
    ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\StringFileInfo\\040904b0\\OriginalFilename", &name, &bytes));
    EXPECT_STREQ(static_cast<const wchar_t*>(name), L"ZEMOUIFramework.dll");
}

}  // namespace ZEMO::Test
