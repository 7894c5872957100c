#pragma once

#include "platform/session.h"

#include <map>
#include <string>
#include <variant>

namespace vantrel::headless {

class UserDefaults final : public vantrel::UserDefaults {
public:
    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override {
        const auto* bytes = find<std::string>(key);
        return bytes != nullptr ? std::optional(*bytes) : std::nullopt;
    }
    void setData(std::string_view key, std::string_view bytes) override {
        set(key, std::string(bytes));
    }
    [[nodiscard]] bool boolean(std::string_view key) const override {
        const auto* value = find<bool>(key);
        return value != nullptr && *value;
    }
    void setBoolean(std::string_view key, bool value) override { set(key, value); }

    int writes = 0;
    bool refusesWrites = false; // as a full disk does

private:
    using Value = std::variant<std::string, bool>;

    void set(std::string_view key, Value value) {
        ++writes;
        if (!refusesWrites) {
            values_.insert_or_assign(std::string(key), std::move(value));
        }
    }
    template <typename T>
    [[nodiscard]] const T* find(std::string_view key) const {
        const auto found = values_.find(key);
        return found == values_.end() ? nullptr : std::get_if<T>(&found->second);
    }

    std::map<std::string, Value, std::less<>> values_;
};

} // namespace vantrel::headless
