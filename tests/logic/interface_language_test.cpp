#include "preferences/interface_language.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

TEST(InterfaceLanguage, FollowsTheFirstPreferredLanguage) {
    const std::vector<std::pair<std::vector<std::string>, bool>> table{
        {{}, true},
        {{"en-US"}, true},
        {{"zh"}, false},
        {{"zh-Hans"}, false},
        {{"zh_CN"}, false},
        {{"ZH_cn"}, false},
        {{"zh-SG"}, false},
        {{"zh_CN.UTF-8"}, false},
        {{"zh-Hant-TW"}, true},
        {{"zh_Hant_CN"}, true},
        {{"zh-TW"}, true},
        {{"zh_HK"}, true},
        {{"zh-CN-Hant"}, true},
        {{"zha"}, true},
        {{"ja-JP", "zh-Hans-CN"}, true},
        {{"zh-Hans-CN", "en-US"}, false},
        {{""}, true},
    };
    for (const auto& [languages, english] : table) {
        EXPECT_EQ(usesEnglish(languages, AppLanguage::system), english)
            << (languages.empty() ? "none" : languages.front());
    }
}

TEST(InterfaceLanguage, IsTheChosenOneWhateverTheDesktopPrefers) {
    for (const std::vector<std::string>& languages :
         {std::vector<std::string>{}, {"zh-CN"}, {"en-US"}}) {
        EXPECT_TRUE(usesEnglish(languages, AppLanguage::english));
        EXPECT_FALSE(usesEnglish(languages, AppLanguage::chinese));
    }
}

} // namespace
} // namespace vantrel
