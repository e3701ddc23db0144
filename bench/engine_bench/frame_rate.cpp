#include "engine_bench/frame_rate.h"

#include "engine_bench/engine_run.h"
#include "engine_bench/measured.h"
#include "engine_bench/pages.h"
#include "support/http_server.h"

namespace ZEMO::Bench {
namespace {

constexpr int kPairs = 3;
constexpr int kSeconds = 10;

}  // namespace

int measureFrameRate(int width, int height) {
    Test::HttpServer server;
    server.serveHtml("/", changingPage());
    std::vector<double> rates[2], pictures[2], missing;
    for (int pair = 0; pair < kPairs; ++pair) {
        for (const Host host : {Host::Library, Host::Bare}) {
            const RunResult result = runInOwnProcess(
                {.host = host, .width = width, .height = height, .countSeconds = kSeconds, .address = server.url("/")});
            rates[static_cast<int>(host)].push_back(result.framesPerSecond);
            pictures[static_cast<int>(host)].push_back(result.pictures);
        }
        missing.push_back(pictures[1].back() - pictures[0].back());
    }
    report("frame_rate/library", "fps", rates[0], "frame_rate/bare_engine");
    report("frame_rate/bare_engine", "fps", rates[1]);
    report("frames_in_10_s/library", "frames", pictures[0], "frames_in_10_s/bare_engine");
    report("frames_in_10_s/bare_engine", "frames", pictures[1]);
    report("frames_in_10_s/missing_in_library", "frames", missing);
    return 0;
}

}  // namespace ZEMO::Bench
