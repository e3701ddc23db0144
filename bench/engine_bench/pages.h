#pragma once

#include <string>

namespace ZEMO::Bench {

/// The colour of the still pages, as the page names it and as B, G, R, A in a frame.
inline constexpr char kStillColor[] = "#2468ac";
inline constexpr unsigned kStillPixel = 0xFF2468ACu;

inline std::string stillPage() {
    return std::string("<!doctype html><style>html,body{margin:0;height:100%;background:") + kStillColor + "}</style>";
}

/// Every pixel is another in each of the engine's frames. One plain colour, so that the page's own work stays small
/// beside what is measured: comparing and copying costs the same for any content.
inline std::string changingPage() {
    return "<!doctype html><style>html,body{margin:0;height:100%}</style><script>let n=0;(function f(){n=(n+1)%120;"
           "document.documentElement.style.background=`rgb(${n*2},40,${250-n*2})`;requestAnimationFrame(f)})()"
           "</script>";
}

inline constexpr int kBlockX = 928, kBlockY = 508, kBlockSize = 64;

/// A block in the middle of 1920x1080 is another in each of the engine's frames.
inline std::string blockPage() {
    return "<!doctype html><style>html,body{margin:0;height:100%;background:#fff}div{position:absolute;left:928px;"
           "top:508px;width:64px;height:64px}</style><div id=b></div><script>let n=0;(function f(){n=(n+1)%120;"
           "b.style.background=`rgb(${n*2},40,${250-n*2})`;requestAnimationFrame(f)})()</script>";
}

}  // namespace ZEMO::Bench
