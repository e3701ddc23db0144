#include "layers/web/special_url.h"

#include <gtest/gtest.h>

namespace ZEMO::UI {

TEST(SpecialUrl, Table_SchemeAndHostDecideInAnyCase) {
    struct Case {
        const char *url, *gameStatus;
        SpecialUrl result;
        bool use;
    };
    const Case cases[] = {
        {"zemosdk://nativeclose", "", SpecialUrl::NativeClose, false},
        {"ZEMOSDK://NATIVECLOSE", "", SpecialUrl::NativeClose, false},
        {"zemosdk://gamepadinit?use=true", "{}", SpecialUrl::GamePadInit, true},
        {"ZemoSdk://GamePadInit?use=true", "{}", SpecialUrl::GamePadInit, true},
        {"zemosdk://gamepadinit?use=TRUE", "{}", SpecialUrl::GamePadInit, false},
        {"zemosdk://gamepadinit?use=false", "{}", SpecialUrl::GamePadInit, false},
        {"zemosdk://gamepadinit", "{}", SpecialUrl::GamePadInit, false},
        {"zemosdk://gamepadinit?use=true", "", SpecialUrl::GamePadInitDefaultStatus, true},
        {"zemosdk://anything", "{}", SpecialUrl::Ordinary, false},
        {"zemosdk:", "{}", SpecialUrl::Ordinary, false},
        {"zemosdkx://nativeclose", "{}", SpecialUrl::Ordinary, false},
        {"https://nativeclose/", "{}", SpecialUrl::Ordinary, false},
        {"", "{}", SpecialUrl::Ordinary, false},
    };
    for (const Case& each : cases) {
        bool use = false;
        std::string status;
        EXPECT_EQ(classifySpecialUrl(each.url, each.gameStatus, use, status), each.result) << each.url;
        EXPECT_EQ(use, each.use) << each.url;
        if (each.result == SpecialUrl::GamePadInit) {
            EXPECT_EQ(status, each.gameStatus);
        }
    }
}

TEST(SpecialUrl, NoStatusFromTheGame_DefaultByteForByte) {
    bool use = false;
    std::string status;
    classifySpecialUrl("zemosdk://gamepadinit", "", use, status);
    const std::string indent(24, ' ');
    EXPECT_EQ(status, "{\n" + indent + "\"isConnected\": false,\n" + indent + "\"primaryBtn\": \"0\",\n" + indent +
                          "\"secondaryBtn\": \"1\",\n" + indent + "\"secondaryBtnText\": \"\"\n" +
                          std::string(20, ' ') + "}");
    EXPECT_EQ(status.size(), 204u);
}

}  // namespace ZEMO::UI
