#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

// The main group of a desktop entry file. A change touches the lines of its key and leaves every
// other one, with its line end, as it was written.
class DesktopEntry {
public:
    explicit DesktopEntry(std::string_view text);

    // The whole file.
    [[nodiscard]] std::string text() const;

    // Without escapes. The last line of a key is the one that counts; a translation, as Name[de],
    // is a key of its own.
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const;
    [[nodiscard]] bool boolean(std::string_view key, bool otherwise) const;
    [[nodiscard]] std::vector<std::string> list(std::string_view key) const;

    // The value as it shall stand in the file. Does nothing when there is no main group
    // or it holds no key.
    void set(std::string_view key, std::string_view value);
    void remove(std::string_view key);

private:
    struct Line {
        std::size_t index;
        std::string_view key;
        std::string_view value;
    };

    [[nodiscard]] std::vector<Line> mainGroup() const;

    std::vector<std::string> lines_; // each with its line end
};

// The words of a value of Exec, without field codes; nothing when a quotation does not end.
std::optional<std::vector<std::string>> splitCommand(std::string_view command);

// A program's path as a value of Exec, escapes included.
std::string quoteCommand(std::string_view program);

// A text as the value of a string key.
std::string escapeString(std::string_view text);

} // namespace vantrel
