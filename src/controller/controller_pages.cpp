#include "controller/controller_pages.h"

#include <memory>
#include <string>
#include <system_error>

namespace ZEMO::UI {
namespace {

constexpr size_t kFirstBuckets = 8;

const ControllerPageTable& makeTable() {
    auto table = std::make_unique<ControllerPageTable>(kFirstBuckets);
    *table = {
        {"html/idp_login", {false, true}},
        {"html/login_stand_by", {true, true}},
        {"html/comprehensive_banner", {false, true}},
        {"html/server_popup", {true, true}},
        {"html/default_popup_1", {true, true}},
        {"html/access_popup", {false, true}},
        {"html/steamdeck_login", {false, true}},
        {"html/google_popup_2", {false, true}},
        {"html/login_idp", {false, false}},
        {"html/zemostore_popup", {false, true}},
        {"html/unsupported_popup", {false, true}},
        {"html/adult_certification", {false, true}},
    };
    return *table.release();
}

// None for a path that can't be resolved, a ring of links for example.
std::optional<std::string> canonicalText(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::path canonical = weakly_canonical(path, error);
    // An address is no name that a file could have: nothing on disk to resolve, which is no fault.
    if (error == std::errc::invalid_argument) {
        canonical = path.lexically_normal();
    } else if (error) {
        return std::nullopt;
    }
    return canonical.make_preferred().string();
}

bool occursIn(const std::string& text, const std::filesystem::path& page) {
    const auto pageText = canonicalText(page);
    return pageText && text.find(*pageText) != std::string::npos;
}

}  // namespace

const ControllerPageTable& kGameControllerPageTable = makeTable();

std::optional<ControllerPage> findControllerPage(const std::filesystem::path& url) try {
    const auto text = canonicalText(url);
    if (!text) return std::nullopt;
    for (const auto& [page, flags] : kGameControllerPageTable) {
        if (occursIn(*text, page)) return ControllerPage{flags.first, flags.second};
    }
    return std::nullopt;
} catch (const std::system_error&) {  // the text has no narrow form
    return std::nullopt;
}

}  // namespace ZEMO::UI
