#pragma once

#include "support/headless_fixture.h"
#include "support/offscreen_application.h"
#include "ui/components/background.h"
#include "ui/components/scroll_view.h"
#include "ui/components/view_context.h"
#include "ui/help_view.h"
#include "ui/menu_panel.h"
#include "ui/settings_view.h"
#include "ui/welcome_view.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QtTest/QTest>

#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantrel {

// The application state on a desktop in memory, and a window for whole views or for parts of one.
class ViewsTest : public HeadlessTest {
protected:
    explicit ViewsTest(bool inWaylandSession = false) {
        desktop.application.session = {.wayland = inWaylandSession, .xwayland = inWaylandSession};
    }

    void SetUp() override {
        desktop.screens.set({screen(1, {0, 0, 1920, 1080})});
        state.apply();
    }
    // Puts a part into a window.
    void show(QWidget* part) { open(std::make_unique<VantrelBackground>(part)); }
    static void update() { QCoreApplication::processEvents(); }
    template <typename Change>
    void change(Change apply) {
        state.changePreferences(apply);
        update();
    }
    const AppPreferences& preferences() { return state.preferences().get(); }
    // How often the preferences are assigned meanwhile.
    int assignments(const std::function<void()>& action) {
        int count = -1; // of the call at once
        const auto counter = state.preferences().observe([&](const auto&) { ++count; });
        action();
        return count;
    }
    // Those of a type that need not be one of the toolkit's.
    template <typename Part>
    std::vector<Part*> parts() {
        std::vector<Part*> found;
        for (auto* widget : window->findChildren<QWidget*>()) {
            if (auto* part = dynamic_cast<Part*>(widget)) {
                found.push_back(part);
            }
        }
        return found;
    }
    // The part with that name.
    template <typename Part = QWidget>
    Part* named(const char* name) {
        for (auto* part : parts<Part>()) {
            if (part->accessibleName() == QString::fromUtf8(name)) {
                return part;
            }
        }
        ADD_FAILURE() << "nothing is named " << name;
        return nullptr;
    }
    std::vector<std::string> checked() {
        std::vector<std::string> names;
        for (const auto* button : window->findChildren<QAbstractButton*>()) {
            if (button->isChecked()) {
                names.push_back(button->accessibleName().toStdString());
            }
        }
        return names;
    }
    auto highlightColor() {
        return view.binding(&AppPreferences::highlight, &HighlightSettings::color);
    }
    auto laserColor() { return view.binding(&AppPreferences::laser, &LaserSettings::color); }

    template <typename View, typename... Arguments>
    View& open(Arguments&&... arguments) {
        auto opened = std::make_unique<View>(view, std::forward<Arguments>(arguments)...);
        auto& shown = *opened;
        open(std::move(opened));
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
    // The visible label with that text.
    QLabel* label(const QString& text) {
        for (auto* found : window->findChildren<QLabel*>()) {
            if (found->isVisible() && found->text() == text) {
                return found;
            }
        }
        return nullptr;
    }
    bool says(const char* text) { return label(QString::fromUtf8(text)) != nullptr; }
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
    // Where the Tab key goes, until it comes back to where it began.
    QString tabStops() {
        QStringList stops;
        const auto* first = QApplication::focusWidget();
        for (auto* at = QApplication::focusWidget(); at != nullptr && stops.size() < 40;
             at = QApplication::focusWidget()) {
            const auto* button = qobject_cast<QAbstractButton*>(at);
            const bool named = button == nullptr || !at->accessibleName().isEmpty();
            stops << (named ? at->accessibleName() : button->text());
            QTest::keyClick(window.get(), Qt::Key_Tab);
            if (QApplication::focusWidget() == first) {
                break;
            }
        }
        return stops.join(QStringLiteral(", "));
    }
    void configureLinks(const std::string& members) {
        const auto path = folder_.filePath(QStringLiteral("links.plist")).toStdString();
        std::ofstream(path)
            << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" << members
            << "</dict></plist>";
        desktop.bundle.resources["ReleaseConfiguration.plist"] = path;
    }

    SettingsStore store{desktop.userDefaults, "key"};
    AppState state{store, desktop};
    ViewContext view{state, desktop};
    std::unique_ptr<QWidget> window;

private:
    void open(std::unique_ptr<QWidget> opened) {
        window = std::move(opened);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        update();
    }

    QTemporaryDir folder_;
};

} // namespace vantrel
