#include "day.h"

#include "testdesk/wait.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

#include <sstream>

namespace vantrel::bench {
namespace {

constexpr int parts = 5; // each as full as the others
constexpr int motions = 100'000 / parts;
constexpr int clicks = 5'000 / parts;
constexpr int modeChanges = 500 / parts;
constexpr int openings = 200 / parts; // of the panel
constexpr int displayChanges = 50 / parts;
constexpr int locks = 20 / parts;
constexpr int sleeps = 20 / parts;
// At most.
constexpr double motionsPerSecond = 8000; // of the fastest mice
constexpr double clicksPerSecond = 2000;
constexpr double modeChangesPerSecond = 200;

// Tells of sleep, and holds nothing up.
class LoginManager {
public:
    // The address of a system bus.
    explicit LoginManager(const std::string& bus)
        : bus_(
              QDBusConnection::connectToBus(QString::fromStdString(bus), QStringLiteral("login"))) {
        bus_.registerService(QStringLiteral("org.freedesktop.login1"));
    }
    ~LoginManager() { QDBusConnection::disconnectFromBus(QStringLiteral("login")); }
    LoginManager(const LoginManager&) = delete;
    LoginManager& operator=(const LoginManager&) = delete;

    void announceSleep(bool going) const {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                                 QStringLiteral("org.freedesktop.login1.Manager"),
                                                 QStringLiteral("PrepareForSleep"));
        signal << going;
        bus_.send(signal);
    }

private:
    QDBusConnection bus_;
};

class Day {
public:
    explicit Day(DayPlace& place) : place_(place), login_(place.systemBus()) {}

    // A part of it, which begins and ends with the program Off. Whether nothing stays on the
    // screen.
    [[nodiscard]] bool live() {
        place_.setMode("highlight");
        move(motions);
        place_.cover(true);
        atPace(clicksPerSecond, clicks / clicksPerSecond, [&](int step) {
            place_.move(step_++);
            place_.click(step % 2 == 1);
        });
        place_.cover(false);
        repeat(sleeps, [&](bool going) { login_.announceSleep(going); });
        repeat(locks, [&](bool locked) { place_.lock(locked); });
        repeat(displayChanges / 2, [&](bool both) { place_.useDisplays(both ? 2 : 1); });
        atPace(modeChangesPerSecond, modeChanges / modeChangesPerSecond, [&](int step) {
            place_.move(step_++);
            place_.setMode(step % 2 == 0 ? "laser" : "highlight");
        });
        for (int i = 0; i < openings; ++i) {
            place_.openPanel();
            place_.closePanel();
        }
        place_.setMode("off");
        place_.rest();
        return desktop::waitFor([&] { return place_.isBlank(); });
    }

private:
    void move(int count) {
        atPace(motionsPerSecond, count / motionsPerSecond, [&](int) { place_.move(step_++); });
        QCoreApplication::processEvents();
    }
    // Each time there and back.
    void repeat(int times, const std::function<void(bool)>& change) {
        for (int i = 0; i < 2 * times; ++i) {
            change(i % 2 == 0);
            move(100);
        }
    }

    DayPlace& place_;
    LoginManager login_;
    int step_ = 0;
};

} // namespace

Report spendDay(DayPlace& place, const Effort& effort) {
    Day day(place);
    const auto morning = place.holdings();
    // Compositors that draw by software grow in the first hours with nothing of ours shown.
    bool blank = day.live() && (effort.partsOfDay < parts || day.live());
    const auto noon = place.holdings();
    for (int part = 2; part < effort.partsOfDay; ++part) {
        blank = day.live() && blank;
    }
    const auto evening = place.holdings();
    bool held = true;
    std::ostringstream text;
    for (std::size_t i = 0; i < evening.size(); ++i) {
        held = held && evening[i].amount <= noon[i].amount + noon[i].growth;
        text << (i > 0 ? "; " : "") << evening[i].what << ' ' << morning[i].amount << ", "
             << noon[i].amount << ", " << evening[i].amount << evening[i].unit;
    }
    const auto errors = place.errors();
    const auto name = "a day's use in " + place.name() + ": ";
    return {.rows = {},
            .checks = {{.name = name + "held in the morning, at noon and in the evening",
                        .met = held,
                        .found = text.str()},
                       {.name = name + "marks left on the screen",
                        .met = blank,
                        .found = blank ? "none" : "some"},
                       {.name = name + "errors written",
                        .met = errors.empty(),
                        .found = errors.empty() ? "none" : errors}}};
}

} // namespace vantrel::bench
