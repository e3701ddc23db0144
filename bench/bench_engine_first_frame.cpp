// What a game waits for: from createWebViewDefault and show to the first frame in the present callback, with the engine
// already running. Beside it, with the same page from the same server, a host that does nothing but start the same
// engine with the same settings, make one browser and take its paints; its time runs from CreateBrowser. The runs
// alternate, so that what the machine does meanwhile hits both alike.
//
// Two moments are taken: the first frame of the view's size, which may be blank still, and the first one that shows the
// page. Both hosts tell them from the pixels the same way.
#include <cstdio>

#include "engine_bench/engine_run.h"
#include "engine_bench/measured.h"
#include "engine_bench/pages.h"
#include "support/http_server.h"

namespace {

using namespace ZEMO::Bench;

constexpr int kPairs = 10;

struct Times {
    std::vector<double> library, bare, difference;
    void add(double ofLibrary, double ofBare) {
        library.push_back(ofLibrary);
        bare.push_back(ofBare);
        difference.push_back(ofLibrary - ofBare);
    }
    void print(const std::string& name) const {
        report(name + "/library", "ms", library, name + "/bare_engine");
        report(name + "/bare_engine", "ms", bare);
        report(name + "/library_minus_bare", "ms", difference);
    }
};

int drive() {
    ZEMO::Test::HttpServer server;
    server.serveHtml("/", stillPage());
    RunOrder library{.host = Host::Library, .width = 1920, .height = 1080, .address = server.url("/")};
    RunOrder bare = library;
    bare.host = Host::Bare;
    Times first, shown;
    for (int pair = 0; pair <= kPairs; ++pair) {
        const RunResult withLibrary = runInOwnProcess(library);
        const RunResult alone = runInOwnProcess(bare);
        if (pair == 0) continue;  // this one made the two caches
        first.add(withLibrary.firstFrameMs, alone.firstFrameMs);
        shown.add(withLibrary.pageShownMs, alone.pageShownMs);
    }
    first.print("first_frame");
    shown.print("page_shown");
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::mainOfRuns(drive); }
