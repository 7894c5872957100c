#include "preferences/settings_store.h"

#include "preferences/preference_encoding.h"

#include <utility>

namespace vantrel {

std::optional<AppPreferences> usablePreferences(std::string_view document) {
    auto preferences = decodePreferences(document);
    if (!preferences || preferences->schemaVersion != AppPreferences::currentSchemaVersion) {
        return std::nullopt;
    }
    preferences->sanitize();
    return preferences;
}

SettingsStore::SettingsStore(UserDefaults& defaults, std::string key)
    : defaults_(defaults), key_(std::move(key)) {}

AppPreferences SettingsStore::load() const {
    const auto document = defaults_.data(key_);
    const auto stored = document ? usablePreferences(*document) : std::nullopt;
    if (document && !stored) {
        defaults_.keepUnusable(key_);
    }
    auto preferences = stored.value_or(AppPreferences());
    if (const auto bytes = encodePreferences(preferences)) {
        defaults_.countAs(key_, *bytes);
    }
    return preferences;
}

void SettingsStore::save(const AppPreferences& preferences) {
    if (const auto document = encodePreferences(preferences)) {
        defaults_.setData(key_, *document);
    }
}

} // namespace vantrel
