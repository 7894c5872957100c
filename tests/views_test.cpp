#include "views_fixture.h"

#include <QRegularExpression>
#include <QVBoxLayout>

namespace vantrel {
namespace {

class WelcomeTest : public ViewsTest {
protected:
    void SetUp() override {
        ViewsTest::SetUp();
        open<WelcomeView>([this] {
            ++dismissals_;
            flagWhenDismissed_ = desktop.userDefaults.boolean(welcomeDismissedKey);
        });
    }

    int dismissals_ = 0;
    bool flagWhenDismissed_ = false;
};

TEST_F(WelcomeTest, DismissingItIsRememberedBeforeItCloses) {
    EXPECT_FALSE(desktop.userDefaults.boolean("welcomeDismissed"));
    click("Get started");
    EXPECT_EQ(dismissals_, 1);
    EXPECT_TRUE(flagWhenDismissed_);
    EXPECT_TRUE(desktop.userDefaults.boolean("welcomeDismissed"));
}

TEST_F(WelcomeTest, EnterDismissesItWhereverTheFocusIs) {
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_EQ(dismissals_, 1);
    named("Local highlight preview")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(dismissals_, 2);
}

class HelpTest : public ViewsTest {};

TEST_F(HelpTest, OnlyConfiguredLinksCanBeOpened) {
    configureLinks("<key>PrivacyURL</key><string>https://example.org/privacy</string>"
                   "<key>SupportURL</key><string>mailto:help@example.org</string>");
    open<HelpView>();
    EXPECT_FALSE(button("Terms of use")->isEnabled());
    click("Privacy policy");
    click("Contact support");
    EXPECT_EQ(desktop.workspace.opened,
              (std::vector<std::string>{"https://example.org/privacy", "mailto:help@example.org"}));
}

TEST_F(HelpTest, ScrollsByKeyboardAlsoWithoutALinkToGoTo) {
    window = std::make_unique<QWidget>();
    (new QVBoxLayout(window.get()))->addWidget(new HelpView(view));
    window->resize(520, 300);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    EXPECT_FALSE(button("Privacy policy")->isEnabled());
    auto* bar = scrolled()->verticalScrollBar();
    QTest::keyClick(window->windowHandle(), Qt::Key_End);
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_GT(bar->maximum(), 0);
}

// In every view, on every tab and in every mode, while everything fails that can.
class AllViewsTest : public ViewsTest {
protected:
    void SetUp() override {
        ViewsTest::SetUp();
        desktop.eventMonitors.refusesGlobal = true;
        state.changePreferences([](auto& preferences) {
            preferences.language = AppLanguage::english;
            preferences.highlight.idleHide = true;
            preferences.laserShortcut = preferences.highlightShortcut;
        });
    }
    void forEachView(const std::function<void(const std::string&)>& visit) {
        open<WelcomeView>([] {});
        visit("welcome");
        open<HelpView>();
        visit("help");
        for (const auto mode : allCases<CursorMode>()) {
            state.setMode(mode);
            open<MenuPanel>();
            visit("panel in " + std::string(nameOf(mode)));
            for (const auto tab : allCases<SettingsTab>()) {
                openSettings(tab);
                visit(std::string(nameOf(tab)) + " in " + std::string(nameOf(mode)));
            }
        }
    }
    // Everything that is shown or told.
    QStringList texts() {
        QStringList all;
        for (const auto* part : window->findChildren<QWidget*>()) {
            all << part->accessibleName() << part->accessibleDescription() << part->toolTip();
            if (const auto* label = qobject_cast<const QLabel*>(part)) {
                all << label->text();
            } else if (const auto* button = qobject_cast<const QAbstractButton*>(part)) {
                all << button->text();
            } else if (const auto* picker = qobject_cast<const QComboBox*>(part)) {
                for (int i = 0; i < picker->count(); ++i) {
                    all << picker->itemText(i);
                }
            }
        }
        all.removeAll(QString());
        return all;
    }
};

TEST_F(AllViewsTest, NothingStaysInTheOtherLanguage) {
    const QRegularExpression neutral(
        QStringLiteral("^(Vantrel|English|简体中文|\\d+ (s|pt|%)|⌃⌥[HL])$"));
    const QRegularExpression chinese(QStringLiteral("\\p{Han}"));
    const auto expectAll = [&](bool inChinese, const std::string& where) {
        for (const auto& text : texts()) {
            EXPECT_TRUE(neutral.match(text).hasMatch() ||
                        chinese.match(text).hasMatch() == inChinese)
                << where << ": " << text.toStdString();
        }
    };
    forEachView([&](const std::string& where) {
        EXPECT_GT(texts().size(), 8) << where;
        expectAll(false, where);
        change([](auto& preferences) { preferences.language = AppLanguage::chinese; });
        expectAll(true, where);
        change([](auto& preferences) { preferences.language = AppLanguage::english; });
        expectAll(false, where);
    });
}

TEST_F(AllViewsTest, NoTextIsCutInTheSmallestWindow) {
    forEachView([&](const std::string& where) {
        for (const auto language : {AppLanguage::english, AppLanguage::chinese}) {
            window->resize(window->minimumSizeHint().expandedTo({520, 560}));
            change([&](auto& preferences) { preferences.language = language; });
            update();
            EXPECT_LE(window->minimumSizeHint().width(), 520) << where;
            const auto* area = scrolled();
            EXPECT_LE(area->widget()->width(), area->viewport()->width()) << where;
            for (const auto* text : window->findChildren<QLabel*>()) {
                if (!text->isVisible()) {
                    continue;
                }
                EXPECT_GE(text->width(), text->minimumSizeHint().width())
                    << where << ": " << text->text().toStdString();
                EXPECT_GE(text->height(), text->hasHeightForWidth()
                                              ? text->heightForWidth(text->width())
                                              : text->sizeHint().height())
                    << where << ": " << text->text().toStdString();
            }
        }
    });
}

TEST_F(AllViewsTest, WhatTheKeyboardStopsAtHasAName) {
    forEachView([&](const std::string& where) {
        for (const auto* part : window->findChildren<QWidget*>()) {
            const auto* button = qobject_cast<const QAbstractButton*>(part);
            if (part->isVisible() && (part->focusPolicy() & Qt::TabFocus) != 0) {
                EXPECT_FALSE(part->accessibleName().isEmpty() &&
                             (button == nullptr || button->text().isEmpty()))
                    << where << ": " << part->metaObject()->className();
            }
        }
    });
}

} // namespace
} // namespace vantrel
