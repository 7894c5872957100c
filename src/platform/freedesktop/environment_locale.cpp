#include "platform/freedesktop/environment_locale.h"

#include "platform/environment.h"

#include <sstream>
#include <string_view>

namespace vantrel {
namespace {

// "zh_CN.UTF-8@modifier" without its encoding and modifier.
std::string tagOf(const std::string& locale) {
    return locale.substr(0, locale.find_first_of(".@"));
}

bool isC(const std::string& tag) {
    return tag == "C" || tag == "POSIX";
}

std::string localeOf(const LocaleVariables& variables) {
    for (const auto* value : {&variables.lcAll, &variables.lcMessages, &variables.lang}) {
        if (!value->empty()) {
            return tagOf(*value);
        }
    }
    return "C";
}

} // namespace

LocaleVariables LocaleVariables::fromEnvironment() {
    return {environment("LANGUAGE"), environment("LC_ALL"), environment("LC_MESSAGES"),
            environment("LANG")};
}

std::vector<std::string> preferredLanguages(const LocaleVariables& variables) {
    const std::string locale = localeOf(variables);
    if (isC(locale)) {
        return {};
    }
    std::vector<std::string> tags;
    std::istringstream languages(variables.language);
    for (std::string language; std::getline(languages, language, ':');) {
        const std::string tag = tagOf(language);
        if (isC(tag)) {
            // Texts as they were written, and nothing of what follows.
            tags.emplace_back("en");
            return tags;
        }
        if (!tag.empty()) {
            tags.push_back(tag);
        }
    }
    tags.push_back(locale);
    return tags;
}

std::vector<std::string> EnvironmentLocale::preferredLanguages() const {
    return vantrel::preferredLanguages(LocaleVariables::fromEnvironment());
}

} // namespace vantrel
