#include "platform/x11/desktop_scale.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <vector>

namespace vantrel::x11 {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

// A number above zero.
std::optional<double> positiveNumber(std::string_view text) {
    double value = 0;
    text = trimmed(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !(value > 0)) {
        return std::nullopt;
    }
    return value;
}

// The factor for a display in "name=factor;..." or "factor;factor;...".
std::optional<double> screenFactor(std::string_view factors, std::string_view output,
                                   std::size_t index) {
    const auto entries = split(factors, ';');
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto equals = entries[i].find('=');
        if (equals == std::string_view::npos ? i == index
                                             : trimmed(entries[i].substr(0, equals)) == output) {
            return positiveNumber(equals == std::string_view::npos ? entries[i]
                                                                   : entries[i].substr(equals + 1));
        }
    }
    return std::nullopt;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

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

} // namespace

double toScale(const ScaleSettings& settings, std::string_view output, std::size_t index) {
    double scale = 1;
    if (const auto factor = screenFactor(settings.screenFactors, output, index)) {
        scale = *factor;
    } else if (settings.fontDpi) {
        scale = *settings.fontDpi / 96;
    } else if (settings.windowScale) {
        scale = *settings.windowScale;
    }
    return std::clamp(scale * settings.globalFactor.value_or(1), 0.5, 8.0);
}

std::optional<double> fontDpiOf(std::string_view resources) {
    for (const auto line : split(resources, '\n')) {
        const auto colon = line.find(':');
        if (colon != std::string_view::npos && trimmed(line.substr(0, colon)) == "Xft.dpi") {
            return positiveNumber(line.substr(colon + 1));
        }
    }
    return std::nullopt;
}

std::optional<int> integerSetting(std::string_view block, std::string_view name) {
    enum Type : std::uint32_t { integer = 0, text = 1, color = 2 };
    BlockReader reader(block);
    reader.useByteOrder(reader.number(1) == 1);
    reader.bytes(3 + 4);
    for (auto left = reader.number(4); left > 0 && reader.good(); --left) {
        const auto type = reader.number(1);
        reader.bytes(1);
        const auto key = reader.padded(reader.number(2));
        reader.bytes(4);
        if (type == integer) {
            const auto value = reader.number(4);
            if (key == name && reader.good()) {
                return static_cast<int>(value);
            }
        } else if (type == text) {
            reader.padded(reader.number(4));
        } else if (type == color) {
            reader.bytes(8);
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

DesktopScale::DesktopScale(Connection& connection, std::function<void()> changed)
    : connection_(connection), changed_(std::move(changed)), events_(connection.addHandler(*this)) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    settings_.screenFactors = environment("QT_SCREEN_SCALE_FACTORS");
    settings_.globalFactor = positiveNumber(environment("QT_SCALE_FACTOR"));
    findOwner();
    read();
}

void DesktopScale::findOwner() {
    const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_.xcb(),
        xcb_get_selection_owner(connection_.xcb(), connection_.atom(Atom::xsettings)), nullptr));
    owner_ = reply ? reply->owner : XCB_NONE;
    if (owner_ != XCB_NONE) {
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.xcb(), owner_, XCB_CW_EVENT_MASK, &mask);
    }
}

void DesktopScale::read() {
    auto settings = settings_;
    settings.fontDpi = fontDpiOf(
        readBytes(connection_, connection_.root(), connection_.atom(Atom::resourceManager)));
    settings.windowScale =
        owner_ == XCB_NONE ? std::nullopt
                           : integerSetting(readBytes(connection_, owner_,
                                                      connection_.atom(Atom::xsettingsSettings)),
                                            "Gdk/WindowScalingFactor");
    if (settings != settings_) {
        settings_ = settings;
        changed_();
    }
}

void DesktopScale::handleEvent(const xcb_generic_event_t& event) {
    switch (eventNumber(event)) {
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.atom == connection_.atom(Atom::resourceManager) ||
            change.atom == connection_.atom(Atom::xsettingsSettings)) {
            read();
        }
        break;
    }
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.type == connection_.atom(Atom::manager) &&
            message.data.data32[1] == connection_.atom(Atom::xsettings)) {
            findOwner();
            read();
        }
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (owner_ != XCB_NONE &&
            reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == owner_) {
            findOwner();
            read();
        }
        break;
    default:
        break;
    }
}

std::string readBytes(const Connection& connection, xcb_window_t window, xcb_atom_t property) {
    constexpr std::uint32_t maximumWords = 1 << 18;
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection.xcb(),
                               xcb_get_property(connection.xcb(), 0, window, property,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, maximumWords),
                               nullptr));
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

} // namespace vantrel::x11
