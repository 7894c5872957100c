#pragma once

#include "app/state/app_state.h"
#include "platform/desktop.h"
#include "ui/components/binding.h"
#include "ui/components/text.h"

#include <QObject>
#include <QWidget>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantrel {

// What every view needs: the state, and the one place from which views are brought up to date. All
// that the state publishes in one go leads to one round of updates, in the next turn of the event
// loop, so that the overlays come before the windows.
class ViewContext : public QObject {
    Q_OBJECT

public:
    // The state and the desktop must outlive the context, and the context the views.
    ViewContext(AppState& state, const Desktop& desktop);

    [[nodiscard]] AppState& state() const { return state_; }
    [[nodiscard]] const AppPreferences& preferences() const { return state_.preferences().get(); }
    [[nodiscard]] const Desktop& desktop() const { return desktop_; }
    [[nodiscard]] bool english() const { return state_.english(); }
    [[nodiscard]] QString say(const Wording& wording) const { return wording(english()); }

    // For a part that is not always shown: its followers are updated when the part is refreshed.
    [[nodiscard]] std::unique_ptr<ViewContext> ofPart();
    void refresh() { Q_EMIT changed(); }
    // The one that all parts' were made of. It outlives every view.
    [[nodiscard]] ViewContext& root() { return root_; }

    // Makes an update now and after each change of the state, as long as the follower lives.
    void follow(QObject* follower, const std::function<void()>& update);
    // Keeps a part in its place only while a condition holds. Returns the part.
    QWidget* showWhile(QWidget* part, std::function<bool()> condition);

    // A field of the preferences, such as binding(&AppPreferences::laser, &LaserSettings::glow).
    // Setting it changes the state once.
    template <typename... Path>
    [[nodiscard]] auto binding(Path... path) const {
        const auto field = [path...](auto& preferences) -> auto& {
            return (preferences.*....*path);
        };
        using Value = std::remove_cvref_t<decltype(field(std::declval<AppPreferences&>()))>;
        auto& state = state_;
        return Binding<Value>{
            .get = [&state, field] { return field(state.preferences().get()); },
            .set =
                [&state, field](const Value& value) {
                    state.changePreferences(
                        [&](AppPreferences& preferences) { field(preferences) = value; });
                },
        };
    }

Q_SIGNALS:
    void changed();

private:
    explicit ViewContext(ViewContext* root);
    void publish();

    ViewContext& root_;
    AppState& state_;
    const Desktop desktop_;
    bool pending_ = false;
    std::vector<Subscription> subscriptions_;
};

} // namespace vantrel
