#pragma once

#include "platform/session.h"

#include <string>

namespace vantrel {

// The variables that say the user's language; empty where unset.
struct LocaleVariables {
    std::string language;   // LANGUAGE
    std::string lcAll;      // LC_ALL
    std::string lcMessages; // LC_MESSAGES
    std::string lang;       // LANG

    static LocaleVariables fromEnvironment();
};

// In the order in which messages are looked up. The locale is that of LC_ALL, else of LC_MESSAGES,
// else of LANG; LANGUAGE goes before it, unless it is the C locale, which prefers no language.
std::vector<std::string> preferredLanguages(const LocaleVariables& variables);

// The languages of the environment that the session gave to this process.
class EnvironmentLocale final : public Locale {
public:
    [[nodiscard]] std::vector<std::string> preferredLanguages() const override;
};

} // namespace vantrel
