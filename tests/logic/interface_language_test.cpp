#include "preferences/interface_language.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

TEST(InterfaceLanguage, IsTheChosenOneOrFollowsTheFirstThatIsPreferred) {
    using enum AppLanguage;
    using Languages = std::vector<std::string>;
    for (const std::string first :
         {"zh", "zh-Hans", "zh_CN", "ZH_cn", "zh-SG", "zh_CN.UTF-8", "zh-Hans-CN"}) {
        EXPECT_FALSE(usesEnglish(Languages{first, "en-US"}, system)) << first;
        EXPECT_TRUE(usesEnglish(Languages{first}, english)) << first;
    }
    for (const std::string first : {"", "en-US", "zh-Hant-TW", "zh_Hant_CN", "zh-TW", "zh_HK",
                                    "zh-CN-Hant", "zha", "ja-JP"}) {
        EXPECT_TRUE(usesEnglish(Languages{first, "zh-Hans-CN"}, system)) << first;
        EXPECT_FALSE(usesEnglish(Languages{first}, chinese)) << first;
    }
    EXPECT_TRUE(usesEnglish({}, system));
    EXPECT_FALSE(usesEnglish({}, chinese));
}

} // namespace
} // namespace vantrel
