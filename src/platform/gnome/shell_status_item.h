#pragma once

#include "platform/freedesktop/tray_status_item.h"
#include "platform/gnome/shell_extension.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vantrel {

// The item of a tray, and while there is none, one in the top bar of GNOME Shell.
class ShellStatusItem final : public StatusItem {
public:
    // Both must outlive the item, which is the only one to use that of the tray.
    ShellStatusItem(ShellExtension& extension, TrayStatusItem& tray);

    void setAction(std::function<void()> action) override;
    void setImage(const QIcon& image, const std::string& description) override;
    void setMenu(std::vector<MenuEntry> entries) override;
    [[nodiscard]] std::optional<QRect> place() const override;

private:
    void click(const QRect& place);
    void choose(std::uint32_t number) const;
    void update();

    ShellExtension& extension_;
    TrayStatusItem& tray_;
    std::function<void()> action_;
    std::vector<MenuEntry> entries_;
    ShellItem item_;
    std::optional<QRect> place_; // of the latest click in the top bar
};

} // namespace vantrel
