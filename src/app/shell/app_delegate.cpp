#include "app/shell/app_delegate.h"

#include "app/shell/status_icon.h"
#include "app/shell/window_activation.h"
#include "app/shell/window_plan.h"
#include "ui/help_view.h"
#include "ui/menu_panel.h"
#include "ui/settings_view.h"
#include "ui/welcome_view.h"
#include "ui/window_size.h"

#include <QGuiApplication>
#include <QPointer>
#include <QShortcut>

#include <algorithm>
#include <utility>

namespace vantrel {

namespace {

constexpr auto settingsShortcut = "Ctrl+,";

} // namespace

AppDelegate::AppDelegate(const Desktop& desktop)
    : desktop_(desktop),
      store_(desktop.userDefaults, std::string(preferencesKey)),
      state_(store_, desktop),
      view_(state_, desktop),
      popover_(desktop.application, desktop.eventMonitors, desktop.clock) {}

void AppDelegate::applicationDidFinishLaunching(const Command& command) {
    desktop_.statusItem.setAction([this] { togglePopover(); });
    listenForShortcuts(popover_);
    state_.openWindow = [this](AppWindow window) { open(window); };
    observeMode();
    view_.follow(this, [this] { updateMenu(); });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &AppDelegate::noteUse);
    later([this, command] { launch(command); });
    subscriptions_.push_back(desktop_.workspace.onWillSleep([this] { sleep(); }));
    subscriptions_.push_back(desktop_.workspace.onDidWake([this] { wake(); }));
}

void AppDelegate::later(std::function<void()> task) {
    desktop_.mainQueue.async([self = QPointer(this), task = std::move(task)] {
        if (self) {
            task();
        }
    });
}

void AppDelegate::launch(const Command& command) {
    if (command.setsMode()) {
        // In place of the last one, which would be seen for a moment otherwise.
        state_.setMode(command.mode);
    }
    state_.startUp();
    if (command.opensSettings()) {
        open(AppWindow::settings);
    } else if (!desktop_.userDefaults.boolean(welcomeDismissedKey)) {
        open(AppWindow::welcome);
    }
}

CommandAnswer AppDelegate::carryOut(const Command& command) {
    if (command.withSettings) {
        open(AppWindow::settings);
    }
    switch (command.action) {
    case Command::Action::start:
        applicationShouldHandleReopen(hasVisibleWindows());
        break;
    case Command::Action::startWithSettings:
    case Command::Action::openSettings:
        open(AppWindow::settings);
        break;
    case Command::Action::setMode:
        state_.setMode(command.mode);
        break;
    case Command::Action::toggle:
        state_.handleShortcut(command.mode);
        break;
    case Command::Action::reportStatus:
        return {.text = status().mode};
    case Command::Action::reportStatusAsJson:
        return {.text = toJson(status())};
    case Command::Action::quit:
        desktop_.application.terminate();
        break;
    }
    return {};
}

ProgramStatus AppDelegate::status() const {
    return programStatus(state_, desktop_);
}

void AppDelegate::observeMode() {
    showMode();
    subscriptions_.push_back(state_.mode().observe([this](CursorMode /*mode*/) {
        // The marks come first: the tray takes longer than they do.
        later([this] {
            showMode();
            resizePopover();
        });
    }));
}

void AppDelegate::showMode() {
    const auto mode = state_.mode().get();
    if (std::exchange(shownMode_, mode) != mode) {
        desktop_.statusItem.setImage(statusIcon(mode), statusDescription(mode));
    }
}

void AppDelegate::applicationDidBecomeActive() {
    state_.apply();
    state_.syncLaunchAtLogin();
}

void AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
    if (!hasVisibleWindows) {
        open(AppWindow::settings);
        return;
    }
    QWidget* front = nullptr;
    for (const auto& [key, window] : windows_) {
        if (window->isVisible()) {
            window->raise();
            front = window.get() == lastUsed_ || front == nullptr ? window.get() : front;
        }
    }
    if (front != nullptr) {
        showActive(*front, desktop_.application);
    }
}

void AppDelegate::applicationWillTerminate() {
    state_.suspend();
}

void AppDelegate::sleep() {
    asleep_ = true;
    state_.suspend();
}

void AppDelegate::wake() {
    asleep_ = false;
    later([this] {
        if (!asleep_) {
            state_.wake();
        }
    });
}

void AppDelegate::open(AppWindow window) {
    popover_.performClose();
    const auto key = keyOf(window);
    const QSize size = contentSizeOf(window);
    auto& place = windows_[key];
    if (place) {
        showActive(*place, desktop_.application);
        return;
    }
    place = makeWindow(size, makeContent(window).release());
    listenForShortcuts(*place);
    showActive(*place, desktop_.application,
               [made = place.get(), size] { placeWithFrame(*made, size); });
}

void AppDelegate::noteUse(const QWindow* focused) {
    while (focused != nullptr && focused->transientParent() != nullptr) {
        focused = focused->transientParent();
    }
    for (const auto& [key, window] : windows_) {
        if (focused != nullptr && window->windowHandle() == focused) {
            lastUsed_ = window.get();
        }
    }
}

void AppDelegate::openAbout() {
    state_.selectTab(SettingsTab::about);
    open(AppWindow::settings);
}

std::unique_ptr<QWidget> AppDelegate::makeContent(AppWindow window) {
    switch (window) {
    case AppWindow::settings:
        return std::make_unique<SettingsView>(view_);
    case AppWindow::welcome:
        return std::make_unique<WelcomeView>(view_, [this] {
            if (auto* welcome = this->window(AppWindow::welcome)) {
                welcome->close();
            }
        });
    case AppWindow::help:
        return std::make_unique<HelpView>(view_);
    }
    return nullptr;
}

void AppDelegate::listenForShortcuts(QWidget& window) {
    auto* settings = new QShortcut(QKeySequence(QLatin1String(settingsShortcut)), &window);
    connect(settings, &QShortcut::activated, this, [this] { open(AppWindow::settings); });
}

QWidget* AppDelegate::window(AppWindow window) const {
    const auto found = windows_.find(keyOf(window));
    return found == windows_.end() ? nullptr : found->second.get();
}

bool AppDelegate::hasVisibleWindows() const {
    return std::ranges::any_of(windows_,
                               [](const auto& entry) { return entry.second->isVisible(); });
}

void AppDelegate::togglePopover() {
    if (popover_.closedByThisPress()) {
        return;
    }
    if (popover_.isVisible()) {
        popover_.performClose();
    } else {
        showPopover();
    }
}

void AppDelegate::showPopover() {
    provideWindowIcon();
    if (!popover_.hasContent()) {
        popover_.setContent(new MenuPanel(view_));
    }
    popover_.placeAt(desktop_.statusItem.place());
    showActive(popover_, desktop_.application, [this] { popover_.place(); });
}

void AppDelegate::resizePopover() {
    popover_.fitContent();
}

std::vector<MenuEntry> AppDelegate::menu() {
    const auto say = [this](const Text& text) { return view_.say(text).toStdString(); };
    std::vector<MenuEntry> entries;
    for (const auto mode : allCases<CursorMode>()) {
        entries.push_back({.title = state_.title(mode),
                           .action = [this, mode] { state_.setMode(mode); },
                           .checked = state_.mode().get() == mode});
    }
    entries.push_back({});
    entries.push_back(
        {.title = say({"Show Panel", "显示面板"}), .action = [this] { showPopover(); }});
    entries.push_back({.title = say({"Settings…", "设置…"}),
                       .action = [this] { open(AppWindow::settings); },
                       .shortcut = settingsShortcut});
    entries.push_back(
        {.title = say({"About Vantrel", "关于 Vantrel"}), .action = [this] { openAbout(); }});
    entries.push_back(
        {.title = say({"Help", "帮助"}), .action = [this] { open(AppWindow::help); }});
    entries.push_back({});
    entries.push_back(
        {.title = say({"Quit", "退出"}), .action = [this] { desktop_.application.terminate(); }});
    return entries;
}

void AppDelegate::updateMenu() {
    auto entries = menu();
    if (!std::ranges::equal(entries, shownMenu_, &MenuEntry::looksLike)) {
        shownMenu_ = entries;
        desktop_.statusItem.setMenu(std::move(entries));
    }
}

} // namespace vantrel
