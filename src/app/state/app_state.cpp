#include "app/state/app_state.h"

#include "overlay/effect.h"
#include "preferences/interface_language.h"

namespace vantrel {

AppState::AppState(SettingsStore& store, const Desktop& desktop)
    : store_(store),
      desktop_(desktop),
      preferences_(store.load()),
      overlays_(desktop),
      clicks_(ClickMonitor::operationsOf(desktop.eventMonitors)),
      hotkeys_(desktop.hotKeys) {
    // All are members: none can call when this object is gone.
    clicks_.onClick = [this](MouseButton button, GlobalPoint point) {
        overlays_.addClick(point, button);
    };
    overlays_.onPointerKnown = [this] { watchPointer(); };
    hotkeys_.onMode = [this](CursorMode mode) { handleShortcut(mode); };
    hotkeys_.onLoss = [this] { registerShortcuts(); };
    registerShortcuts();
    marks_.set(desktop_.marks.state());
    marksChanges_ = desktop_.marks.onChange([this] {
        marks_.set(desktop_.marks.state());
        if (!suspended_) {
            apply();
        }
    });
}

void AppState::setPreferences(AppPreferences preferences) {
    preferences_.set(std::move(preferences));
    preferencesDidChange();
}

void AppState::preferencesDidChange() {
    registerShortcuts();
    scheduleSave();
    apply();
}

void AppState::registerShortcuts() {
    const auto error = hotkeys_.register_(preferences_.get());
    hotkeyError_.set(error ? std::optional(std::string(*error)) : std::nullopt);
}

void AppState::scheduleSave() {
    saveTask_ = desktop_.mainQueue.after(saveDelay,
                                         [this, copy = preferences_.get()] { store_.save(copy); });
}

void AppState::setMode(CursorMode mode) {
    mode_.set(mode);
    if (preferences_.get().lastMode != mode) {
        changePreferences([mode](AppPreferences& preferences) { preferences.lastMode = mode; });
    }
    apply();
}

void AppState::handleShortcut(CursorMode mode) {
    setMode(mode_.get() == mode ? CursorMode::off : mode);
}

SessionMeans AppState::means() const {
    auto offer = desktop_.application.offer();
    offer.marks = marks_.get() == MarksState::available;
    offer.markedPresses = offer.marks && desktop_.marks.seesPresses();
    auto means = meansOf(offer);
    if (means.pointer == Means::cursorSession && !pointerKnown_.get()) {
        means.pointer = Means::none;
    }
    return means;
}

bool AppState::wantsClicks() const {
    const auto effect = effectOf(mode_.get(), preferences_.get());
    return effect.hideAfter || effect.ringOf(MouseButton::left) ||
           effect.ringOf(MouseButton::right);
}

void AppState::apply() {
    suspended_ = false;
    const bool drawnHere = marks_.get() != MarksState::available;
    overlays_.apply(drawnHere ? mode_.get() : CursorMode::off, preferences_.get());
    showMarks();
    watchPointer();
    if (drawnHere && wantsClicks()) {
        clickAvailable_.set(clicks_.start());
    } else {
        clicks_.stop();
        clickAvailable_.set(drawnHere || !wantsClicks() || desktop_.marks.seesPresses());
    }
}

void AppState::showMarks() {
    if (mode_.get() == CursorMode::off) {
        desktop_.marks.clear();
    } else {
        desktop_.marks.show(effectOf(mode_.get(), preferences_.get()));
    }
}

void AppState::watchPointer() {
    const bool isFollowed = mode_.get() != CursorMode::off && !suspended_ &&
                            marks_.get() != MarksState::available &&
                            meansOf(desktop_.application.offer()).pointer == Means::cursorSession;
    pointerTask_.cancel();
    if (!isFollowed || overlays_.knowsPointer()) {
        pointerKnown_.set(true);
    } else {
        pointerTask_ =
            desktop_.mainQueue.after(pointerPatience, [this] { pointerKnown_.set(false); });
    }
}

void AppState::startUp() {
    apply();
    syncLaunchAtLogin();
    setMode(preferences_.get().lastMode);
}

void AppState::suspend() {
    saveTask_.cancel();
    store_.save(preferences_.get());
    suspended_ = true;
    watchPointer();
    clicks_.stop();
    overlays_.stop();
    desktop_.marks.clear();
}

void AppState::wake() {
    apply();
    setMode(preferences_.get().lastMode);
}

void AppState::resetPreferences() {
    setMode(CursorMode::off);
    setPreferences({});
    setLaunchAtLogin(false);
}

void AppState::syncLaunchAtLogin() {
    const bool enabled = desktop_.loginItem.status() == LoginItemStatus::enabled;
    if (preferences_.get().launchAtLogin != enabled) {
        changePreferences(
            [enabled](AppPreferences& preferences) { preferences.launchAtLogin = enabled; });
    }
}

void AppState::setLaunchAtLogin(bool enabled) {
    auto& loginItem = desktop_.loginItem;
    if (!(enabled ? loginItem.register_() : loginItem.unregister())) {
        systemMessage_.set(chosen("Could not change login launch. Run the installed app and retry.",
                                  "无法修改登录启动状态。请从已安装的应用运行并重试。"));
        syncLaunchAtLogin();
        return;
    }
    syncLaunchAtLogin();
    if (loginItem.status() == LoginItemStatus::requiresApproval) {
        systemMessage_.set(chosen("Approve this app in System Settings → General → Login Items.",
                                  "请在系统设置 → 通用 → 登录项中允许启动。"));
    }
}

bool AppState::english() const {
    return usesEnglish(desktop_.locale.preferredLanguages(), preferences_.get().language);
}

std::string AppState::chosen(std::string_view english, std::string_view chinese) const {
    return std::string(this->english() ? english : chinese);
}

std::string AppState::title(CursorMode mode) const {
    switch (mode) {
    case CursorMode::off:
        return chosen("Off", "关闭");
    case CursorMode::highlight:
        return chosen("Highlight", "高亮");
    case CursorMode::laser:
        return chosen("Laser", "激光");
    }
    return {};
}

std::string AppState::shortcutTitle(CursorMode mode) const {
    return mode == CursorMode::highlight ? chosen("Toggle Highlight", "切换高亮")
                                         : chosen("Toggle Laser", "切换激光笔");
}

void AppState::openLink(ReleaseLink link) {
    const auto url = releaseURL(desktop_.bundle, link);
    const bool opened = url && desktop_.workspace.openUrl(*url);
    if (!opened && openWindow) {
        openWindow(AppWindow::help);
    }
}

} // namespace vantrel
