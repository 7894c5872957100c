#pragma once

#include "overlay/drawn_cursor.h"
#include "platform/desktop.h"
#include "platform/layers/layer.h"
#include "platform/layers/sprite_scene.h"
#include "platform/subscription.h"
#include "testdesk/headless/clock.h"
#include "testdesk/headless/faults.h"
#include "testdesk/headless/hot_keys.h"
#include "testdesk/headless/main_queue.h"
#include "testdesk/headless/session.h"
#include "testdesk/headless/user_defaults.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// A desktop in memory, driven by whoever holds it. It watches its caller: what a real desktop would
// punish with a stuck window or a stray event is listed in faults().

namespace vantrel::headless {

class Pointer final : public vantrel::Pointer {
public:
    [[nodiscard]] std::optional<GlobalPoint> location() override {
        ++queries;
        return known ? std::optional(place) : std::nullopt;
    }

    GlobalPoint place;
    bool known = true;
    int queries = 0;
};

class Screens final : public vantrel::Screens {
public:
    [[nodiscard]] const std::vector<Screen>& list() const override { return screens_; }
    Subscription onChange(std::function<void()> callback) override {
        return changes_.add(std::move(callback));
    }
    Subscription onLayoutChange(std::function<void()> callback) override {
        return layoutChanges_.add(std::move(callback));
    }
    void set(std::vector<Screen> screens) {
        std::swap(screens_, screens);
        if (!haveSameLayout(screens_, screens)) {
            layoutChanges_.notify();
        }
        changes_.notify();
    }

private:
    std::vector<Screen> screens_;
    Observers<> changes_;
    Observers<> layoutChanges_;
};

class OverlayWindow;
class DisplayLink;

class DisplayLinks final : public vantrel::DisplayLinks {
public:
    std::unique_ptr<vantrel::DisplayLink> create(const Screen& screen, FrameRateRange range,
                                                 std::function<void()> target) override;
    // One frame of every link.
    void fire();

    [[nodiscard]] std::size_t count() const { return links_.size(); }
    // Of the link that was made last.
    std::uint32_t lastScreenId = 0;
    FrameRateRange lastRange;

private:
    friend class DisplayLink;
    std::vector<DisplayLink*> links_;
};

// What an overlay window was told to show, counted.
struct SpriteCounts {
    int uploads = 0;
    int redraws = 0;
    int places = 0;

    bool operator==(const SpriteCounts&) const = default;
};

class OverlayWindows final : public vantrel::OverlayWindows {
public:
    explicit OverlayWindows(Faults& faults) : faults_(faults) {}
    ~OverlayWindows() override;
    OverlayWindows(const OverlayWindows&) = delete;
    OverlayWindows& operator=(const OverlayWindows&) = delete;

    std::unique_ptr<vantrel::OverlayWindow> create(const Screen& screen) override;

    // In the order of their making.
    [[nodiscard]] const std::vector<OverlayWindow*>& windows() const { return windows_; }
    [[nodiscard]] SpriteCounts counts() const;

    bool refusesUploads = false;

private:
    friend class OverlayWindow;
    Faults& faults_;
    std::vector<OverlayWindow*> windows_;
};

class OverlayWindow final : public vantrel::OverlayWindow, private SpriteSink {
public:
    OverlayWindow(OverlayWindows& owner, const Screen& screen);
    ~OverlayWindow() override;
    OverlayWindow(const OverlayWindow&) = delete;
    OverlayWindow& operator=(const OverlayWindow&) = delete;

    [[nodiscard]] GlobalRect frame() const override { return screen_.frame; }
    void setRootLayer(Layer& layer) override { root_ = &layer; }
    void orderFront() override { front_ = true; }

    [[nodiscard]] bool isFront() const { return front_; }
    [[nodiscard]] const Layer* rootLayer() const { return root_; }
    // What the reference painter makes of the tree.
    [[nodiscard]] QImage picture(double mediaTime) const;
    // What the sprites of the last flush add up to.
    [[nodiscard]] QImage screenshot() const;

    void flush(double mediaTime);

    SpriteCounts counts;

private:
    struct Sprite {
        QImage picture;
        std::optional<QPoint> place;
    };

    bool upload(SpriteId sprite, const QImage& picture, const QRect& changed) override;
    void place(SpriteId sprite, QPoint topLeft) override;
    void hide(SpriteId sprite) override;
    void remove(SpriteId sprite) override;
    [[nodiscard]] QSize pixels() const;

    OverlayWindows& owner_;
    Screen screen_;
    Layer* root_ = nullptr;
    bool front_ = false;
    SpriteScene scene_;
    std::map<SpriteId, Sprite> sprites_;
};

class Transaction final : public vantrel::Transaction {
public:
    Transaction(OverlayWindows& windows, const Clock& clock, Faults& faults)
        : windows_(windows), clock_(clock), faults_(faults) {}

    void begin() override;
    void commit() override;
    void flush() override;

    int commits = 0;
    int flushes = 0;
    bool watchesLayers = true; // which takes memory for every commit

private:
    OverlayWindows& windows_;
    const Clock& clock_;
    Faults& faults_;
    bool open_ = false;
    std::map<std::uint64_t, std::uint64_t> committed_; // revisions of root layers, by id
};

class EventMonitors final : public vantrel::EventMonitors {
public:
    explicit EventMonitors(Faults& faults) : faults_(faults) {}
    ~EventMonitors() override;
    EventMonitors(const EventMonitors&) = delete;
    EventMonitors& operator=(const EventMonitors&) = delete;

    std::optional<Token> addGlobal(EventMask mask, GlobalHandler handler) override;
    std::optional<Token> addLocal(EventMask mask, LocalHandler handler) override;
    void remove(Token token) override;

    // To the monitors that a real desktop would call: the local ones when the event has a window.
    void send(const Event& event);

    [[nodiscard]] std::size_t globalCount() const { return global_.size(); }
    [[nodiscard]] std::size_t localCount() const { return local_.size(); }

    bool refusesGlobal = false;
    bool refusesLocal = false;
    int installs = 0;

private:
    template <typename Handler>
    struct Monitor {
        EventMask mask = 0;
        Handler handler;
    };

    Faults& faults_;
    Token lastToken_ = 0;
    std::map<Token, Monitor<GlobalHandler>> global_;
    std::map<Token, Monitor<LocalHandler>> local_;
};

class Marks final : public vantrel::Marks {
public:
    [[nodiscard]] MarksState state() const override { return state_; }
    [[nodiscard]] std::string_view drawer() const override { return "memory"; }
    [[nodiscard]] bool seesPresses() const override { return hearsPresses; }
    [[nodiscard]] Subscription onChange(std::function<void()> callback) override {
        return changes_.add(std::move(callback));
    }
    void show(const Effect& effect) override { shown = effect; }
    void clear() override { shown.reset(); }
    void enable() override { ++enables; }

    void set(MarksState state) {
        state_ = state;
        changes_.notify();
    }

    std::optional<Effect> shown;
    int enables = 0;
    bool hearsPresses = true;

private:
    MarksState state_ = MarksState::none;
    Observers<> changes_;
};

// All of it.
struct Desktop {
    Faults faults;
    Clock clock;
    Pointer pointer;
    Screens screens;
    DisplayLinks displayLinks;
    OverlayWindows overlayWindows{faults};
    Transaction transaction{overlayWindows, clock, faults};
    EventMonitors eventMonitors{faults};
    HotKeys hotKeys{faults};
    Marks marks;
    MainQueue mainQueue{clock};
    UserDefaults userDefaults;
    LoginItem loginItem;
    Workspace workspace;
    Bundle bundle;
    Locale locale;
    AlertSound alertSound;
    Keyboard keyboard;
    StatusItem statusItem;
    Application application;
    DrawnCursor cursors;

    operator vantrel::Desktop();
    // Time goes on, and then a frame comes.
    void frame(double seconds = 1.0 / 60);
};

} // namespace vantrel::headless
