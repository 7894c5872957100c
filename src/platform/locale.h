#pragma once

#include <string>
#include <vector>

namespace vantrel {

class Locale {
public:
    virtual ~Locale() = default;

    // Language tags such as en-US or zh_CN, the preferred one first; may be empty.
    [[nodiscard]] virtual std::vector<std::string> preferredLanguages() const = 0;
};

} // namespace vantrel
