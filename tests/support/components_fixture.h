#pragma once

#include "support/headless_fixture.h"
#include "support/offscreen_application.h"
#include "ui/components/background.h"
#include "ui/components/view_context.h"

#include <QAbstractButton>
#include <QtTest/QTest>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantrel {

// The application state on a desktop in memory, and a window for parts that show it.
class ViewTest : public HeadlessTest {
protected:
    explicit ViewTest(bool inWaylandSession = false) {
        desktop.application.waylandSession = inWaylandSession;
    }

    // Puts a part into a window.
    QWidget& show(QWidget* part) {
        window = std::make_unique<VantrelBackground>(part);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        return *part;
    }
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

    SettingsStore store{desktop.userDefaults, "key"};
    AppState state{store, desktop};
    ViewContext view{state, desktop};
    std::unique_ptr<QWidget> window;
};

} // namespace vantrel
