#include "preferences/preference_encoding.h"

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <concepts>
#include <type_traits>
#include <utility>

namespace vantrel {

namespace {

using nlohmann::json;

template <typename T>
concept Enumeration = std::is_enum_v<T>;

class Writer {
public:
    Writer() { document_.reserve(1024); }

    void write(const auto& record) {
        document_ += '{';
        visitMembers(record, *this);
        document_ += '}';
    }

    void operator()(std::string_view name, const auto& member, const auto&... /*bounds*/) {
        if (document_.back() != '{') {
            document_ += ',';
        }
        document_ += '"';
        document_ += name;
        document_ += "\":";
        write(member);
    }

    template <typename T>
    void operator()(std::string_view name, const std::optional<T>& member, const auto&... bounds) {
        if (member) {
            (*this)(name, *member, bounds...);
        }
    }

    std::optional<std::string> result() && {
        return finite_ ? std::optional(std::move(document_)) : std::nullopt;
    }

private:
    void write(bool value) { document_ += value ? "true" : "false"; }

    void write(const std::integral auto& value) { document_ += std::to_string(value); }

    // The fewest digits that read back as the same double: no fraction for a whole number, an
    // exponent only for the very large and the very small.
    void write(double value) {
        const double magnitude = std::abs(value);
        const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude <= 0x1p54);
        const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
        std::array<char, 32> digits{};
        // A zero has no sign when it is read.
        const double written = magnitude == 0 ? 0 : value;
        const auto end = std::to_chars(digits.begin(), digits.end(), written, format).ptr;
        document_.append(digits.begin(), end);
        finite_ = finite_ && std::isfinite(value);
    }

    // Documents have their slashes escaped, which the library leaves as they are.
    void write(const std::string& text) {
        for (const char c : json(text).dump(-1, ' ', false, json::error_handler_t::replace)) {
            document_ += c == '/' ? "\\/" : std::string_view(&c, 1);
        }
    }

    void write(const Enumeration auto& value) {
        document_ += '"';
        document_ += nameOf(value);
        document_ += '"';
    }

    std::string document_;
    bool finite_ = true;
};

// A whole number may be written with a fraction of zero, or with an exponent.
std::optional<std::int64_t> wholeNumber(const json& value) {
    if (const auto* natural = value.get_ptr<const json::number_unsigned_t*>()) {
        return std::in_range<std::int64_t>(*natural) ? std::optional<std::int64_t>(*natural)
                                                     : std::nullopt;
    }
    if (const auto* integer = value.get_ptr<const json::number_integer_t*>()) {
        return *integer;
    }
    const auto* number = value.get_ptr<const json::number_float_t*>();
    if (number != nullptr && std::trunc(*number) == *number && *number >= -0x1p63 &&
        *number < 0x1p63) {
        return static_cast<std::int64_t>(*number);
    }
    return std::nullopt;
}

class Reader {
public:
    static bool read(const json& value, auto& record) {
        Reader reader(value);
        if (value.is_object()) {
            visitMembers(record, reader);
        }
        return value.is_object() && reader.valid_;
    }

    void operator()(std::string_view name, auto& member, const auto&... /*bounds*/) {
        const auto found = object_.find(name);
        valid_ = valid_ && found != object_.end() && read(*found, member);
    }

    template <typename T>
    void operator()(std::string_view name, std::optional<T>& member, const auto&... /*bounds*/) {
        const auto found = object_.find(name);
        if (found == object_.end() || found->is_null()) {
            member.reset();
        } else {
            valid_ = valid_ && read(*found, member.emplace());
        }
    }

private:
    explicit Reader(const json& object) : object_(object) {}

    template <typename T>
    static bool assign(T& member, const T* value) {
        if (value != nullptr) {
            member = *value;
        }
        return value != nullptr;
    }

    static bool read(const json& value, bool& member) {
        return assign(member, value.get_ptr<const json::boolean_t*>());
    }

    template <std::integral Int>
    static bool read(const json& value, Int& member) {
        const auto whole = wholeNumber(value);
        if (!whole || !std::in_range<Int>(*whole)) {
            return false;
        }
        member = static_cast<Int>(*whole);
        return true;
    }

    static bool read(const json& value, double& member) {
        if (value.is_number()) {
            member = value.get<double>();
        }
        return value.is_number();
    }

    static bool read(const json& value, std::string& member) {
        return assign(member, value.get_ptr<const json::string_t*>());
    }

    template <Enumeration Enum>
    static bool read(const json& value, Enum& member) {
        const auto* name = value.get_ptr<const json::string_t*>();
        const auto named = name != nullptr ? caseNamed<Enum>(*name) : std::nullopt;
        return assign(member, named ? &*named : nullptr);
    }

    const json& object_;
    bool valid_ = true;
};

// The parser reads numbers as the locale writes them, and misreads them where the decimal point has
// more than one byte.
class PlainNumbers {
public:
    PlainNumbers() : former_(uselocale(plain())) {}
    ~PlainNumbers() { uselocale(former_); }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    static locale_t plain() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t former_;
};

json parse(std::string_view document) {
    const PlainNumbers plainNumbers;
    return json::parse(document, nullptr, false);
}

} // namespace

std::optional<std::string> encodePreferences(const AppPreferences& preferences) {
    Writer writer;
    writer.write(preferences);
    return std::move(writer).result();
}

std::optional<AppPreferences> decodePreferences(std::string_view document) {
    // For the parser a zero byte is the end of the document, whatever follows.
    if (document.size() > maximumDocumentSize || document.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    AppPreferences preferences;
    return Reader::read(parse(document), preferences) ? std::optional(std::move(preferences))
                                                      : std::nullopt;
}

} // namespace vantrel
