#include "preferences/interface_language.h"

#include <QByteArray>

#include <algorithm>
#include <array>

namespace vantrel {

namespace {

bool startsWithAny(const QByteArray& tag, std::span<const char* const> prefixes) {
    return std::ranges::any_of(prefixes,
                               [&](const char* prefix) { return tag.startsWith(prefix); });
}

// Traditional Chinese reads English rather than Simplified Chinese.
bool isTraditionalChinese(const QByteArray& tag) {
    static constexpr std::array regions{"zh-tw", "zh-hk", "zh-mo"};
    return tag.contains("hant") || startsWithAny(tag, regions);
}

bool isSimplifiedChinese(const QByteArray& tag) {
    static constexpr std::array variants{"zh-hans", "zh-cn", "zh-sg"};
    return !isTraditionalChinese(tag) && (tag == "zh" || startsWithAny(tag, variants));
}

} // namespace

bool usesEnglish(std::span<const std::string> preferredLanguages, AppLanguage language) {
    if (language != AppLanguage::system) {
        return language == AppLanguage::english;
    }
    if (preferredLanguages.empty()) {
        return true;
    }
    const auto tag = QByteArray::fromStdString(preferredLanguages.front()).replace('_', '-');
    return !isSimplifiedChinese(tag.toLower());
}

} // namespace vantrel
