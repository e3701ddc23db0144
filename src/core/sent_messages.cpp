#include "core/sent_messages.h"

namespace ZEMO::Core {

bool waitServingSentMessages(HANDLE event, DWORD milliseconds) {
    const ULONGLONG start = GetTickCount64();
    DWORD left = milliseconds;
    while (MsgWaitForMultipleObjectsEx(1, &event, left, QS_SENDMESSAGE, 0) == WAIT_OBJECT_0 + 1) {
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
        if (milliseconds == INFINITE) continue;
        const ULONGLONG passed = GetTickCount64() - start;
        left = passed < milliseconds ? milliseconds - static_cast<DWORD>(passed) : 0;
    }
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

}  // namespace ZEMO::Core
