#include <gtest/gtest.h>
#include <windows.h>

#include <tlhelp32.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/unique_handle.h"
#include "engine/child_processes.h"
#include "engine/game_host.h"
#include "support/http_server.h"

namespace ZEMO::Test {
namespace {

std::vector<std::wstring> threadNames() {
    std::vector<std::wstring> names;
    const Core::UniqueKernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{.dwSize = sizeof entry};
    for (BOOL more = Thread32First(snapshot.get(), &entry); more; more = Thread32Next(snapshot.get(), &entry)) {
        if (entry.th32OwnerProcessID != GetCurrentProcessId()) continue;
        const Core::UniqueKernelHandle thread(OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, entry.th32ThreadID));
        wchar_t* name = nullptr;
        if (!thread || FAILED(GetThreadDescription(thread.get(), &name))) continue;
        names.emplace_back(name);
        LocalFree(name);
    }
    return names;
}

}  // namespace

/// A page of one colour, shown.
class FirstPixels : public testing::Test {
protected:
    void SetUp() override {
        server.serveHtml("/", solidPage("rgb(17, 34, 51)"));
        view = game.makeView(server.url("/"), events);
        view->show();
        ASSERT_TRUE(game.waitFor("the page's colour", [&] { return game.frames.pixel(160, 100) == 0xFF112233u; }));
    }

    HttpServer server;
    GameHost game;
    NavigationRecorder events;
    std::shared_ptr<UI::IZEMOWebView> view;
};

TEST_F(FirstPixels, PageOfOneColour_ArrivesInTheCallbackPixelForPixel) {
    EXPECT_TRUE(game.waitFor("completion", [&] { return events.has("completed"); }));
    EXPECT_TRUE(game.frames.replayMatches());
    EXPECT_EQ(game.frames.lastFrame().width, 320);
    EXPECT_EQ(game.frames.lastFrame().height, 200);
}

// Wine may leave a thread suspended for ever that the engine's stack profiler looks at.
TEST_F(FirstPixels, UnderWine_NoProcessOfTheEngineIsProfiled) {
    std::vector<std::string> types;
    for (const DWORD child : childProcesses()) {
        types.push_back(childType(child));
        EXPECT_EQ(childCommandLine(child).find(L"-stack-profiler"), std::wstring::npos) << types.back();
    }
    EXPECT_TRUE(std::ranges::count(types, "gpu-process") > 0) << childrenText();
    EXPECT_TRUE(std::ranges::count(types, "renderer") > 0) << childrenText();
    const std::vector<std::wstring> names = threadNames();
    EXPECT_TRUE(std::ranges::count(names, L"Chrome_IOThread") > 0) << "the engine's threads have names";
    EXPECT_EQ(std::ranges::count(names, L"StackSamplingProfiler"), 0);
}

}  // namespace ZEMO::Test
