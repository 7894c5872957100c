#include "platform/freedesktop/desktop_entry.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <sstream>
#include <utility>

namespace vantrel {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view mainGroupName = "[Desktop Entry]";
// A word with one of these has to be quoted, and these four be escaped even then.
constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
constexpr std::string_view escapedInQuotes = "\"`$\\";
// After a backslash, what each stands for.
constexpr std::array<std::pair<char, char>, 5> escapes{
    {{'\\', '\\'}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'s', ' '}}};

bool contains(std::string_view set, char character) {
    return set.find(character) != std::string_view::npos;
}

std::string_view lineEnd(std::string_view line) {
    const auto length = line.ends_with("\r\n") ? 2U : line.ends_with('\n') ? 1U : 0U;
    return line.substr(line.size() - length);
}

std::string unescaped(std::string_view value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char code = value[i] == '\\' && i + 1 < value.size() ? value[i + 1] : '\0';
        const auto* const escape = std::ranges::find(escapes, code, &std::pair<char, char>::first);
        const bool known = escape != escapes.end();
        text += known ? escape->second : value[i];
        i += known ? 1 : 0;
    }
    return text;
}

} // namespace

DesktopEntry::DesktopEntry(std::string_view text) {
    while (!text.empty()) {
        const auto length = std::min(text.find('\n'), text.size() - 1) + 1;
        lines_.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
}

std::string DesktopEntry::text() const {
    return std::accumulate(lines_.begin(), lines_.end(), std::string());
}

std::vector<DesktopEntry::Line> DesktopEntry::mainGroup() const {
    std::vector<Line> group;
    bool inside = false;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        std::string_view line = lines_[i];
        if (i == 0 && line.starts_with(byteOrderMark)) {
            line.remove_prefix(byteOrderMark.size());
        }
        line = trimmed(line);
        const auto equals = line.find('=');
        if (line.starts_with('[')) {
            inside = line == mainGroupName;
        } else if (inside && equals != std::string_view::npos) {
            group.push_back({i, trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1))});
        }
    }
    return group;
}

std::optional<std::string> DesktopEntry::string(std::string_view key) const {
    std::optional<std::string> value;
    for (const Line& line : mainGroup()) {
        if (line.key == key) {
            value = unescaped(line.value);
        }
    }
    return value;
}

bool DesktopEntry::boolean(std::string_view key, bool otherwise) const {
    const auto value = string(key);
    return value ? *value == "true" || *value == "1" : otherwise;
}

std::vector<std::string> DesktopEntry::list(std::string_view key) const {
    std::vector<std::string> items;
    std::istringstream text(string(key).value_or(""));
    for (std::string item; std::getline(text, item, ';');) {
        items.push_back(item);
    }
    return items;
}

void DesktopEntry::set(std::string_view key, std::string_view value) {
    const auto group = mainGroup();
    if (group.empty()) {
        return;
    }
    const auto entry = std::string(key) + "=" + std::string(value);
    const auto former = std::find_if(group.rbegin(), group.rend(),
                                     [&](const Line& line) { return line.key == key; });
    if (former != group.rend()) {
        std::string& line = lines_[former->index];
        line = entry + std::string(lineEnd(line));
        return;
    }
    std::string& last = lines_[group.back().index];
    const std::string end(lineEnd(lines_.front()));
    if (lineEnd(last).empty()) {
        last += end;
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(group.back().index) + 1,
                  entry + end);
}

void DesktopEntry::remove(std::string_view key) {
    for (const Line& line : mainGroup()) {
        if (line.key == key) {
            lines_[line.index].clear();
        }
    }
}

std::optional<std::vector<std::string>> splitCommand(std::string_view command) {
    std::vector<std::string> words;
    std::optional<std::string> word;
    const auto append = [&word](std::string_view text) { word = word.value_or("").append(text); };
    char quote = '\0';
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char character = command[i];
        const char next = i + 1 < command.size() ? command[i + 1] : '\0';
        if (character == '%') {
            append(next == '%' ? "%" : "");
            ++i;
        } else if (character == '\\' && quote != '\'' &&
                   (quote == '\0' || contains(escapedInQuotes, next))) {
            append(command.substr(i + 1, 1));
            ++i;
        } else if (character == quote || (quote == '\0' && contains("\"'", character))) {
            quote = quote == '\0' ? character : '\0';
            append("");
        } else if (quote == '\0' && contains(blanks, character)) {
            if (word) {
                words.push_back(*std::exchange(word, std::nullopt));
            }
        } else {
            append(command.substr(i, 1));
        }
    }
    if (quote != '\0') {
        return std::nullopt;
    }
    if (word) {
        words.push_back(*word);
    }
    return words;
}

std::string quoteCommand(std::string_view program) {
    const bool quoted = program.find_first_of(reserved) != std::string_view::npos;
    std::string word = quoted ? "\"" : "";
    for (const char character : program) {
        word += contains(escapedInQuotes, character) ? "\\" : character == '%' ? "%" : "";
        word += character;
    }
    word += quoted ? "\"" : "";
    return escapeString(word);
}

std::string escapeString(std::string_view text) {
    std::string value;
    for (const char character : text) {
        const auto* const escape =
            std::ranges::find(escapes, character, &std::pair<char, char>::second);
        if (escape == escapes.end() || character == ' ') {
            value += character;
        } else {
            value += {'\\', escape->first};
        }
    }
    return value;
}

} // namespace vantrel
