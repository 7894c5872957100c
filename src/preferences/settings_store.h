#pragma once

#include "platform/session.h"
#include "preferences/preferences.h"

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// Where the user's defaults hold the preferences.
inline constexpr std::string_view preferencesKey = "Vantrel.preferences.v1";

// The preferences of a stored document, brought into their bounds. Nothing when it is not usable.
[[nodiscard]] std::optional<AppPreferences> usablePreferences(std::string_view document);

// Keeps the preferences between runs, as one document under one key of the user's defaults.
class SettingsStore {
public:
    // The defaults must outlive the store.
    SettingsStore(UserDefaults& defaults, std::string key);

    // The default preferences when nothing usable is stored. Loading changes nothing.
    [[nodiscard]] AppPreferences load() const;
    // Exactly the given values; nothing is written when one of them is no finite number.
    void save(const AppPreferences& preferences);

private:
    UserDefaults& defaults_;
    const std::string key_;
};

} // namespace vantrel
