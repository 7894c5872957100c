#pragma once

#include "app/shell/popover.h"
#include "app/state/app_state.h"
#include "app/state/command.h"
#include "app/state/program_status.h"
#include "platform/control.h"
#include "platform/desktop.h"
#include "ui/components/toolkit_language.h"
#include "ui/components/view_context.h"

#include <QObject>
#include <QWindow>

#include <map>
#include <memory>
#include <optional>
#include <string_view>

namespace vantrel {

// The program around its state: the status item with its menu and its popover, the windows, and
// what the desktop announces.
class AppDelegate final : public QObject {
public:
    // The desktop must outlive the delegate.
    explicit AppDelegate(const Desktop& desktop);

    // Once, with the command that the program was started for. What it opens or switches on comes
    // in a later turn of the main queue.
    void applicationDidFinishLaunching(const Command& command);
    void applicationDidBecomeActive();
    // The program was started again while it runs.
    void applicationShouldHandleReopen(bool hasVisibleWindows);
    // A command to the running program. A start is answered as a reopen.
    CommandAnswer carryOut(const Command& command);
    void applicationWillTerminate();
    void wake();
    void sleep();

    // Shows a window, which is made when it is asked for the first time and kept from then on.
    void open(AppWindow window);
    void openAbout();
    // A click on the status item.
    void togglePopover();
    void showPopover();
    // Fits the popover to the panel in it.
    void resizePopover();

    [[nodiscard]] AppState& state() { return state_; }
    [[nodiscard]] ProgramStatus status() const;
    [[nodiscard]] const Popover& popover() const { return popover_; }
    // Null while it was never opened.
    [[nodiscard]] QWidget* window(AppWindow window) const;
    [[nodiscard]] bool hasVisibleWindows() const;

private:
    // In a later turn of the main queue, unless the delegate is gone by then.
    void later(std::function<void()> task);
    void launch(const Command& command);
    void observeMode();
    void showMode();
    void updateMenu();
    [[nodiscard]] std::vector<MenuEntry> menu();
    [[nodiscard]] std::unique_ptr<QWidget> makeContent(AppWindow window);
    void listenForShortcuts(QWidget& window);
    void noteUse(const QWindow* focused);

    const Desktop desktop_;
    SettingsStore store_;
    AppState state_;
    ViewContext view_;
    ToolkitLanguage toolkitLanguage_{view_};
    Popover popover_;
    std::map<std::string_view, std::unique_ptr<QWidget>> windows_;
    const QWidget* lastUsed_ = nullptr; // of the windows
    bool asleep_ = false;
    std::vector<MenuEntry> shownMenu_;
    std::optional<CursorMode> shownMode_; // by the status item
    std::vector<Subscription> subscriptions_;
};

} // namespace vantrel
