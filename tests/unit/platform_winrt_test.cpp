#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "support/helper_process.h"
#include "support/made_up_machine.h"
#include "zemo/platform.h"
#include "zemo/winrt_error.h"

namespace {

using namespace ZEMO::Test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using Lines = std::vector<std::string>;

std::string narrow(const wchar_t* text) {
    std::string result;
    for (; *text; ++text) result += static_cast<char>(*text);
    return result;
}

std::string usersRegion() {
    wchar_t region[16] = {};
    GetGeoInfoW(GetUserGeoID(GEOCLASS_NATION), GEO_ISO2, region, 16, 0);
    return narrow(region);
}

TEST(PlatformLanguage, ComparedWithUsersLocale_SameTag) {
    wchar_t locale[LOCALE_NAME_MAX_LENGTH] = {};
    ASSERT_GT(GetUserDefaultLocaleName(locale, LOCALE_NAME_MAX_LENGTH), 0);
    EXPECT_EQ(ZEMO::Platform::Misc::getLanguage(), narrow(locale));
}

TEST(PlatformCountry, ComparedWithUsersRegion_SameCode) {
    ASSERT_EQ(usersRegion().size(), 2u);
    EXPECT_EQ(ZEMO::Platform::Misc::getCountry(), usersRegion());
}

// What the identifier is lies with the user's settings; that it is told at all, and twice the same, does not.
TEST(PlatformAdvertising, RealClass_AnswersTwiceTheSame) {
    std::string first = "not told";
    ASSERT_NO_THROW(first = ZEMO::Platform::Misc::getAdvertisingId());
    EXPECT_EQ(ZEMO::Platform::Misc::getAdvertisingId(), first);
    EXPECT_NE(first, "not told");
}

// The rest needs other users and failures than the real classes offer: a made-up server is registered in a made-up
// machine tree, and a process that sees this tree activates it in the ordinary way.
class PlatformRuntime : public testing::Test {
protected:
    void registerClasses() {
        for (const wchar_t* name :
             {L"Windows.System.UserProfile.AdvertisingManager", L"Windows.System.UserProfile.GlobalizationPreferences",
              L"Windows.Globalization.Language", L"Windows.Globalization.GeographicRegion"}) {
            const std::wstring key = std::wstring(LR"(Software\Microsoft\WindowsRuntime\ActivatableClassId\)") + name;
            machine_.setText(key, L"DllPath", helperPath(L"made_up_winrt.dll"));
            machine_.setNumber(key, L"ActivationType", 0);
            machine_.setNumber(key, L"Threading", 0);
        }
    }

    Lines probe(std::vector<std::wstring> arguments) {
        arguments.insert(arguments.begin(), L"hklm=" + machine_.path());
        Lines lines = runHelper(helperPath(L"platform_probe.exe"), arguments);
        EXPECT_FALSE(lines.empty());
        if (!lines.empty()) {
            EXPECT_EQ(lines.front(), "hklm 0");
            lines.erase(lines.begin());
        }
        return lines;
    }

    MadeUpMachine machine_;
};

TEST_F(PlatformRuntime, Answers_ArriveAsUtf8) {
    registerClasses();
    EXPECT_THAT(
        probe({L"set=MADE_UP_AD=식별자-\xD83D\xDE00", L"set=MADE_UP_COUNTRY=KR", L"set=MADE_UP_LANGUAGES=ko-KR,en-US",
               L"call=getAdvertisingId", L"call=getIsLimitAdTracking", L"call=getCountry", L"call=getLanguage"}),
        ElementsAre("getAdvertisingId value 식별자-😀", "getIsLimitAdTracking value false", "getCountry value KR",
                    "getLanguage value tag of ko-KR", "done"));
}

TEST_F(PlatformRuntime, EmptyAdvertisingId_IsLimited) {
    registerClasses();
    EXPECT_THAT(probe({L"call=getAdvertisingId", L"call=getIsLimitAdTracking", L"set=MADE_UP_AD=x",
                       L"call=getIsLimitAdTracking"}),
                ElementsAre("getAdvertisingId value ", "getIsLimitAdTracking value true",
                            "getIsLimitAdTracking value false", "done"));
}

TEST_F(PlatformRuntime, LoneSurrogateInAnswer_IsReplaced) {
    registerClasses();
    EXPECT_THAT(probe({L"set=MADE_UP_AD=a\xD83D"
                       L"b",
                       L"call=getAdvertisingId"}),
                ElementsAre("getAdvertisingId value a\xEF\xBF\xBD"
                            "b",
                            "done"));
}

TEST_F(PlatformRuntime, CalledAgain_FactoryIsKept) {
    registerClasses();
    EXPECT_THAT(probe({L"set=MADE_UP_AD=1", L"call=getAdvertisingId", L"activations", L"set=MADE_UP_AD=2",
                       L"call=getAdvertisingId", L"call=getIsLimitAdTracking", L"activations"}),
                ElementsAre("getAdvertisingId value 1", "activations 1", "getAdvertisingId value 2",
                            "getIsLimitAdTracking value false", "activations 1", "done"));
}

TEST_F(PlatformRuntime, FourClasses_HaveAFactoryEach) {
    registerClasses();
    const Lines lines =
        probe({L"set=MADE_UP_LANGUAGES=de", L"set=MADE_UP_COUNTRY=DE", L"call=getLanguage", L"call=getLanguage",
               L"activations", L"call=getCountry", L"call=getCountry", L"call=getAdvertisingId", L"activations"});
    EXPECT_THAT(lines, testing::Contains("activations 2"));
    EXPECT_THAT(lines, testing::Contains("activations 4"));
}

TEST_F(PlatformRuntime, FactoryBoundToItsApartment_IsNotKept) {
    registerClasses();
    EXPECT_THAT(probe({L"set=MADE_UP_BOUND=1", L"set=MADE_UP_AD=1", L"call=getAdvertisingId", L"call=getAdvertisingId",
                       L"activations"}),
                ElementsAre("getAdvertisingId value 1", "getAdvertisingId value 1", "activations 2", "done"));
}

TEST_F(PlatformRuntime, KeptFactory_OutlivesTheCallersApartment) {
    registerClasses();
    EXPECT_THAT(probe({L"sta", L"set=MADE_UP_AD=1", L"call=getAdvertisingId", L"uninit", L"call=getAdvertisingId",
                       L"mta", L"call=getAdvertisingId", L"uninit", L"activations"}),
                ElementsAre("com 00000000", "getAdvertisingId value 1", "getAdvertisingId value 1", "com 00000000",
                            "getAdvertisingId value 1", "activations 1", "done"));
}

TEST_F(PlatformRuntime, ActivationFails_RaisesAndIsTriedAtEachCall) {
    registerClasses();
    const Lines lines = probe({L"set=MADE_UP_FACTORY_HR=80070005", L"set=MADE_UP_AD=now", L"call=getAdvertisingId",
                               L"call=getIsLimitAdTracking", L"activations", L"set=MADE_UP_FACTORY_HR=",
                               L"call=getAdvertisingId", L"activations"});
    EXPECT_THAT(lines, ElementsAre(StartsWith("getAdvertisingId raised hresult_access_denied 80070005"),
                                   StartsWith("getIsLimitAdTracking raised hresult_access_denied 80070005"),
                                   "activations 2", "getAdvertisingId value now", "activations 3", "done"));
}

TEST_F(PlatformRuntime, NoSuchClass_Raises) {
    machine_.addKey(LR"(Software\Microsoft\WindowsRuntime\ActivatableClassId)");
    for (const wchar_t* function : {L"getAdvertisingId", L"getIsLimitAdTracking", L"getLanguage"}) {
        const std::wstring call = std::wstring(L"call=") + function;
        const std::string expected = narrow(function) + " raised hresult_class_not_registered 80040154";
        EXPECT_THAT(probe({call, call}), ElementsAre(StartsWith(expected), StartsWith(expected), "done"));
    }
}

TEST_F(PlatformRuntime, RegistrationUnreadable_RaisesItsCode) {
    EXPECT_THAT(probe({L"call=getLanguage"}),
                ElementsAre(StartsWith("getLanguage raised hresult_error 80040150"), "done"));
}

// The system has a Windows.Globalization.dll, which serves the class without any registration.
TEST_F(PlatformRuntime, ClassNotRegistered_LibraryNamedAfterItServes) {
    EXPECT_THAT(probe({L"call=getCountry"}), ElementsAre("getCountry value " + usersRegion(), "done"));
}

TEST_F(PlatformRuntime, GetterFails_RaisesTheCodesClass) {
    registerClasses();
    const struct {
        const wchar_t* variable;
        const wchar_t* code;
        const wchar_t* function;
        const char* raised;
    } kRows[] = {
        {L"MADE_UP_AD_HR", L"80004001", L"getAdvertisingId", "hresult_not_implemented 80004001"},
        {L"MADE_UP_AD_HR", L"80070005", L"getIsLimitAdTracking", "hresult_access_denied 80070005"},
        {L"MADE_UP_AD_HR", L"8007000e", L"getAdvertisingId", "bad_alloc"},
        {L"MADE_UP_AD_HR", L"80004005", L"getAdvertisingId", "hresult_error 80004005"},
        {L"MADE_UP_AD_HR", L"8000ffff", L"getIsLimitAdTracking", "hresult_error 8000ffff"},
        {L"MADE_UP_COUNTRY_HR", L"80004001", L"getCountry", "hresult_not_implemented 80004001"},
        {L"MADE_UP_LANGUAGE_HR", L"80070057", L"getLanguage", "hresult_invalid_argument 80070057"},
    };
    for (const auto& row : kRows) {
        const Lines lines = probe({std::wstring(L"set=") + row.variable + L"=" + row.code, L"set=MADE_UP_LANGUAGES=xx",
                                   std::wstring(L"call=") + row.function});
        EXPECT_THAT(lines, ElementsAre(StartsWith(narrow(row.function) + " raised " + row.raised), "done"));
    }
}

TEST_F(PlatformRuntime, NoLanguage_RaisesOutOfBounds) {
    registerClasses();
    EXPECT_THAT(probe({L"call=getLanguage"}),
                ElementsAre(StartsWith("getLanguage raised hresult_out_of_bounds 8000000b"), "done"));
}

TEST_F(PlatformRuntime, GetterTellsWhy_MessageSaysIt) {
    registerClasses();
    EXPECT_THAT(probe({L"set=MADE_UP_AD_HR=80004005", L"set=MADE_UP_TOLD=the disk is on fire", L"call=getAdvertisingId",
                       L"set=MADE_UP_TOLD=", L"call=getAdvertisingId"}),
                ElementsAre("getAdvertisingId raised hresult_error 80004005 the disk is on fire",
                            testing::Not(HasSubstr("fire")), "done"));
}

TEST_F(PlatformRuntime, ThreadWasToldOfAnotherFailure_MessageIsTheSystems) {
    registerClasses();
    const Lines lines = probe({L"set=MADE_UP_AD_HR=80070005", L"set=MADE_UP_TOLD=old news",
                               L"set=MADE_UP_TOLD_HR=80004005", L"call=getAdvertisingId"});
    EXPECT_THAT(lines, ElementsAre(testing::AllOf(StartsWith("getAdvertisingId raised hresult_access_denied 80070005 "),
                                                  testing::Not(HasSubstr("old news"))),
                                   "done"));
}

TEST_F(PlatformRuntime, RaisedOnce_LockIsFreeForTheNextCall) {
    registerClasses();
    EXPECT_THAT(probe({L"set=MADE_UP_AD_HR=80004005", L"call=getAdvertisingId", L"call=getIsLimitAdTracking",
                       L"set=MADE_UP_AD_HR=", L"call=getIsLimitAdTracking"}),
                ElementsAre(StartsWith("getAdvertisingId raised"), StartsWith("getIsLimitAdTracking raised"),
                            "getIsLimitAdTracking value true", "done"));
}

}  // namespace
