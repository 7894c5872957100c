#include "platform/x11/desktop_settings.h"

#include "platform/text.h"
#include "platform/x11/property.h"
#include "platform/x11/selection.h"
#include "platform/x11/text.h"

#include <variant>

namespace vantrel::x11 {

namespace {

// Walks along the settings block, and fails for good where it would leave it.
class BlockReader {
public:
    explicit BlockReader(std::string_view block) : rest_(block) {}

    [[nodiscard]] bool good() const { return good_; }
    void useByteOrder(bool mostSignificantFirst) { mostSignificantFirst_ = mostSignificantFirst; }

    std::string_view bytes(std::size_t count) {
        if (count > rest_.size()) {
            good_ = false;
            rest_ = {};
            return {};
        }
        const auto taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }
    std::uint32_t number(std::size_t size) {
        std::uint32_t value = 0;
        const auto digits = bytes(size);
        for (std::size_t i = 0; i < digits.size(); ++i) {
            const auto at = mostSignificantFirst_ ? i : digits.size() - 1 - i;
            value = value << 8U | static_cast<unsigned char>(digits[at]);
        }
        return value;
    }
    std::string_view padded(std::size_t count) {
        const auto text = bytes(count);
        bytes((4 - count % 4) % 4);
        return text;
    }

private:
    std::string_view rest_;
    bool good_ = true;
    bool mostSignificantFirst_ = false;
};

using Setting = std::variant<std::uint32_t, std::string_view>;

std::optional<Setting> settingOf(std::string_view block, std::string_view name) {
    enum Type : std::uint32_t { integer = 0, text = 1, color = 2 };
    BlockReader reader(block);
    reader.useByteOrder(reader.number(1) == 1);
    reader.bytes(3 + 4);
    for (auto left = reader.number(4); left > 0 && reader.good(); --left) {
        const auto type = reader.number(1);
        reader.bytes(1);
        const auto key = reader.padded(reader.number(2));
        reader.bytes(4);
        Setting value;
        if (type == integer) {
            value = reader.number(4);
        } else if (type == text) {
            value = reader.padded(reader.number(4));
        } else if (type == color) {
            reader.bytes(8);
        } else {
            return std::nullopt;
        }
        if (key == name && type != color && reader.good()) {
            return value;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string_view> resourceOf(std::string_view resources, std::string_view name) {
    for (const auto line : split(resources, '\n')) {
        const auto colon = line.find(':');
        if (colon != std::string_view::npos && trimmed(line.substr(0, colon)) == name) {
            return trimmed(line.substr(colon + 1));
        }
    }
    return std::nullopt;
}

std::optional<double> fontDpiOf(std::string_view resources) {
    const auto value = resourceOf(resources, "Xft.dpi");
    return value ? positiveNumber(*value) : std::nullopt;
}

std::optional<int> integerSetting(std::string_view block, std::string_view name) {
    const auto setting = settingOf(block, name);
    const auto* value = setting ? std::get_if<std::uint32_t>(&*setting) : nullptr;
    return value != nullptr ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

std::optional<std::string_view> textSetting(std::string_view block, std::string_view name) {
    const auto setting = settingOf(block, name);
    const auto* value = setting ? std::get_if<std::string_view>(&*setting) : nullptr;
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::string readResources(const Connection& connection) {
    return bytesOf(connection, connection.root(), Atom::resourceManager);
}

xcb_window_t settingsOwner(const Connection& connection) {
    return selectionOwner(connection, connection.atom(Atom::xsettings));
}

std::string readSettings(const Connection& connection, xcb_window_t owner) {
    return owner == XCB_NONE ? std::string() : bytesOf(connection, owner, Atom::xsettingsSettings);
}

} // namespace vantrel::x11
