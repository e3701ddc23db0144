#include "layers/web/special_url.h"

#include "zemo/string_util.h"
#include "zemo/url.h"

namespace ZEMO::UI {
namespace {

// Pages get it verbatim, so its line breaks and indentation are part of it.
constexpr char kDefaultStatus[] =
    "{\n"
    "                        \"isConnected\": false,\n"
    "                        \"primaryBtn\": \"0\",\n"
    "                        \"secondaryBtn\": \"1\",\n"
    "                        \"secondaryBtnText\": \"\"\n"
    "                    }";
static_assert(sizeof kDefaultStatus - 1 == 204);

bool sameText(const std::string& a, const char* b) {
    return Core::StringUtil::isEqual(a, std::string(b), Core::StringSensitive::Insensitive);
}

}  // namespace

SpecialUrl classifySpecialUrl(const std::string& url, const std::string& gameStatus, bool& use, std::string& status) {
    const Core::URL parsed(url);
    if (!sameText(parsed.getScheme(), "zemosdk")) return SpecialUrl::Ordinary;
    if (sameText(parsed.getHost(), "nativeclose")) return SpecialUrl::NativeClose;
    if (!sameText(parsed.getHost(), "gamepadinit")) return SpecialUrl::Ordinary;
    use = parsed.getQueryParameter("use") == "true";
    if (gameStatus.empty()) {
        status = kDefaultStatus;
        return SpecialUrl::GamePadInitDefaultStatus;
    }
    status = gameStatus;
    return SpecialUrl::GamePadInit;
}

}  // namespace ZEMO::UI
