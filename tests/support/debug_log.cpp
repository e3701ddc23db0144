#include "support/debug_log.h"

#include <algorithm>

namespace ZEMO::Test {
namespace {

constexpr DWORD kNarrowPrint = 0x40010006;  // DBG_PRINTEXCEPTION_C: length with NUL, text
constexpr DWORD kWidePrint =
    0x4001000A;  // DBG_PRINTEXCEPTION_WIDE_C: length with NUL, text, the same two in narrow form

// Guards the list and the handler. Taken before any capture's own lock, never the other way round.
std::mutex& registryMutex() {
    static std::mutex mutex;
    return mutex;
}
std::vector<DebugLogCapture*> captures;
void* handler = nullptr;

std::string toUtf8(const wchar_t* text, size_t length) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(std::max(size, 0)), '\0');
    if (size > 0)
        WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), result.data(), size, nullptr, nullptr);
    return result;
}

// The lengths in the exception are not trusted to be exact: the text ends at its NUL at the latest.
template <class Char>
size_t boundedLength(const Char* text, ULONG_PTR limit) {
    size_t length = 0;
    while (length < limit && text[length] != 0) ++length;
    return length;
}

}  // namespace

DebugLogCapture::DebugLogCapture() {
    std::lock_guard lock(registryMutex());
    captures.push_back(this);
    if (!handler) handler = AddVectoredExceptionHandler(1, &DebugLogCapture::onException);
}

DebugLogCapture::~DebugLogCapture() {
    void* unused = nullptr;
    {
        std::lock_guard lock(registryMutex());
        std::erase(captures, this);
        if (captures.empty()) std::swap(unused, handler);
    }
    // Outside the lock: the system waits here for handlers that are running, and they take the lock.
    if (unused) RemoveVectoredExceptionHandler(unused);
}

LONG CALLBACK DebugLogCapture::onException(EXCEPTION_POINTERS* info) {
    const EXCEPTION_RECORD& record = *info->ExceptionRecord;
    const bool wide = record.ExceptionCode == kWidePrint;
    if (!wide && record.ExceptionCode != kNarrowPrint) return EXCEPTION_CONTINUE_SEARCH;
    if (record.NumberParameters < 2 || !record.ExceptionInformation[1]) return EXCEPTION_CONTINUE_SEARCH;

    const DWORD lastError = GetLastError();
    DebugLogLine line{.text = {}, .wide = wide, .threadId = GetCurrentThreadId()};
    const char* narrowOfWide = "";
    if (wide) {
        const auto* text = reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
        line.text = toUtf8(text, boundedLength(text, record.ExceptionInformation[0]));
        if (record.NumberParameters >= 4 && record.ExceptionInformation[3])
            narrowOfWide = reinterpret_cast<const char*>(record.ExceptionInformation[3]);
    } else {
        const auto* text = reinterpret_cast<const char*>(record.ExceptionInformation[1]);
        line.text.assign(text, boundedLength(text, record.ExceptionInformation[0]));
    }
    {
        std::lock_guard lock(registryMutex());
        for (DebugLogCapture* capture : captures) capture->add(line, narrowOfWide);
    }
    SetLastError(lastError);
    return EXCEPTION_CONTINUE_SEARCH;
}

void DebugLogCapture::add(DebugLogLine line, const char* narrowOfWide) {
    {
        std::lock_guard lock(mutex_);
        // The wide call may hand its text on to the narrow one: that is still one line.
        if (!line.wide) {
            const auto last = std::find_if(entries_.rbegin(), entries_.rend(),
                                           [&](const Entry& entry) { return entry.line.threadId == line.threadId; });
            if (last != entries_.rend() && last->line.wide && !last->repeated && last->narrowOfWide == line.text) {
                last->repeated = true;
                return;
            }
        }
        entries_.push_back({std::move(line), narrowOfWide, false});
    }
    added_.notify_all();
}

std::vector<DebugLogLine> DebugLogCapture::lines() const {
    std::lock_guard lock(mutex_);
    std::vector<DebugLogLine> result;
    for (const Entry& entry : entries_) result.push_back(entry.line);
    return result;
}

std::vector<std::string> DebugLogCapture::texts() const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> result;
    for (const Entry& entry : entries_) result.push_back(entry.line.text);
    return result;
}

size_t DebugLogCapture::countLocked(std::string_view part) const {
    return static_cast<size_t>(std::count_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return entry.line.text.find(part) != std::string::npos;
    }));
}

size_t DebugLogCapture::count(std::string_view part) const {
    std::lock_guard lock(mutex_);
    return countLocked(part);
}

bool DebugLogCapture::waitFor(std::string_view part, std::chrono::milliseconds timeout, size_t times) const {
    std::unique_lock lock(mutex_);
    return added_.wait_for(lock, timeout, [&] { return countLocked(part) >= times; });
}

void DebugLogCapture::clear() {
    std::lock_guard lock(mutex_);
    entries_.clear();
}

std::string DebugLogCapture::dump() const {
    std::string result;
    for (const DebugLogLine& line : lines())
        result += "thread " + std::to_string(line.threadId) + (line.wide ? " W \"" : " A \"") + line.text + "\"\n";
    return result.empty() ? "(no debug line)\n" : result;
}

}  // namespace ZEMO::Test
