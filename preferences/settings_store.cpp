#include "preferences/settings_store.h"

#include "preferences/preference_encoding.h"

#include <utility>

namespace vantrel {

SettingsStore::SettingsStore(UserDefaults& defaults, std::string key)
    : defaults_(defaults), key_(std::move(key)) {}

AppPreferences SettingsStore::load() const {
    const auto document = defaults_.data(key_);
    auto preferences = document ? decodePreferences(*document) : std::nullopt;
    if (!preferences || preferences->schemaVersion != AppPreferences::currentSchemaVersion) {
        return {};
    }
    preferences->sanitize();
    return *std::move(preferences);
}

void SettingsStore::save(const AppPreferences& preferences) {
    if (const auto document = encodePreferences(preferences)) {
        defaults_.setData(key_, *document);
    }
}

} // namespace vantrel
