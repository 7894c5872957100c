#include "app/entry/command_language.h"

#include "platform/freedesktop/environment_locale.h"
#include "platform/freedesktop/file_user_defaults.h"
#include "platform/freedesktop/files.h"
#include "preferences/interface_language.h"
#include "preferences/settings_store.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

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

CommandAnswer failure(std::string text) {
    return {.status = CommandAnswer::Status::failed, .text = std::move(text)};
}

int report(const CommandAnswer& answer) {
    if (answer.status != CommandAnswer::Status::done) {
        std::fprintf(stderr, "vantrel: %s\n", answer.text.c_str());
    } else if (!answer.text.empty()) {
        std::puts(answer.text.c_str());
        if (std::fflush(stdout) != 0) {
            return report(failure(said("cannot write: ", "无法写出：") + std::strerror(errno)));
        }
    }
    return static_cast<int>(answer.status);
}

} // namespace vantrel
