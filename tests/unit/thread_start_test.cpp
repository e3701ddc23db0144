// No thread can be had: the system's answer can't be provoked, so this program's import of the call that makes one is
// replaced. On a thread of the C++ runtime here it is _beginthreadex.
#include <gtest/gtest.h>
#include <process.h>

#include <cerrno>
#include <system_error>

#include "browser/browser_launch.h"
#include "browser/loopback_http_manager.h"
#include "helpers/loopback_peer.h"
#include "support/import_replaced.h"
#include "zemo/ui.h"

#ifdef __MINGW32__
namespace ZEMO::UI {
namespace {

using Peer = LoopbackHttpManagerPeer;
using Test::ImportReplaced;

int refusals = 0;
uintptr_t __cdecl noThread(void*, unsigned, _beginthreadex_proc_type, void*, unsigned, unsigned*) {
    return ++refusals, errno = EAGAIN, 0;
}

class ThreadStart : public testing::Test {
protected:
    ThreadStart() { refusals = 0; }
};

TEST_F(ThreadStart, Refused_BothBrowserExportsThrowAndTheGameIsNotAsked) {
    bool asked = false;
    setUIOpenExternalBrowserCallback([&asked](const std::string&) { return asked = true; });
    {
        const ImportReplaced failing("_beginthreadex", &noThread);
        EXPECT_THROW(openBrowser(Core::URL("https://x/")), std::system_error);
        EXPECT_THROW(openIncognitoBrowser(Core::URL("https://x/")), std::system_error);
        EXPECT_EQ(refusals, 2);
    }
    setUIOpenExternalBrowserCallback({});
    EXPECT_FALSE(asked);
}

TEST_F(ThreadStart, RefusedToTheResponder_NeverReadyAndEndsCleanly) {
    const ImportReplaced failing("_beginthreadex", &noThread);
    LoopbackHttpManager manager;
    EXPECT_EQ(refusals, 1);
    EXPECT_EQ(Peer::registerUrl(manager, "https://x").size(), 16u) << "an address may still come in";
    EXPECT_EQ(Peer::portText(manager), "");
}

}  // namespace
}  // namespace ZEMO::UI
#endif
