#include "core/sent_messages.h"

namespace ZEMO::Core {

bool waitServingSentMessages(HANDLE event, DWORD milliseconds) {
    const ULONGLONG start = GetTickCount64();
    for (DWORD left = milliseconds;;) {
        const DWORD woken = MsgWaitForMultipleObjectsEx(1, &event, left, QS_SENDMESSAGE, 0);
        if (woken != WAIT_OBJECT_0 + 1) return woken == WAIT_OBJECT_0;
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
        if (milliseconds == INFINITE) continue;
        // Messages without end don't put the end of the time off.
        if (left == 0) return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
        const ULONGLONG passed = GetTickCount64() - start;
        left = passed < milliseconds ? milliseconds - static_cast<DWORD>(passed) : 0;
    }
}

}  // namespace ZEMO::Core
