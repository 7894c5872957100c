#pragma once

#include "ui/components/view_context.h"

#include <algorithm>
#include <type_traits>
#include <vector>

namespace vantrel {

// One choice of a picker.
template <typename T>
struct Choice {
    T value;
    Wording title;
};

// A title, and the choices beside each other.
[[nodiscard]] QWidget* segmentedPicker(ViewContext& view, const Wording& title,
                                       const Binding<std::size_t>& index,
                                       const std::vector<Wording>& choices);
// A title, and the choice made, which opens the others.
[[nodiscard]] QWidget* popUpPicker(ViewContext& view, const Wording& title,
                                   const Binding<std::size_t>& index,
                                   const std::vector<Wording>& choices);

// A value by its place in a list of choices, which is the list's length for any other value.
template <typename T>
Binding<std::size_t> indexed(const Binding<T>& value, const std::vector<Choice<T>>& choices) {
    return {
        .get =
            [value, choices] {
                const auto found = std::ranges::find(choices, value.get(), &Choice<T>::value);
                return static_cast<std::size_t>(found - choices.begin());
            },
        .set = [value, choices](std::size_t index) { value.set(choices[index].value); },
    };
}

template <typename T>
std::vector<Wording> titlesOf(const std::vector<Choice<T>>& choices) {
    std::vector<Wording> titles;
    std::ranges::transform(choices, std::back_inserter(titles), &Choice<T>::title);
    return titles;
}

template <typename T>
QWidget* segmentedPicker(ViewContext& view, const Wording& title, const Binding<T>& value,
                         const std::type_identity_t<std::vector<Choice<T>>>& choices) {
    return segmentedPicker(view, title, indexed(value, choices), titlesOf(choices));
}

template <typename T>
QWidget* popUpPicker(ViewContext& view, const Wording& title, const Binding<T>& value,
                     const std::type_identity_t<std::vector<Choice<T>>>& choices) {
    return popUpPicker(view, title, indexed(value, choices), titlesOf(choices));
}

} // namespace vantrel
