#include "platform/x11/desktop_scale.h"

#include "platform/environment.h"
#include "platform/text.h"
#include "platform/x11/desktop_settings.h"
#include "platform/x11/text.h"

#include <algorithm>

namespace vantrel::x11 {

namespace {

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

DesktopScale::DesktopScale(Connection& connection, std::function<void()> changed)
    : connection_(connection), changed_(std::move(changed)), events_(connection.addHandler(*this)) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    settings_.screenFactors = environment("QT_SCREEN_SCALE_FACTORS");
    settings_.globalFactor = positiveNumber(environment("QT_SCALE_FACTOR"));
    findOwner();
    read();
}

void DesktopScale::findOwner() {
    owner_ = settingsOwner(connection_);
    if (owner_ != XCB_NONE) {
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        // It may be gone by now.
        auto* xcb = connection_.xcb();
        xcb_discard_reply(
            xcb,
            xcb_change_window_attributes_checked(xcb, owner_, XCB_CW_EVENT_MASK, &mask).sequence);
    }
}

void DesktopScale::read() {
    auto settings = settings_;
    settings.fontDpi = fontDpiOf(readResources(connection_));
    settings.windowScale =
        integerSetting(readSettings(connection_, owner_), "Gdk/WindowScalingFactor");
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

} // namespace vantrel::x11
