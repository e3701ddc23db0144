#include "engine/client/request/content_items.h"

#include <cstring>
#include <string>

#include "core/game_callback.h"

// The engine has no way of being told of a POST when a load begins: every load starts as an ordinary navigation, and
// body and headers are attached when its request passes here. An item stays in force, so a reload, a redirect back to
// its address or a script's request to it becomes the same POST.
namespace ZEMO::UI {
namespace {

CefRefPtr<CefPostData> postDataOf(const std::string& body) {
    CefRefPtr<CefPostDataElement> element = CefPostDataElement::Create();
    element->SetToBytes(std::strlen(body.c_str()), body.c_str());
    CefRefPtr<CefPostData> postData = CefPostData::Create();
    postData->AddElement(element);
    return postData;
}

CefRequest::HeaderMap headerMapOf(const IZEMOWebContent& item) {
    CefRequest::HeaderMap headers;
    for (const auto& [name, value] : item.getHeaders()) headers.emplace(name, value);
    return headers;
}

}  // namespace

void ContentItems::applyTo(const CefRefPtr<CefRequest>& request) const {
    const std::shared_ptr<const List> items = Core::unlessProcessEnds(get());
    if (!items || items->empty()) return;
    const CefString address = request->GetURL();
    const std::string url = address;
    for (const std::shared_ptr<IZEMOWebContent>& item : *items) {
        if (!item || item->getKind() != IZEMOWebContent::kKindPost || item->getUrl().getUrl() != url) continue;
        request->Set(address, "POST", postDataOf(item->getBody()), headerMapOf(*item));
        // The engine keeps the referrer apart from the other headers, and would send it on.
        request->SetReferrer("", REFERRER_POLICY_NO_REFERRER);
    }
}

}  // namespace ZEMO::UI
