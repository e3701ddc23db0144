#include <gtest/gtest.h>

#include "engine/client/cef_adapter.h"
#include "engine/engine_thread.h"

// The asserts of the engine's callbacks, which this program has and a release has not.
namespace ZEMO::Test {

using namespace ZEMO::UI;

TEST(ThreadAsserts, CallbackOnAnotherThanTheEngines_EndsTheProgram) {
    EXPECT_DEATH(
        {
            engineThreadId = GetCurrentThreadId() + 1;
            CefRefPtr<CefAdapter> client =
                new CefAdapter({}, nullptr, WindowStyle::Layer, false, nullptr, 0, OsrFramePresentCallback());
            client->OnPopupShow(nullptr, true);
        },
        "isOnEngineThread");
}

}  // namespace ZEMO::Test
