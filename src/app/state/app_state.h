#pragma once

#include "app/state/observable.h"
#include "input/click_monitor.h"
#include "input/hotkey_manager.h"
#include "overlay/overlay_window_manager.h"
#include "platform/desktop.h"
#include "preferences/release_links.h"
#include "preferences/settings_store.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

// The tabs of the settings window, in their order.
enum class SettingsTab : std::uint8_t { appearance, effects, controls, general, about };

template <>
struct CasesOf<SettingsTab> {
    static constexpr CaseTable<SettingsTab, 5> table{{{SettingsTab::appearance, "appearance"},
                                                      {SettingsTab::effects, "effects"},
                                                      {SettingsTab::controls, "controls"},
                                                      {SettingsTab::general, "general"},
                                                      {SettingsTab::about, "about"}}};
};

// The windows that can be asked for.
enum class AppWindow : std::uint8_t { settings, welcome, help };

// The one coordinator of the running application. It owns the live preferences, the mode and what
// acts on the desktop for them, and every change goes through it.
class AppState {
public:
    // How long the preferences must have rested before they are saved, in seconds.
    static constexpr double saveDelay = 0.25;
    // How long the pointer may be away, in seconds, before that is worth a word.
    static constexpr double pointerPatience = 2;

    // Loads the preferences and registers the shortcuts; shows nothing yet. The store and the
    // desktop must outlive the state.
    AppState(SettingsStore& store, const Desktop& desktop);
    ~AppState() = default;
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    [[nodiscard]] const Observable<AppPreferences>& preferences() const { return preferences_; }
    [[nodiscard]] const Observable<CursorMode>& mode() const { return mode_; }
    // Of the marks that the desktop itself draws. While they are available they stand in for the
    // overlays and the click monitor.
    [[nodiscard]] const Observable<MarksState>& marks() const { return marks_; }
    // By what marks are shown now.
    [[nodiscard]] SessionMeans means() const;
    // False while it should be followed and a compositor that does so as a rule does not tell where
    // it is.
    [[nodiscard]] const Observable<bool>& pointerKnown() const { return pointerKnown_; }
    // False only when presses should be seen and cannot be.
    [[nodiscard]] const Observable<bool>& clickAvailable() const { return clickAvailable_; }
    // One of the hotkeyerror texts, if the shortcuts have a problem.
    [[nodiscard]] const Observable<std::optional<std::string>>& hotkeyError() const {
        return hotkeyError_;
    }
    // About the login item, in the language of the moment in which it was made.
    [[nodiscard]] const Observable<std::optional<std::string>>& systemMessage() const {
        return systemMessage_;
    }
    [[nodiscard]] const Observable<SettingsTab>& selectedTab() const { return selectedTab_; }

    // The way of every change of a preference: applied at once, saved after saveDelay.
    void setPreferences(AppPreferences preferences);
    // The same for some fields.
    template <typename Change>
    void changePreferences(Change change) {
        auto preferences = preferences_.get();
        change(preferences);
        setPreferences(std::move(preferences));
    }

    void setMode(CursorMode mode);
    void selectTab(SettingsTab tab) { selectedTab_.set(tab); }
    // A pressed shortcut: switches to the mode, or off when it is on already.
    void handleShortcut(CursorMode mode);
    // Brings overlays and click monitoring in line with mode and preferences.
    void apply();

    void enableMarks() { desktop_.marks.enable(); }

    // Once, at launch: the mode of the last run comes back.
    void startUp();
    // Before sleep and at the end: saves at once and leaves the screen.
    void suspend();
    // After sleep.
    void wake();

    void resetPreferences();
    // Takes the login item's status into the preferences.
    void syncLaunchAtLogin();
    void setLaunchAtLogin(bool enabled);

    // Whether texts are shown in English now; in Chinese otherwise.
    [[nodiscard]] bool english() const;
    [[nodiscard]] std::string title(CursorMode mode) const;
    // Of what the shortcut of highlight or laser does.
    [[nodiscard]] std::string shortcutTitle(CursorMode mode) const;
    // Opens the link, or the help window when there is none or nothing that opens it.
    void openLink(ReleaseLink link);

    // Shows a window; installed by whoever has windows.
    std::function<void(AppWindow)> openWindow;

private:
    void preferencesDidChange();
    void registerShortcuts();
    void scheduleSave();
    void showMarks();
    void watchPointer();
    [[nodiscard]] bool wantsClicks() const;
    [[nodiscard]] std::string chosen(std::string_view english, std::string_view chinese) const;

    SettingsStore& store_;
    const Desktop desktop_;
    Observable<AppPreferences> preferences_;
    Observable<CursorMode> mode_{CursorMode::off};
    Observable<MarksState> marks_{MarksState::none};
    Observable<bool> pointerKnown_{true};
    Observable<bool> clickAvailable_{false};
    Observable<std::optional<std::string>> hotkeyError_;
    Observable<std::optional<std::string>> systemMessage_;
    Observable<SettingsTab> selectedTab_{SettingsTab::appearance};
    OverlayWindowManager overlays_;
    ClickMonitor clicks_;
    HotkeyManager hotkeys_;
    Subscription saveTask_;
    Subscription pointerTask_;
    Subscription marksChanges_;
    bool suspended_ = true;
};

} // namespace vantrel
