#pragma once

#include "preferences/preferences.h"

#include <span>
#include <string>

namespace vantrel {

// Whether texts are shown in English; in Chinese otherwise. Of the preferred languages of the
// desktop (tags such as zh-Hans-CN or zh_CN) only the first one counts.
[[nodiscard]] bool usesEnglish(std::span<const std::string> preferredLanguages,
                               AppLanguage language);

} // namespace vantrel
