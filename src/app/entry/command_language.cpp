#include "app/entry/command_language.h"

#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/files.h"
#include "preferences/interface_language.h"
#include "preferences/settings_store.h"

namespace vantrel {

bool commandLineUsesEnglish() {
    static const bool english = [] {
        const auto document = readFile(FileUserDefaults::userFolder() / preferencesKey);
        const auto stored = document ? usablePreferences(*document) : std::nullopt;
        return usesEnglish(EnvironmentLocale().preferredLanguages(),
                           stored.value_or(AppPreferences()).language);
    }();
    return english;
}

std::string said(std::string_view english, std::string_view chinese) {
    return std::string(commandLineUsesEnglish() ? english : chinese);
}

} // namespace vantrel
