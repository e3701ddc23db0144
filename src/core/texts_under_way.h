#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace ZEMO::Core {

/// The texts that ride in posted messages, from the post to the receiver, each known by the address that its message
/// carries. Whoever takes such a message asks here: an address that was never put in belongs to somebody else, and one
/// that comes twice gives its text once. Any thread; nothing is called out under the lock but `isGone`.
///
/// A text whose message is never taken would stay for ever. When a receiver is gone its messages are, so its texts go
/// at the next look, which comes whenever the number of texts has doubled: at most kFewTexts, or as many as are truly
/// under way, are left over. What a living receiver throws away unseen is bounded by `most`; beyond it the older half
/// goes.
class TextsUnderWay {
public:
    /// Whether a receiver is gone, by the name that it was put in with. Called under the lock; must not come back here.
    using IsGone = bool (*)(const void* receiver);

    static constexpr size_t kFewTexts = 64;
    /// More than any system's message queue holds.
    static constexpr size_t kMostTexts = 65536;

    explicit TextsUnderWay(IsGone goneCheck, size_t atMost = kMostTexts)
        : isGone(goneCheck), most(atMost), nextLook(atMost < kFewTexts ? atMost : kFewTexts) {}
    TextsUnderWay(const TextsUnderWay&) = delete;
    TextsUnderWay& operator=(const TextsUnderWay&) = delete;

    /// Keeps `text` for `receiver`; the answer is the address that its message carries. Never null.
    const void* put(const void* receiver, std::string text);

    /// Hands the text out and forgets it. Nothing for an address that is not under way.
    std::optional<std::string> take(const void* address);

    size_t size() const;

private:
    struct Text {
        std::unique_ptr<std::string> text;
        const void* receiver;
        uint64_t number;  // in the order of the posts
    };

    void forgetLost();

    const IsGone isGone;
    const size_t most;
    mutable std::mutex mutex;
    std::unordered_map<const void*, Text> texts;  // all below under the mutex
    size_t nextLook;
    uint64_t posts = 0;
};

}  // namespace ZEMO::Core
