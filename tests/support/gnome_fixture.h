#pragma once

#include "overlay/effect.h"
#include "platform/gnome/effect_message.h"
#include "platform/gnome/shell_report.h"
#include "support/mark_pixels.h"
#include "support/under_test.h"
#include "testdesk/gnome_session.h"
#include "testdesk/wait.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace vantrel::desktop {

// A session that shows marks, and is left without a fault of theirs.
class MarkingSession : public GnomeSession {
public:
    explicit MarkingSession(Options options = {}) : GnomeSession(withData(std::move(options))) {
        EXPECT_TRUE(switchExtension(extension(), true));
        EXPECT_TRUE(waitFor([&] { return bus().interface()->isServiceRegistered(agent).value(); }));
        moveTo(300, 150);
    }
    ~MarkingSession() { EXPECT_EQ(complaints(), ""); }

    [[nodiscard]] QString extension() const { return extensionFor(QString::number(version())); }
    // The error's name, if there is one.
    [[nodiscard]] std::string errorOf(const QDBusConnection& caller, const char* method,
                                      const QVariantList& arguments = {}) const {
        auto message = QDBusMessage::createMethodCall(agent, QStringLiteral("/org/vantrel/Marks1"),
                                                      agent, QString::fromLatin1(method));
        message.setArguments(arguments);
        return caller.call(message).errorName().toStdString();
    }
    void show(const Effect& effect) const {
        EXPECT_EQ(errorOf(bus(), "Show", {messageOf(effect)}), "");
    }
    void typeChord(const std::vector<int>& keys) const {
        for (const int key : keys) {
            type(key, true);
        }
        for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
            type(*key, false);
        }
    }
    // The pictures that can be seen, of the mark and of rings.
    [[nodiscard]] int countPictures() const {
        return evaluate("Main.layoutManager.uiGroup.get_children()"
                        "    .filter(actor => actor.name === 'vantrel')"
                        "    .flatMap(actor => actor.get_children())"
                        "    .filter(actor => actor.visible).length");
    }
    [[nodiscard]] bool comesToShow(int count) const {
        return waitFor([&] { return countPictures() == count; });
    }
    // Counts from now on how often pictures come to be seen, and how many at a time.
    void watchPictures() const {
        evaluate("global.vantrelShown = 0;"
                 "global.vantrelMost = 0;"
                 "const pictures = Main.layoutManager.uiGroup.get_children()"
                 "    .find(actor => actor.name === 'vantrel').get_children();"
                 "pictures.forEach(picture => picture.connect('show', () => {"
                 "    global.vantrelShown++;"
                 "    global.vantrelMost = Math.max(global.vantrelMost,"
                 "        pictures.filter(({visible}) => visible).length);"
                 "})); 1");
    }
    [[nodiscard]] int shownPictures() const { return evaluate("global.vantrelShown"); }
    // Waits until the pointer is marked so.
    void expectMark(const Effect& effect, const std::string& where) const {
        Differences last;
        EXPECT_TRUE(waitFor(
            [&] {
                const auto shown = picture();
                const auto center = (pointer() * shown.width() / width()).toPoint();
                last = differences(shown, center, effect, scale());
                return last.areSlight();
            },
            std::chrono::seconds(3)))
            << where << " " << last;
    }
    // Of all displays, in the units of places.
    [[nodiscard]] double width() const { return evaluate("global.stage.width"); }
    // Pixels for each point.
    [[nodiscard]] double scale() const { return evaluate("global.display.get_monitor_scale(0)"); }

    static inline const auto agent = QStringLiteral("org.vantrel.Marks1");

private:
    static Options withData(Options options) {
        options.dataFolder = underTest("VANTREL_DATA", VANTREL_DATA);
        return options;
    }
};

} // namespace vantrel::desktop
