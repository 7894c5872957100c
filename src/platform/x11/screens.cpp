#include "platform/x11/screens.h"

#include "platform/x11/property.h"

#include <algorithm>
#include <functional>
#include <map>
#include <span>
#include <string>

#include <QRegion>
#include <xcb/randr.h>

namespace vantrel::x11 {

namespace {

struct Monitor {
    xcb_atom_t id = XCB_NONE;
    std::string name; // of that atom
    QRect pixels;
    bool primary = false;
    std::vector<xcb_randr_output_t> outputs;
    double rate = 0;
};

std::vector<Monitor> readMonitors(const Connection& connection) {
    const Owned<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
        connection.xcb(), xcb_randr_get_monitors(connection.xcb(), connection.root(), 1), nullptr));
    std::vector<Monitor> monitors;
    if (!reply) {
        return monitors;
    }
    auto infos = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; infos.rem > 0; xcb_randr_monitor_info_next(&infos)) {
        const auto& info = *infos.data;
        const std::span outputs(
            xcb_randr_monitor_info_outputs(infos.data),
            static_cast<std::size_t>(xcb_randr_monitor_info_outputs_length(infos.data)));
        monitors.push_back({.id = info.name,
                            .name = {},
                            .pixels = QRect(info.x, info.y, info.width, info.height),
                            .primary = info.primary != 0,
                            .outputs = {outputs.begin(), outputs.end()}});
    }
    return monitors;
}

// Displays that show nothing of their own get no overlay.
void dropHidden(std::vector<Monitor>& monitors) {
    QRegion covered;
    std::erase_if(monitors, [&covered](const Monitor& monitor) {
        const bool hidden = QRegion(monitor.pixels).subtracted(covered).isEmpty();
        covered += monitor.pixels;
        return hidden;
    });
}

void readNames(const Connection& connection, std::vector<Monitor>& monitors) {
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    cookies.reserve(monitors.size());
    for (const auto& monitor : monitors) {
        cookies.push_back(xcb_get_atom_name(connection.xcb(), monitor.id));
    }
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const Owned<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(connection.xcb(), cookies[i], nullptr));
        if (reply) {
            monitors[i].name.assign(
                xcb_get_atom_name_name(reply.get()),
                static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
        }
    }
}

using Rates = std::map<xcb_randr_mode_t, double>;

Rates readRates(xcb_randr_get_screen_resources_current_reply_t& resources) {
    const std::span modes(
        xcb_randr_get_screen_resources_current_modes(&resources),
        static_cast<std::size_t>(xcb_randr_get_screen_resources_current_modes_length(&resources)));
    Rates rates;
    for (const auto& mode : modes) {
        rates[mode.id] = refreshRate(mode.dot_clock, mode.htotal, mode.vtotal, mode.mode_flags);
    }
    return rates;
}

// Fills in the rate of the fastest output.
void readRate(const Connection& connection, Monitor& monitor, const Rates& rates,
              xcb_timestamp_t timestamp) {
    for (const auto output : monitor.outputs) {
        const Owned<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
            connection.xcb(), xcb_randr_get_output_info(connection.xcb(), output, timestamp),
            nullptr));
        if (!info) {
            continue;
        }
        const Owned<xcb_randr_get_crtc_info_reply_t> crtc(xcb_randr_get_crtc_info_reply(
            connection.xcb(), xcb_randr_get_crtc_info(connection.xcb(), info->crtc, timestamp),
            nullptr));
        const auto rate = crtc ? rates.find(crtc->mode) : rates.end();
        if (rate != rates.end()) {
            monitor.rate = std::max(monitor.rate, rate->second);
        }
    }
}

// What the desktop's panels leave, in pixels; the whole root window when nobody tells.
QRect readWorkArea(const Connection& connection) {
    const auto desktop = numberOf(connection, connection.root(), Atom::currentDesktop).value_or(0);
    const auto area = numbersOf(connection, connection.root(), Atom::workArea, desktop * 4, 4);
    if (area.size() != 4) {
        return {QPoint(0, 0), connection.rootSize()};
    }
    const auto pixels = [&area](std::size_t at) { return static_cast<int>(area[at]); };
    return {pixels(0), pixels(1), pixels(2), pixels(3)};
}

} // namespace

std::vector<std::vector<QRect>> uncovered(const std::vector<QRect>& rects) {
    QRegion covered;
    std::vector<std::vector<QRect>> parts;
    for (const auto& rect : rects) {
        const auto own = QRegion(rect).subtracted(covered);
        parts.emplace_back(own.begin(), own.end());
        covered += rect;
    }
    return parts;
}

double refreshRate(std::uint32_t dotClock, std::uint16_t horizontalTotal,
                   std::uint16_t verticalTotal, std::uint32_t flags) {
    double lines = verticalTotal;
    if ((flags & XCB_RANDR_MODE_FLAG_DOUBLE_SCAN) != 0) {
        lines *= 2;
    }
    if ((flags & XCB_RANDR_MODE_FLAG_INTERLACE) != 0) {
        lines /= 2;
    }
    const double pixels = horizontalTotal * lines;
    return pixels > 0 ? dotClock / pixels : 0;
}

X11Screens::X11Screens(Connection& connection)
    : connection_(connection),
      scale_(connection, [this] { stale_ = true; }),
      events_(connection.addHandler(*this)) {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_randr_select_input(connection_.xcb(), connection_.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_RESOURCE_CHANGE);
    read();
}

Subscription X11Screens::onChange(std::function<void()> callback) {
    return changes_.add(std::move(callback));
}

Subscription X11Screens::onLayoutChange(std::function<void()> callback) {
    return layoutChanges_.add(std::move(callback));
}

std::size_t X11Screens::indexOf(const Screen& screen) const {
    const auto found = std::ranges::find(screens_, screen.id, &Screen::id);
    return static_cast<std::size_t>(found - screens_.begin());
}

QRect X11Screens::pixelsOf(const Screen& screen) const {
    const auto index = indexOf(screen);
    return index < screens_.size() ? pixelMap_.displays()[index].pixels : QRect();
}

std::vector<QRect> X11Screens::partsOf(const Screen& screen) const {
    std::vector<QRect> pixels;
    std::ranges::transform(pixelMap_.displays(), std::back_inserter(pixels), &DisplayArea::pixels);
    const auto index = indexOf(screen);
    return index < screens_.size() ? uncovered(pixels)[index] : std::vector<QRect>();
}

void X11Screens::handleEvent(const xcb_generic_event_t& event) {
    const auto first = connection_.firstEvent(xcb_randr_id);
    const auto number = eventNumber(event);
    if (number == first + XCB_RANDR_SCREEN_CHANGE_NOTIFY || number == first + XCB_RANDR_NOTIFY) {
        stale_ = true;
    } else if (number == XCB_CONFIGURE_NOTIFY) {
        // All that the server says about a monitor that a user has defined.
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        stale_ = stale_ || configure.window == connection_.root();
    } else if (number == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        stale_ = stale_ || change.atom == connection_.atom(Atom::workArea) ||
                 change.atom == connection_.atom(Atom::currentDesktop);
    }
}

// Plugging in one display sends a dozen of events.
void X11Screens::eventsDrained() {
    if (!stale_) {
        return;
    }
    const auto before = screens_;
    const auto mapBefore = pixelMap_;
    read();
    if (!haveSameLayout(screens_, before) || pixelMap_ != mapBefore) {
        layoutChanges_.notify();
    }
    if (screens_ != before || pixelMap_ != mapBefore) {
        changes_.notify();
    }
}

void X11Screens::read() {
    stale_ = false;
    const auto resourcesCookie =
        xcb_randr_get_screen_resources_current(connection_.xcb(), connection_.root());
    auto monitors = readMonitors(connection_);
    std::stable_partition(monitors.begin(), monitors.end(), std::mem_fn(&Monitor::primary));
    dropHidden(monitors);
    readNames(connection_, monitors);
    const Owned<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(connection_.xcb(), resourcesCookie, nullptr));
    const auto rates = resources ? readRates(*resources) : Rates();

    std::vector<DisplayArea> areas;
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        readRate(connection_, monitors[i], rates, resources ? resources->config_timestamp : 0);
        const auto& pixels = monitors[i].pixels;
        // Whatever two displays both show has one size.
        const auto shared = std::ranges::find_if(
            areas, [&pixels](const auto& area) { return area.pixels.intersects(pixels); });
        areas.push_back({pixels, shared != areas.end()
                                     ? shared->scale
                                     : toScale(scale_.settings(), monitors[i].name, i)});
    }
    pixelMap_ = PixelMap(areas);
    const QRect workArea = readWorkArea(connection_);
    screens_.clear();
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        const QRect visible = workArea.intersected(areas[i].pixels);
        screens_.push_back(
            {.id = monitors[i].id,
             .frame = pixelMap_.frame(i),
             .visibleFrame = pixelMap_.toGlobal(visible.isEmpty() ? areas[i].pixels : visible, i),
             .backingScale = areas[i].scale,
             .maximumFramesPerSecond = monitors[i].rate});
    }
}

} // namespace vantrel::x11
