#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/wine/import_table.h"
#include "hook/hooked_game.h"
#include "patch.h"

// The reference module in a Direct3D 12 game.
namespace ZEMO::Test {
namespace {

using GraphicsHook::Com;

/// A queue that copies, as a game has for loading, with a list that has nothing to do.
class CopyQueue {
public:
    explicit CopyQueue(ID3D12Device* device) {
        constexpr auto kCopy = D3D12_COMMAND_LIST_TYPE_COPY;
        const D3D12_COMMAND_QUEUE_DESC wanted{kCopy, 0, D3D12_COMMAND_QUEUE_FLAG_NONE, 0};
        device->CreateCommandQueue(&wanted, __uuidof(ID3D12CommandQueue), queue.putVoid());
        device->CreateCommandAllocator(kCopy, __uuidof(ID3D12CommandAllocator), allocator.putVoid());
        device->CreateCommandList(0, kCopy, allocator.get(), nullptr, __uuidof(ID3D12GraphicsCommandList),
                                  list.putVoid());
        list->Close();
    }
    ID3D12CommandList* getList() const { return list.get(); }
    void execute() {
        ID3D12CommandList* const lists[] = {list.get()};
        queue->ExecuteCommandLists(1, lists);
    }

private:
    Com<ID3D12CommandQueue> queue;
    Com<ID3D12CommandAllocator> allocator;
    Com<ID3D12GraphicsCommandList> list;
};

// What other lists than the game's do with the state of what the game presents.
using BarrierFunction = void STDMETHODCALLTYPE(ID3D12GraphicsCommandList*, UINT, const D3D12_RESOURCE_BARRIER*);
constexpr size_t kResourceBarrier = 26;  // in the table of ID3D12GraphicsCommandList
BarrierFunction* systemBarrier = nullptr;
ID3D12GraphicsCommandList* gamesList = nullptr;
std::vector<D3D12_RESOURCE_TRANSITION_BARRIER> changes;

void STDMETHODCALLTYPE recordBarrier(ID3D12GraphicsCommandList* list, UINT count,
                                     const D3D12_RESOURCE_BARRIER* barriers) {
    if (list != gamesList && barriers->Transition.pResource->GetDesc().Flags) changes.push_back(barriers->Transition);
    systemBarrier(list, count, barriers);
}

// Which queues execute other lists than the game's.
using ExecuteFunction = void STDMETHODCALLTYPE(ID3D12CommandQueue*, UINT, ID3D12CommandList* const*);
constexpr size_t kExecuteCommandLists = 10;  // in the table of ID3D12CommandQueue
ExecuteFunction* systemExecute = nullptr;
std::vector<ID3D12CommandList*> gamesLists;
std::vector<ID3D12CommandQueue*> queuesOfThePage;

void STDMETHODCALLTYPE recordExecute(ID3D12CommandQueue* queue, UINT count, ID3D12CommandList* const* lists) {
    if (std::ranges::find(gamesLists, lists[0]) == gamesLists.end()) queuesOfThePage.push_back(queue);
    systemExecute(queue, count, lists);
}

HMODULE WINAPI noCompiler(const wchar_t* name) {
    return std::wstring_view(name) == L"d3dcompiler_47.dll" ? nullptr : LoadLibraryW(name);
}

std::string logged;
void WINAPI keepLine(const char* line) { logged += line; }

}  // namespace

class D3D12Hook : public HookedGame<D3D12Game> {
protected:
    void watchExecutes(std::vector<ID3D12CommandList*> ofTheGame) {
        gamesLists = std::move(ofTheGame);
        systemExecute = reinterpret_cast<ExecuteFunction*>(
            GraphicsHook::patchTable(scene->getQueue(), kExecuteCommandLists, reinterpret_cast<void*>(&recordExecute)));
    }
    void replace(const char* name, auto* function) {
        ASSERT_TRUE(Core::Wine::replaceImport(Core::Wine::findImport(module, name), reinterpret_cast<void*>(function)));
    }
};

TEST_F(D3D12Hook, GameThatHasLoadedDirect3D11Too_IsTakenForWhatItIs) {
    const auto ask = reinterpret_cast<UI::GetRenderModeFunction*>(
        reinterpret_cast<void*>(GetProcAddress(module, UI::kGetRenderModeHandler)));
    ASSERT_TRUE(GetModuleHandleW(L"d3d11.dll"));
    EXPECT_TRUE(playUntil("an answer", [&] { return ask() != UI::RenderingMode::Unknown; }));
    EXPECT_EQ(ask(), UI::RenderingMode::D3D12);
}

TEST_F(D3D12Hook, FrameSmallerThanTheWindow_PageIsStretchedWithIt) {
    ASSERT_EQ(scene->resize(160, 100), S_OK);
    auto view = show(quarteredPage());
    ASSERT_TRUE(playUntil("the page", [&] { return frame.at(5, 5) == 0x112233 && frame.at(5, 95) == 0x00C040; }));
    EXPECT_EQ(frame.at(100, 20), 0xFF0080u);
    EXPECT_LE(distance(frame.at(150, 95), 0x785A55), 2);
}

TEST_F(D3D12Hook, FrameGetsAnotherFormat_PageKeepsItsColours) {
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    ASSERT_EQ(scene->resize(320, 200, DXGI_FORMAT_R8G8B8A8_UNORM), S_OK);
    for (int i = 0; i < 3; ++i) scene->present();
    EXPECT_TRUE(cornerIs(0x112233)) << std::hex << frame.at(5, 5);
}

TEST_F(D3D12Hook, CopyQueueExecutesLast_PageIsDrawnByTheOneThatDraws) {
    CopyQueue loading(scene->getDevice());
    watchExecutes({scene->getList(), loading.getList()});
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(game.waitFor("the page", [&] {
        scene->draw();
        loading.execute();
        scene->swap();
        return cornerIs(0x112233);
    }));
    ASSERT_FALSE(queuesOfThePage.empty());
    for (ID3D12CommandQueue* const queue : queuesOfThePage) EXPECT_EQ(queue, scene->getQueue());
}

TEST_F(D3D12Hook, PageDrawn_BackBufferIsLeftReadyToPresent) {
    auto view = show(solidPage("#112233"), true);
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    gamesList = scene->getList();
    systemBarrier = reinterpret_cast<BarrierFunction*>(
        GraphicsHook::patchTable(gamesList, kResourceBarrier, reinterpret_cast<void*>(&recordBarrier)));
    changes.clear();
    scene->present();
    ASSERT_EQ(changes.size(), 2u);
    EXPECT_EQ(changes[0].StateBefore, D3D12_RESOURCE_STATE_PRESENT);
    EXPECT_EQ(changes[0].StateAfter, D3D12_RESOURCE_STATE_RENDER_TARGET);
    EXPECT_EQ(changes[1].pResource, changes[0].pResource);
    EXPECT_EQ(changes[1].StateBefore, D3D12_RESOURCE_STATE_RENDER_TARGET);
    EXPECT_EQ(changes[1].StateAfter, D3D12_RESOURCE_STATE_PRESENT);
}

TEST_F(D3D12Hook, GraphicsProcessorStalls_ThreeFramesInFlightAreEnoughAndTheGameGoesOn) {
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("the page", [&] { return cornerIs(0x112233); }));
    Com<ID3D12Fence> goOn;
    ASSERT_EQ(scene->getDevice()->CreateFence(0, D3D12_FENCE_FLAG_NONE, __uuidof(ID3D12Fence), goOn.putVoid()), S_OK);
    watchExecutes({scene->getList()});
    D3D12Game::setReading(false);
    ASSERT_EQ(scene->getQueue()->Wait(goOn.get(), 1), S_OK);
    for (int i = 0; i < 5; ++i) ASSERT_EQ(scene->swap(), S_OK);
    EXPECT_EQ(queuesOfThePage.size(), 3u);
    ASSERT_EQ(goOn->Signal(1), S_OK);
    D3D12Game::setReading(true);
    for (int i = 0; i < 3; ++i) scene->present();
    EXPECT_TRUE(cornerIs(0x112233));
}

TEST_F(D3D12Hook, NoShaderCompiler_GameGoesOnWithoutThePageAndTheLogSaysSo) {
    replace("LoadLibraryW", &noCompiler);
    replace("OutputDebugStringA", &keepLine);
    auto view = show(solidPage("#112233"));
    ASSERT_TRUE(playUntil("a line", [&] { return logged.find("there is no d3dcompiler_47.dll") != logged.npos; }));
    const size_t before = frame.count;
    for (int i = 0; i < 20; ++i) {
        scene->present();
        ASSERT_TRUE(cornerIs(kScene));
    }
    EXPECT_EQ(frame.count, before + 20);
    EXPECT_EQ(scene->end(), 0u) << "something holds the device";
}

}  // namespace ZEMO::Test
