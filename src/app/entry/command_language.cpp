#include "app/entry/command_language.h"

#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/files.h"
#include "preferences/interface_language.h"
#include "preferences/settings_store.h"

namespace vantrel {

std::string said(std::string_view english, std::string_view chinese) {
    static const bool usesEnglishHere = [] {
        const auto document = readFile(FileUserDefaults::userFolder() / preferencesKey);
        const auto stored = document ? usablePreferences(*document) : std::nullopt;
        return usesEnglish(EnvironmentLocale().preferredLanguages(),
                           stored.value_or(AppPreferences()).language);
    }();
    return std::string(usesEnglishHere ? english : chinese);
}

} // namespace vantrel
