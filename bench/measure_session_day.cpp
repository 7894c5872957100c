#include "day.h"
#include "measurements.h"

#include "platform/gnome/shell_report.h"
#include "testdesk/gnome_session.h"
#include "testdesk/kwin_session.h"
#include "testdesk/private_bus.h"
#include "testdesk/program_of.h"
#include "testdesk/usage.h"
#include "testdesk/vantrel_program.h"
#include "testdesk/wait.h"

#include <optional>
#include <stdexcept>
#include <thread>

#include <linux/input-event-codes.h>

namespace vantrel::bench {
namespace {

using namespace std::chrono_literals;

// Where the compositor draws the marks.
template <typename Session>
class DayInSession : public DayPlace {
public:
    DayInSession(const typename Session::Options& options, std::string program)
        : session_(options),
          program_(session_, std::move(program),
                   {{"DBUS_SYSTEM_BUS_ADDRESS", systemBus_.address()}}) {}

    [[nodiscard]] std::string systemBus() const override { return systemBus_.address(); }

    void click(bool right) override { session_.click(right ? BTN_RIGHT : BTN_LEFT); }
    void cover(bool covered) override {
        // The desktop has a menu at right clicks, so none may come to it.
        if (covered) {
            other_.emplace(session_.startFullScreenWindow());
            await(
                [&] {
                    session_.click(BTN_LEFT);
                    return other_->count("press") > 0;
                },
                "let a window have its clicks");
        } else {
            for (std::ptrdiff_t clicks = -1; clicks != other_->count("press");) {
                clicks = other_->count("press");
                std::this_thread::sleep_for(100ms);
            }
            other_.reset();
        }
    }
    void setMode(const std::string& mode) override {
        if (!program_.takes(mode)) {
            throw std::runtime_error("the program does not take " + mode);
        }
    }
    void openPanel() override {
        press();
        await([&] { return hasKeyboard(); }, "open");
    }
    void closePanel() override {
        type(KEY_ESC);
        await([&] { return !hasKeyboard(); }, "close");
    }

    [[nodiscard]] std::vector<Holding> holdings() override {
        const auto held = [](const char* what, std::uint64_t bytes, std::uint64_t percent) {
            const auto kibibytes = bytes / 1024;
            return Holding{what, kibibytes, kibibytes * percent / 100, " KiB"};
        };
        return {held("compositor", compositorBytes(), compositorGrowth()),
                held("program", desktop::ownBytes(process_->pid()), 5)};
    }
    [[nodiscard]] bool isBlank() const override {
        // Without the top bar.
        const auto part = session_.picture().copy(0, 40, 1280, 680);
        QImage black(part.size(), part.format());
        black.fill(Qt::black);
        return part == black;
    }
    [[nodiscard]] std::string errors() const override {
        return program_.errors() + session_.complaints();
    }

protected:
    // On its item, by which the panel opens.
    virtual void press() = 0;
    virtual void type(int key) = 0;
    [[nodiscard]] virtual bool hasKeyboard() const = 0;
    [[nodiscard]] virtual std::uint64_t compositorBytes() const {
        return desktop::ownBytes(session_.pid());
    }

    // From noon to evening, in percent.
    [[nodiscard]] virtual std::uint64_t compositorGrowth() const { return 20; }

    void start() {
        desktop::writePreferences(session_.folder() / "config", desktop::preferencesShowing("off"));
        process_.emplace(program_.start());
        if (!program_.takesCommands()) {
            throw std::runtime_error("the program takes no commands");
        }
    }
    void await(const std::function<bool()>& condition, const std::string& what) const {
        if (!desktop::waitFor(condition)) {
            throw std::runtime_error("the program or its panel does not " + what);
        }
    }

    Session session_;

private:
    // On which the day says that the machine sleeps; the session may have one of its own.
    desktop::PrivateBus systemBus_{session_.folder() / "system-bus"};
    desktop::ProgramOf<Session> program_;
    std::optional<desktop::ChildProcess> process_;
    std::optional<desktop::NativeWindow> other_;
};

class DayInGnome final : public DayInSession<desktop::GnomeSession> {
public:
    explicit DayInGnome(const Contenders& contenders)
        : DayInSession(
              {.monitors = {"1280x720", "1280x720"}, .dataFolder = contenders.dataFolder()},
              contenders.program.command.front()) {
        lossAtChange_ = ownLossAtChange();
        session_.switchExtension(extensionFor(QString::number(session_.version())), true);
        start();
        await([&] { return item().is_array() && item().front().is_number(); }, "have an item");
        useDisplays(1);
        rest();
    }

    [[nodiscard]] std::string name() const override { return "GNOME"; }
    void move(int step) override {
        const auto [x, y] = onCircle(step, 1);
        session_.moveBy(x, y);
    }
    void lock(bool locked) override {
        session_.evaluate(std::string("Main.sessionMode.") + (locked ? "push" : "pop") +
                          "Mode('unlock-dialog'); 1");
    }
    void useDisplays(int count) override {
        showOn(count);
        // Version 6.4 of the toolkit falls over a display that goes before the shell has described
        // it.
        for (int turn = 0; turn < 2; ++turn) {
            setMode("status");
            session_.evaluate("1");
        }
    }
    void rest() override { session_.moveTo(640, 360); }

private:
    void showOn(int count) {
        session_.showOn(std::vector<double>(static_cast<std::size_t>(count), 1));
        ++changes_;
    }
    // The shell loses as much as a picture of the screen or more at each change of the displays,
    // with nothing of ours in it.
    [[nodiscard]] std::uint64_t ownLossAtChange() {
        showOn(1);
        const auto before = compositorBytes();
        constexpr int times = 4;
        for (int i = 0; i < times; ++i) {
            showOn(i % 2 == 0 ? 2 : 1);
        }
        return (compositorBytes() - before) / times;
    }
    [[nodiscard]] std::uint64_t compositorBytes() const override {
        // What its scripts are done with goes in several turns.
        for (int turn = 0; turn < 5; ++turn) {
            session_.evaluate("imports.system.gc(); 1");
            std::this_thread::sleep_for(100ms);
        }
        return DayInSession::compositorBytes() - changes_ * lossAtChange_;
    }
    // Such a day in which no mark is shown was seen to take 23: the shell draws by software here.
    [[nodiscard]] std::uint64_t compositorGrowth() const override { return 35; }
    // Where it is, as soon as there is one and the shell has laid it out.
    [[nodiscard]] nlohmann::json item() const {
        return session_.evaluate("Main.panel.statusArea.vantrel?.get_transformed_position()");
    }
    void press() override {
        const auto isReached = [&] {
            return session_.evaluate("Main.panel.statusArea.vantrel?.has_pointer") == true;
        };
        if (!isReached()) {
            const auto place = item();
            session_.moveTo(place.at(0).get<double>() + 8, place.at(1).get<double>() + 8);
            await(isReached, "have the pointer on its item");
        }
        session_.click(BTN_LEFT);
    }
    void type(int key) override {
        session_.type(key, true);
        session_.type(key, false);
    }
    [[nodiscard]] bool hasKeyboard() const override {
        return session_.evaluate("global.display.focus_window?.get_wm_class() === 'vantrel'") ==
               true;
    }

    std::uint64_t changes_ = 0; // of the displays
    std::uint64_t lossAtChange_ = 0;
};

class DayInKWin final : public DayInSession<desktop::KWinSession> {
public:
    explicit DayInKWin(const Contenders& contenders)
        : DayInSession({.outputs = 2,
                        .xwayland = true,
                        .locks = true,
                        .dataFolder = contenders.dataFolder()},
                       contenders.program.command.front()) {
        start();
        useDisplays(1);
        rest();
    }

    [[nodiscard]] std::string name() const override { return "KWin"; }
    void move(int step) override {
        const auto [x, y] = onCircle(step, 160);
        // It takes only so many at a time.
        const auto send =
            step % 100 == 0 ? &desktop::KWinClient::moveTo : &desktop::KWinClient::sendTo;
        (session_.client().*send)(640 + x, 360 + y);
    }
    void lock(bool locked) override {
        locked ? session_.lock() : session_.unlock();
        const auto saver = QStringLiteral("org.freedesktop.ScreenSaver");
        await(
            [&] {
                return session_
                           .call(saver, QStringLiteral("/ScreenSaver"),
                                 "org.freedesktop.ScreenSaver", "GetActive")
                           .arguments() == QVariantList{locked};
            },
            locked ? "see the screen locked" : "see it unlocked");
    }
    void useDisplays(int count) override { session_.client().enableOutput(1, count == 2); }
    void rest() override { session_.client().moveTo(640, 360); }

private:
    void press() override {
        session_.call(QStringLiteral("org.vantrel.Vantrel"), QStringLiteral("/StatusNotifierItem"),
                      "org.kde.StatusNotifierItem", "Activate", {0, 0});
    }
    void type(int key) override {
        session_.client().type(key, true);
        session_.client().type(key, false);
    }
    [[nodiscard]] bool hasKeyboard() const override {
        return session_.evaluate("String((workspace.activeWindow || workspace.activeClient || {})"
                                 ".resourceClass) === 'vantrel'") == true;
    }
};

template <typename Place>
Report spendDayIn(const Contenders& contenders, const Effort& effort) {
    if (!contenders.reacts) {
        return {};
    }
    Place place(contenders);
    return spendDay(place, effort);
}

} // namespace

Report measureGnomeDay(const Contenders& contenders, const Effort& effort) {
    return spendDayIn<DayInGnome>(contenders, effort);
}

Report measureKWinDay(const Contenders& contenders, const Effort& effort) {
    return spendDayIn<DayInKWin>(contenders, effort);
}

} // namespace vantrel::bench
