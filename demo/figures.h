#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace demo {

inline double milliseconds(std::chrono::steady_clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

/// The newest samples of one measurement, in milliseconds. A long run overwrites its oldest samples.
class Samples {
public:
    void add(double value);
    std::size_t count() const { return values.size(); }
    /// `share` from 0 to 1: 0.5 is the median. 0 without a sample.
    double percentile(double share) const;

private:
    std::vector<double> values;
    std::size_t oldest = 0;
};

/// Measured on the engine thread, by the present callback.
struct CallbackFigures {
    std::uint64_t frames = 0;
    std::uint64_t unchangedFrames = 0;  ///< frames whose changed rectangle was empty
    std::uint64_t changedPixels = 0;
    std::uint64_t framePixels = 0;
    Samples callbackMs;  ///< from the callback's first line to its last: what the engine had to wait
};

/// Measured on the game thread, by the frame loop.
struct GameFigures {
    std::uint64_t frames = 0;
    double seconds = 0;
    std::uint64_t uploads = 0;
    std::uint64_t uploadedPixels = 0;
    Samples frameMs;    ///< work of one frame, without waiting for the next one's turn
    Samples uploadMs;   ///< glTexSubImage2D
    Samples toFrameMs;  ///< from the callback's first line to the end of the game frame that shows it
};

/// A table for people.
std::string figuresAsText(const CallbackFigures& callback, const GameFigures& game);

/// The same for programs.
std::string figuresAsJson(const CallbackFigures& callback, const GameFigures& game);

}  // namespace demo
