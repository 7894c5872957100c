#pragma once

#include <QString>

#include <functional>
#include <string_view>

namespace vantrel {

// What a part of the interface says, asked anew whenever the language may have changed.
using Wording = std::function<QString(bool english)>;

// A text in both languages, side by side where it is used.
struct Text {
    std::string_view english;
    std::string_view chinese;

    // A name, which is the same in both.
    static constexpr Text name(std::string_view name) { return {name, name}; }

    QString operator()(bool inEnglish) const {
        const auto text = inEnglish ? english : chinese;
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    }
};

} // namespace vantrel
