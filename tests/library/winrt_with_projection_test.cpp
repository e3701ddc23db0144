// A game whose include path holds the C++ projection, and that includes it: what the library raises is of another class
// and must still be caught whole. The folder of the made-up projection is on the include path of this file alone.
#include <winrt/base.h>
// The library's header behind it.
#include "zemo/winrt_error.h"
// Others.
#include <gtest/gtest.h>

#include <type_traits>

#include "library/winrt_error_layout.h"
#include "support/made_up_machine.h"
#include "zemo/platform.h"

namespace {

namespace Ours = ZEMO::Platform::WinRt;
using ZEMO::Platform::Misc::getLanguage;

// No class is registered in the made-up machine, so that the activation fails.
class WinrtWithProjection : public testing::Test {
protected:
    WinrtWithProjection() {
        machine.addKey(LR"(Software\Microsoft\WindowsRuntime\ActivatableClassId)");
        machine.stand();
    }
    ZEMO::Test::MadeUpMachine machine;
};

static_assert(!std::is_same_v<Ours::hresult_error, winrt::hresult_error>);

TEST(WinrtLayout, ProjectionOnTheIncludePath_ChangesNothing) {
    EXPECT_EQ(ZEMO::Test::layoutWithoutProjection(), ZEMO::Test::layoutOf<Ours::hresult_error>());
    EXPECT_NE(sizeof(winrt::hresult_error), sizeof(Ours::hresult_error)) << "the made-up one must differ to show it";
}

TEST_F(WinrtWithProjection, LibrarysError_CaughtWholeByItsOwnName) {
    try {
        getLanguage();
        FAIL() << "nothing was raised";
    } catch (const winrt::hresult_error&) {
        FAIL() << "taken for the projection's, whose layout is another";
    } catch (const Ours::hresult_class_not_registered& error) {
        EXPECT_EQ(static_cast<uint32_t>(error.code().value), 0x80040154u);
        EXPECT_EQ(error.message(), Ours::hresult_class_not_registered().message());
    }
}

TEST_F(WinrtWithProjection, CalledThroughTheProjection_ItsOwnClassIsRaised) {
    EXPECT_THROW(Ours::raisedByProjection(&getLanguage), winrt::hresult_class_not_registered);
    EXPECT_THROW(Ours::raisedByProjection([] { getLanguage(); }), winrt::hresult_error);
    EXPECT_EQ(Ours::raisedByProjection([] { return 7; }), 7);
}

}  // namespace
