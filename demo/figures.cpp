#include "figures.h"

#include <algorithm>
#include <cstdio>

namespace demo {

namespace {

constexpr std::size_t kMaxSamples = 65536;

double ratio(double part, double whole) { return whole > 0 ? part / whole : 0; }

template <class... Args>
std::string format(const char* pattern, Args... args) {
    char line[256];
    std::snprintf(line, sizeof line, pattern, args...);
    return line;
}

std::string row(const char* name, const Samples& samples) {
    return format("  %-38s %9.3f %9.3f %9zu\n", name, samples.percentile(0.5), samples.percentile(0.99),
                  samples.count());
}

std::string member(const char* name, const Samples& samples, const char* end) {
    return format("  \"%s\": {\"median\": %.4f, \"p99\": %.4f, \"samples\": %zu}%s\n", name, samples.percentile(0.5),
                  samples.percentile(0.99), samples.count(), end);
}

}  // namespace

void Samples::add(double value) {
    if (values.size() < kMaxSamples) {
        values.push_back(value);
        return;
    }
    values[oldest] = value;
    oldest = (oldest + 1) % kMaxSamples;
}

double Samples::percentile(double share) const {
    if (values.empty()) return 0;
    auto sorted = values;
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): a rank, never negative
    const auto index = static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1) + 0.5);
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(index), sorted.end());
    return sorted[index];
}

std::string figuresAsText(const CallbackFigures& callback, const GameFigures& game) {
    std::string text;
    text += format("game frames   %8llu   %.1f a second\n", static_cast<unsigned long long>(game.frames),
                   ratio(static_cast<double>(game.frames), game.seconds));
    text += format("page frames   %8llu   %.1f a second, %llu of them unchanged\n",
                   static_cast<unsigned long long>(callback.frames),
                   ratio(static_cast<double>(callback.frames), game.seconds),
                   static_cast<unsigned long long>(callback.unchangedFrames));
    text += format("changed area  %8.1f %% of a page frame on average, %.1f Mpixel uploaded in %llu uploads\n",
                   100 * ratio(static_cast<double>(callback.changedPixels), static_cast<double>(callback.framePixels)),
                   static_cast<double>(game.uploadedPixels) / 1e6, static_cast<unsigned long long>(game.uploads));
    text += format("  %-38s %9s %9s %9s\n", "milliseconds", "median", "p99", "samples");
    text += row("present callback (engine thread)", callback.callbackMs);
    text += row("present callback to shown game frame", game.toFrameMs);
    text += row("texture upload", game.uploadMs);
    text += row("game frame, without waiting", game.frameMs);
    return text;
}

std::string figuresAsJson(const CallbackFigures& callback, const GameFigures& game) {
    std::string text = "{\n";
    text += format("  \"seconds\": %.3f,\n", game.seconds);
    text += format("  \"gameFrames\": %llu,\n", static_cast<unsigned long long>(game.frames));
    text += format("  \"pageFrames\": %llu,\n", static_cast<unsigned long long>(callback.frames));
    text += format("  \"unchangedPageFrames\": %llu,\n", static_cast<unsigned long long>(callback.unchangedFrames));
    text += format("  \"changedShare\": %.6f,\n",
                   ratio(static_cast<double>(callback.changedPixels), static_cast<double>(callback.framePixels)));
    text += format("  \"uploads\": %llu,\n", static_cast<unsigned long long>(game.uploads));
    text += format("  \"uploadedPixels\": %llu,\n", static_cast<unsigned long long>(game.uploadedPixels));
    text += member("callbackMs", callback.callbackMs, ",");
    text += member("callbackToFrameMs", game.toFrameMs, ",");
    text += member("uploadMs", game.uploadMs, ",");
    text += member("frameMs", game.frameMs, "");
    return text + "}\n";
}

}  // namespace demo
