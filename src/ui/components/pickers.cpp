#include "ui/components/pickers.h"

#include "ui/components/choice_button.h"
#include "ui/components/label.h"
#include "ui/components/plate.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QWheelEvent>

namespace vantrel {

namespace {

constexpr ChoiceLook segmentLook{
    .selected = {.fill = {Tone::accent, 1}, .radius = 6},
    .plain = {.radius = 6},
};

constexpr Chrome trough{.fill = {Tone::primary, 0.07}, .radius = 8};

// Lets the wheel scroll what it lies in.
class PopUp final : public QComboBox {
public:
    PopUp() {
        setFont(bodyText.font());
        setSizeAdjustPolicy(QComboBox::AdjustToContents);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        view()->window()->setAttribute(Qt::WA_WindowPropagation); // of the tint
    }

    [[nodiscard]] QSize sizeHint() const override {
        return QComboBox::sizeHint().expandedTo({0, 26}) + QSize(12, 0);
    }

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

QWidget* segment(ViewContext& view, const Wording& title, const Binding<std::size_t>& index,
                 std::size_t own) {
    const auto isSelected = [index, own] { return index.get() == own; };
    auto* text = label(view, title, {12, QFont::Medium})->centered();
    auto* button = new ChoiceButton(view, {title, isSelected, [index, own] { index.set(own); }},
                                    segmentLook, column(0, {text})->padded(8, 4));
    view.follow(button, [text, isSelected] {
        text->setTone(isSelected() ? Tone::onAccent : Tone::primary);
    });
    return button;
}

} // namespace

QWidget* segmentedPicker(ViewContext& view, const Wording& title, const Binding<std::size_t>& index,
                         const std::vector<Wording>& choices) {
    auto* group = new ChoiceRow(view, 2, title);
    for (std::size_t i = 0; i < choices.size(); ++i) {
        group->add(segment(view, choices[i], index, i));
    }
    group->padded(2);
    return row(12, {hugging(label(view, title)), new Plate(trough, group)});
}

QWidget* popUpPicker(ViewContext& view, const Wording& title, const Binding<std::size_t>& index,
                     const std::vector<Wording>& choices) {
    auto* popUp = new PopUp;
    auto* name = label(view, title);
    name->setBuddy(popUp); // the toolkit tells no other name of a pop-up
    for (std::size_t i = 0; i < choices.size(); ++i) {
        popUp->addItem({});
    }
    QObject::connect(popUp, &QComboBox::activated, popUp,
                     [index](int chosen) { index.set(static_cast<std::size_t>(chosen)); });
    nameForScreenReaders(view, popUp, title);
    view.follow(popUp, [popUp, &view, index, choices] {
        for (std::size_t i = 0; i < choices.size(); ++i) {
            popUp->setItemText(static_cast<int>(i), view.say(choices[i]));
        }
        const auto current = index.get();
        popUp->setCurrentIndex(current < choices.size() ? static_cast<int>(current) : -1);
    });
    return row(12, {name, spacer(), popUp});
}

} // namespace vantrel
