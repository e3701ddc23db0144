#include "client/engine_task.h"

#include <atomic>
#include <memory>

#include "include/cef_task.h"

namespace ZEMO::Test {
namespace {

class FunctionTask : public CefTask {
public:
    explicit FunctionTask(std::function<void()> work) : function(std::move(work)) {}
    void Execute() override { function(); }

private:
    std::function<void()> function;
    IMPLEMENT_REFCOUNTING(FunctionTask);
};

}  // namespace

bool runOnEngine(GameHost& game, std::function<void()> work) {
    // Shared: a task that comes after the wait was given up must not write into a frame that is gone.
    const auto done = std::make_shared<std::atomic<bool>>(false);
    CefPostTask(TID_UI, new FunctionTask([done, work = std::move(work)] {
                    work();
                    *done = true;
                }));
    return game.waitFor("the engine thread", [&] { return done->load(); });
}

}  // namespace ZEMO::Test
