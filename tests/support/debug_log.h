#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ZEMO::Test {

/// One OutputDebugString call of this process. `text` is UTF-8: the wide form is converted, the narrow form is kept
/// byte by byte.
struct DebugLogLine {
    std::string text;
    bool wide = false;
    DWORD threadId = 0;
};

/// Collects what this process hands to OutputDebugStringA and OutputDebugStringW, whichever module and thread calls,
/// from construction to destruction. Both raise an exception for a debugger first; a vectored handler reads the text
/// from it and lets it pass, so that other readers still see the line. Several captures may live at a time. The line is
/// stored before the logging call returns: after a call that logs on the same thread no wait is needed.
class DebugLogCapture {
public:
    DebugLogCapture();
    ~DebugLogCapture();
    DebugLogCapture(const DebugLogCapture&) = delete;
    DebugLogCapture& operator=(const DebugLogCapture&) = delete;

    /// All calls so far, in the order in which they came.
    std::vector<DebugLogLine> lines() const;

    /// The texts of lines().
    std::vector<std::string> texts() const;

    /// Calls whose text holds `part` (not: calls whose text is `part`).
    size_t count(std::string_view part) const;
    bool contains(std::string_view part) const { return count(part) != 0; }

    /// Waits until at least `times` calls hold `part`. False after the time-out.
    bool waitFor(std::string_view part, std::chrono::milliseconds timeout = std::chrono::seconds(10),
                 size_t times = 1) const;

    /// Forgets what came so far.
    void clear();

    /// All lines, one a row, for a failure message: EXPECT_TRUE(log.waitFor("x")) << log.dump();
    std::string dump() const;

private:
    static LONG CALLBACK onException(EXCEPTION_POINTERS* info);
    void add(DebugLogLine line, const char* narrowOfWide);
    size_t countLocked(std::string_view part) const;

    struct Entry {
        DebugLogLine line;
        std::string narrowOfWide;  // what a following narrow repetition of the same call would say
        bool repeated = false;
    };

    mutable std::mutex mutex_;
    mutable std::condition_variable added_;
    std::vector<Entry> entries_;
};

}  // namespace ZEMO::Test
