#pragma once

#include <memory>
#include <string>
#include <utility>

#include "zemo/url.h"
#include "zemo/web_view.h"

namespace ZEMO::UI {

/// A plain address as a content item.
class AddressContent final : public IZEMOWebContent {
public:
    explicit AddressContent(const std::string& address) : url(address) {}
    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return 0; }

private:
    ZEMO::Core::URL url;
};

/// Keeps `view` alive until the next call; an empty pointer releases the last one.
void keepTestView(std::shared_ptr<IZEMOWebView> view);

}  // namespace ZEMO::UI
