#include <gtest/gtest.h>
#include <windows.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "library/winrt_error_layout.h"
#include "support/made_up_machine.h"
#include "zemo/platform.h"
#include "zemo/winrt_error.h"

#if __has_include(<winrt/base.h>)
#error "this file is a game's that has no projection"
#endif

std::vector<size_t> ZEMO::Test::layoutWithoutProjection() { return layoutOf<winrt::hresult_error>(); }

// What is thrown inside the library must be caught by its type in the game.
namespace {

using namespace ZEMO::Platform::Misc;

TEST(PlatformAcrossBoundary, NameIsNoUtf8_RangeErrorIsCaughtHere) {
    for (int i = 0; i < 3; ++i) {
        try {
            getProcessorID("\xFF");
            FAIL() << "nothing was raised";
        } catch (const std::range_error& error) {
            EXPECT_STRNE(error.what(), "");
        }
    }
    EXPECT_THROW(getProcessorID("\xE2\x82"), std::runtime_error);  // by its base
}

// No class is registered in the made-up machine, so that the activation fails.
TEST(PlatformAcrossBoundary, NoRuntimeClass_ItsErrorIsCaughtHere) {
    ZEMO::Test::MadeUpMachine machine;
    machine.addKey(LR"(Software\Microsoft\WindowsRuntime\ActivatableClassId)");
    machine.stand();
    EXPECT_THROW(getAdvertisingId(), winrt::hresult_class_not_registered);
    EXPECT_THROW(getIsLimitAdTracking(), winrt::hresult_class_not_registered);
    try {
        getLanguage();
        FAIL() << "nothing was raised";
    } catch (const winrt::hresult_error& error) {
        EXPECT_EQ(static_cast<uint32_t>(error.code()), 0x80040154u);
        EXPECT_EQ(error.message(), winrt::hresult_class_not_registered().message());
    }
}

TEST(PlatformAcrossBoundary, RegistryTextIsBroken_RangeErrorIsCaughtHere) {
    ZEMO::Test::MadeUpMachine machine;
    machine.setText(LR"(HARDWARE\DESCRIPTION\System\CentralProcessor\0)", L"ProcessorNameString", L"x\xD83Dy");
    machine.stand();
    EXPECT_THROW(getCPUModel(), std::range_error);
}

TEST(PlatformAcrossBoundary, TextAndLists_BelongToTheCaller) {
    std::string platform = getPlatform();
    platform.append(1000, 'x');
    EXPECT_EQ(platform.size(), 1001u);
    EXPECT_EQ(getPlatform(), "W");
    const auto gpus = getGPUModelList();
    ASSERT_FALSE(gpus.empty());
    auto changed = getGPUModelList();
    changed.front().append(1000, 'x');
    changed.emplace_back("one more");
    EXPECT_EQ(getGPUModelList(), gpus) << "the library keeps its own list";
    EXPECT_FALSE(getCpuType().empty());
    EXPECT_FALSE(getOsVersion().empty());
    EXPECT_FALSE(GetDynamicPort().empty());
}

TEST(PlatformAcrossBoundary, ProcessIdIsNoNumber_NothingIsRaised) { EXPECT_NO_THROW(ipcSend("abc", "text")); }

TEST(PlatformAcrossBoundary, ClassAssigned_GivesItself) {
    ZEMO::Core::Platform a, b;
    EXPECT_EQ(&(a = b), &a);
    EXPECT_EQ(&(a = std::move(b)), &a);
}

}  // namespace
