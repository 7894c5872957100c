#pragma once

#include "support/components_fixture.h"
#include "ui/components/scroll_view.h"
#include "ui/help_view.h"
#include "ui/menu_panel.h"
#include "ui/settings_view.h"
#include "ui/welcome_view.h"

#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QScrollBar>
#include <QTemporaryDir>

#include <fstream>

namespace vantrel {

// Whole views, in windows of their own.
class ViewsTest : public ViewTest {
protected:
    using ViewTest::ViewTest;

    void SetUp() override {
        desktop.screens.set({screen(1, {0, 0, 1920, 1080})});
        state.apply();
    }
    template <typename View, typename... Arguments>
    View& open(Arguments&&... arguments) {
        auto opened = std::make_unique<View>(view, std::forward<Arguments>(arguments)...);
        auto& shown = *opened;
        window = std::move(opened);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        update();
        return shown;
    }
    SettingsView& openSettings(SettingsTab tab) {
        state.selectTab(tab);
        auto& settings = open<SettingsView>();
        settings.resize(560, 640);
        update();
        return settings;
    }
    void setMode(CursorMode mode) {
        state.setMode(mode);
        update();
    }
    // Whether a visible label says so.
    bool says(const char* text) {
        return std::ranges::any_of(window->findChildren<QLabel*>(), [&](const QLabel* label) {
            return label->isVisible() && label->text() == QString::fromUtf8(text);
        });
    }
    // The visible button with that text or name.
    QAbstractButton* button(const char* name, QWidget* among = nullptr) {
        const auto wanted = QString::fromUtf8(name);
        for (auto* found :
             (among != nullptr ? among : window.get())->findChildren<QAbstractButton*>()) {
            if (found->isVisible() &&
                (found->text() == wanted || found->accessibleName() == wanted)) {
                return found;
            }
        }
        ADD_FAILURE() << "no button shows " << name;
        return nullptr;
    }
    void click(const char* name) {
        button(name)->click();
        update();
    }
    ScrollView* scrolled() {
        for (auto* area : window->findChildren<QScrollArea*>()) {
            if (area->isVisible()) {
                return dynamic_cast<ScrollView*>(area);
            }
        }
        return nullptr;
    }
    std::size_t sectionsBuilt() {
        return static_cast<std::size_t>(window->findChildren<QScrollArea*>().size());
    }
    // Where the Tab key goes, until it comes back to where it began.
    std::vector<std::string> tabStops() {
        std::vector<std::string> stops;
        const auto* first = QApplication::focusWidget();
        for (auto* at = QApplication::focusWidget(); at != nullptr && stops.size() < 40;
             at = QApplication::focusWidget()) {
            const auto* button = qobject_cast<QAbstractButton*>(at);
            const bool named = button == nullptr || !at->accessibleName().isEmpty();
            stops.push_back((named ? at->accessibleName() : button->text()).toStdString());
            QTest::keyClick(window.get(), Qt::Key_Tab);
            if (QApplication::focusWidget() == first) {
                break;
            }
        }
        return stops;
    }
    void configureLinks(const std::string& members) {
        const auto path = folder_.filePath(QStringLiteral("links.plist")).toStdString();
        std::ofstream(path)
            << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" << members
            << "</dict></plist>";
        desktop.bundle.resources["ReleaseConfiguration.plist"] = path;
    }

private:
    QTemporaryDir folder_;
};

} // namespace vantrel
