#pragma once

#include <string>

#include "engine/game_host.h"
#include "support/http_server.h"

namespace ZEMO::Test {

/// A server that pages of any kind tell their findings: their script calls report(text).
class PageReports {
public:
    PageReports() {
        server.serve("/report", {.contentType = "text/plain", .extraHeaders = "Access-Control-Allow-Origin: *\r\n"});
    }

    /// A script element that gives a page its report function.
    std::string script() const {
        return "<script>function report(text){const x=new XMLHttpRequest;x.open('POST','" + server.url("/report") +
               "');x.send(text)}</script>";
    }

    /// The `number`th report, in the order of coming; "(none)" when it did not come.
    std::string wait(GameHost& game, size_t number = 0) {
        if (!game.waitFor("the page's report", [&] { return server.requestCount("/report") > number; }))
            return "(none)";
        for (const HttpServer::Request& request : server.requests()) {
            if (request.target == "/report" && number-- == 0) return request.body;
        }
        return "(none)";
    }

    HttpServer server;
};

}  // namespace ZEMO::Test
