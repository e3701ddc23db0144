#include "core/texts_under_way.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace ZEMO::Core {

const void* TextsUnderWay::put(const void* receiver, std::string text) {
    auto owned = std::make_unique<std::string>(std::move(text));
    const void* const address = owned.get();
    const std::lock_guard lock(mutex);
    if (texts.size() >= nextLook) forgetLost();
    texts.emplace(address, Text{std::move(owned), receiver, posts++});
    return address;
}

std::optional<std::string> TextsUnderWay::take(const void* address) {
    std::unique_ptr<std::string> taken;
    {
        const std::lock_guard lock(mutex);
        const auto found = texts.find(address);
        if (found == texts.end()) return {};
        taken = std::move(found->second.text);
        texts.erase(found);
    }
    return std::move(*taken);
}

size_t TextsUnderWay::size() const {
    const std::lock_guard lock(mutex);
    return texts.size();
}

void TextsUnderWay::forgetLost() {
    std::erase_if(texts, [this](const auto& entry) { return isGone(entry.second.receiver); });
    if (texts.size() >= most) {
        // The older half: below the middle of the numbers.
        std::vector<uint64_t> numbers;
        for (const auto& [address, text] : texts) numbers.push_back(text.number);
        const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
        std::nth_element(numbers.begin(), middle, numbers.end());
        std::erase_if(texts, [oldest = *middle](const auto& entry) { return entry.second.number < oldest; });
    }
    nextLook = std::min(std::max(kFewTexts, texts.size() * 2), most);
}

}  // namespace ZEMO::Core
