// Frames a second at 1920x1080 through the library, beside a bare engine host (see engine_bench/frame_rate.h). A size
// is a program of its own, so that each stays short.
#include "engine_bench/engine_run.h"
#include "engine_bench/frame_rate.h"

int main() {
    ZEMO::Bench::mainOfRuns([] { return ZEMO::Bench::measureFrameRate(1920, 1080); });
}
