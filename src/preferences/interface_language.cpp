#include "preferences/interface_language.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vantrel {

namespace {

std::string normalized(std::string tag) {
    std::ranges::transform(tag, tag.begin(), [](unsigned char c) {
        return c == '_' ? '-' : static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    });
    return tag;
}

// Whoever reads Traditional Chinese, as in zh-TW or zh-Hant-CN, rather reads English.
bool isSimplifiedChinese(std::string_view tag) {
    static constexpr std::array variants{"zh-hans", "zh-cn", "zh-sg"};
    return tag.find("hant") == std::string_view::npos &&
           (tag == "zh" || std::ranges::any_of(variants, [tag](const char* variant) {
                return tag.starts_with(variant);
            }));
}

} // namespace

bool usesEnglish(std::span<const std::string> preferredLanguages, AppLanguage language) {
    if (language != AppLanguage::system) {
        return language == AppLanguage::english;
    }
    if (preferredLanguages.empty()) {
        return true;
    }
    return !isSimplifiedChinese(normalized(preferredLanguages.front()));
}

} // namespace vantrel
