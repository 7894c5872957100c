// Any values of the preferences: they are read back as they were written, unless a number is not
// finite.

#include "preferences/preference_encoding.h"
#include "require.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

using namespace vantrel;

namespace {

class Values {
public:
    Values(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    AppPreferences preferences() {
        AppPreferences result;
        result.schemaVersion = bytes_.ConsumeIntegral<std::int64_t>();
        result.lastMode = anyCase<CursorMode>();
        result.highlight = {anyCase<HighlightStyle>(), color(), number(), number(),
                            bytes_.ConsumeBool(),      number()};
        result.click = {anyCase<ClickStyle>(), bytes_.ConsumeBool(), bytes_.ConsumeBool()};
        result.laser = {color(), number(), anyCase<GlowStrength>()};
        result.highlightShortcut = shortcut();
        result.laserShortcut = shortcut();
        result.launchAtLogin = bytes_.ConsumeBool();
        result.language = anyCase<AppLanguage>();
        return result;
    }

    [[nodiscard]] bool allFinite() const {
        return std::ranges::all_of(numbers_, [](double number) { return std::isfinite(number); });
    }

private:
    template <typename Enum>
    Enum anyCase() {
        return bytes_.PickValueInArray(allCases<Enum>());
    }

    // Every pattern of bits is as likely, infinities and subnormal numbers included.
    double number() {
        const auto bits = bytes_.ConsumeIntegral<std::uint64_t>();
        std::memcpy(&numbers_.emplace_back(), &bits, sizeof bits);
        return numbers_.back();
    }

    EffectColor color() { return {number(), number(), number()}; }

    std::optional<Shortcut> shortcut() {
        if (bytes_.ConsumeBool()) {
            return std::nullopt;
        }
        const auto keyCode = bytes_.ConsumeIntegral<std::uint32_t>();
        const auto modifiers = bytes_.ConsumeIntegral<std::uint32_t>();
        return Shortcut{keyCode, modifiers, bytes_.ConsumeRandomLengthString(64)};
    }

    FuzzedDataProvider bytes_;
    std::vector<double> numbers_;
};

bool hasUnicodeText(const std::optional<Shortcut>& shortcut) {
    return !shortcut || QByteArray::fromStdString(shortcut->display).isValidUtf8();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Values values(data, size);
    const auto preferences = values.preferences();
    const auto document = encodePreferences(preferences);
    require(document.has_value() == values.allFinite());
    if (document) {
        const auto read = decodePreferences(*document);
        require(read.has_value() && encodePreferences(*read) == document);
        require(read == preferences || !hasUnicodeText(preferences.highlightShortcut) ||
                !hasUnicodeText(preferences.laserShortcut));
    }
    return 0;
}
