#include "stage.h"

#include "interruption.h"
#include "testdesk/screen_capture.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string_view>

#include <QPainter>

namespace vantrel::demo {
namespace {

using desktop::ownReply;

void setProperty(const desktop::XConnection& connection, xcb_window_t window, xcb_atom_t name,
                 xcb_atom_t type, std::initializer_list<std::uint32_t> values) {
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        static_cast<std::uint32_t>(values.size()), std::data(values));
}

// Asks the window manager to leave the window without a frame, and where it was put.
void describe(const desktop::XConnection& connection, xcb_window_t window, const QRect& area,
              const std::string& type) {
    constexpr std::string_view name("presentation\0Presentation\0", 26);
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, name.size(), name.data());
    const xcb_atom_t hints = connection.atom("_MOTIF_WM_HINTS");
    setProperty(connection, window, hints, hints, {2, 0, 0, 0, 0});
    const auto x = static_cast<std::uint32_t>(area.x());
    const auto y = static_cast<std::uint32_t>(area.y());
    constexpr std::uint32_t userPosition = 1;
    setProperty(connection, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                {userPosition, x, y, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    setProperty(connection, window, connection.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
                {connection.atom(type)});
}

} // namespace

desktop::PrivateServer stageServer() {
    auto server = desktop::PrivateServer::virtualScreen({stageSize.width(), stageSize.height()});
    const auto icons = server.folder() / ".icons/default";
    std::filesystem::create_directories(icons);
    std::ofstream(icons / "index.theme") << "[Icon Theme]\nInherits=DMZ-White\n";
    return server;
}

Stage::Stage(const Place& place)
    : screen_(place.screen),
      connection_(place.display),
      desktop_(open(connection_.root(), QRect({0, 0}, stageSize), "_NET_WM_WINDOW_TYPE_DESKTOP")),
      slide_(open(place.inOneWindow ? desktop_ : connection_.root(), slideArea,
                  "_NET_WM_WINDOW_TYPE_NORMAL")),
      editor_(open(place.inOneWindow ? desktop_ : connection_.root(), editorArea,
                   "_NET_WM_WINDOW_TYPE_NORMAL")) {
    setCaption({});
    for (const QRect& area : {slideArea, editorArea}) {
        const desktop::PixelPoint inside{area.x() + 8, area.y() + 80};
        expect("the slide and the editor",
               [&] { return desktop::pixelAt(screen_, inside) == pictureAt(inside); });
    }
}

void Stage::setCaption(const Caption& caption) {
    show(desktop_, QRect({0, 0}, stageSize), paintDesktop(caption));
    showWindows();
}

std::uint32_t Stage::pictureAt(desktop::PixelPoint place) const {
    return picture_.pixel(place.x, place.y) & 0xFFFFFF;
}

int Stage::presses() {
    while (const auto event = ownReply(xcb_poll_for_event(connection_.get()))) {
        take(*event);
    }
    return presses_;
}

xcb_window_t Stage::open(xcb_window_t parent, const QRect& area, const std::string& type) {
    const xcb_window_t window = xcb_generate_id(connection_.get());
    constexpr std::uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS;
    xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window, parent,
                      static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()),
                      static_cast<std::uint16_t>(area.width()),
                      static_cast<std::uint16_t>(area.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    describe(connection_, window, area, type);
    xcb_map_window(connection_.get(), window);
    return window;
}

// As the window's background, which the server repaints by itself.
void Stage::show(xcb_window_t window, const QRect& area, const QImage& image) {
    QPainter(&picture_).drawImage(area.topLeft(), image);
    const xcb_pixmap_t pixmap = xcb_generate_id(connection_.get());
    const xcb_gcontext_t context = xcb_generate_id(connection_.get());
    const auto width = static_cast<std::uint16_t>(image.width());
    const auto height = static_cast<std::uint16_t>(image.height());
    xcb_create_pixmap(connection_.get(), 24, pixmap, window, width, height);
    xcb_create_gc(connection_.get(), context, pixmap, 0, nullptr);
    xcb_put_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, width, height, 0,
                  0, 0, 24, static_cast<std::uint32_t>(image.sizeInBytes()), image.constBits());
    xcb_change_window_attributes(connection_.get(), window, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(connection_.get(), 0, window, 0, 0, 0, 0);
    xcb_free_gc(connection_.get(), context);
    xcb_free_pixmap(connection_.get(), pixmap);
    connection_.sync();
}

void Stage::showWindows() {
    show(slide_, slideArea, paintSlide(chosenBar_));
    show(editor_, editorArea, paintEditor());
}

void Stage::take(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != XCB_BUTTON_PRESS) {
        return;
    }
    ++presses_;
    const auto& press = reinterpret_cast<const xcb_button_press_event_t&>(event);
    for (int bar = 0; bar < barCount; ++bar) {
        if (press.event == slide_ && barArea(bar).contains(press.event_x, press.event_y)) {
            chosenBar_ = bar;
            showWindows();
        }
    }
}

} // namespace vantrel::demo
