#include "hook/handed_frames.h"

#include <atomic>
#include <mutex>

#include "patch.h"

namespace ZEMO::Test {
namespace {

using namespace UI;

// Places in the tables of IRenderHookRenderer and IRenderHookPopup.
constexpr size_t kOnPaint = 0;
constexpr size_t kSetRect = 3;

using OnPaint = void(IRenderHookRenderer*, Hook::PaintElementType, const Hook::RectList*, const void*, int, int);
using SetRect = void(IRenderHookPopup*, const Rect16*);

OnPaint* moduleOnPaint = nullptr;
SetRect* moduleSetRect = nullptr;
std::mutex mutex;
HandedFrames::Picture pictures[2];
Rect16 place;

enum class Hold { None, Wanted, Held, LetGo, Over };
std::atomic<Hold> hold{Hold::None};

bool change(Hold from, Hold to) {
    const bool changed = hold.compare_exchange_strong(from, to);
    if (changed) hold.notify_all();
    return changed;
}

void onPaint(IRenderHookRenderer* renderer, Hook::PaintElementType type, const Hook::RectList* rects,
             const void* buffer, int width, int height) {
    {
        const std::lock_guard lock(mutex);
        const auto* pixels = static_cast<const uint32_t*>(buffer);
        pictures[type] = {{pixels, pixels + static_cast<size_t>(width) * height}, width, height};
    }
    if (type == Hook::PET_VIEW && change(Hold::Wanted, Hold::Held)) hold.wait(Hold::Held);
    moduleOnPaint(renderer, type, rects, buffer, width, height);
    change(Hold::LetGo, Hold::Over);
}

void setRect(IRenderHookPopup* popup, const Rect16* ltrb) {
    {
        const std::lock_guard lock(mutex);
        place = *ltrb;
    }
    moduleSetRect(popup, ltrb);
}

HandedFrames::Picture pictureOf(Hook::PaintElementType type) {
    const std::lock_guard lock(mutex);
    return pictures[type];
}

}  // namespace

void HandedFrames::watch(HMODULE hookModule) {
    const auto get = reinterpret_cast<GetRenderHookRendererFunction*>(
        reinterpret_cast<void*>(GetProcAddress(hookModule, kGetOpenGLRenderHookRenderer)));
    IRenderHookRenderer* const renderer = get();  // one for every API
    moduleOnPaint =
        reinterpret_cast<OnPaint*>(GraphicsHook::patchTable(renderer, kOnPaint, reinterpret_cast<void*>(&onPaint)));
    moduleSetRect = reinterpret_cast<SetRect*>(
        GraphicsHook::patchTable(renderer->getPopupRenderer(), kSetRect, reinterpret_cast<void*>(&setRect)));
}

HandedFrames::Picture HandedFrames::view() { return pictureOf(Hook::PET_VIEW); }
HandedFrames::Picture HandedFrames::popup() { return pictureOf(Hook::PET_POPUP); }

Rect16 HandedFrames::popupPlace() {
    const std::lock_guard lock(mutex);
    return place;
}

HeldFrame::HeldFrame() { hold = Hold::Wanted; }
HeldFrame::~HeldFrame() {
    letGo();
    change(Hold::Wanted, Hold::None);
}
bool HeldFrame::isHeld() const { return hold == Hold::Held; }
void HeldFrame::letGo() { change(Hold::Held, Hold::LetGo); }
bool HeldFrame::isOver() const { return hold == Hold::Over; }

}  // namespace ZEMO::Test
