#include "ui/compositor_binding.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace vantrel {

namespace {

// How a compositor says it.
struct Syntax {
    std::string_view session;
    // Each with what joins it to the next one, in the order of modifierBits.
    std::array<std::string_view, 4> modifiers;
    std::string_view line;        // %m the modifiers, %k the key, %c the command, %w its words
    std::string_view lastJoint{}; // not before the key
};

constexpr std::array modifierBits{modifier::control, modifier::option, modifier::shift,
                                  modifier::command};

constexpr std::array syntaxes{
    Syntax{"sway", {"Ctrl+", "Mod1+", "Shift+", "Mod4+"}, "bindsym %m%k exec %c"},
    Syntax{"labwc",
           {"C-", "A-", "S-", "W-"},
           R"(<keybind key="%m%k"><action name="Execute" command="%c"/></keybind>)"},
    Syntax{"niri", {"Ctrl+", "Alt+", "Shift+", "Super+"}, "%m%k { spawn %w; }"},
    // In Lua, which it has had since 0.55, and nothing else since 0.57.
    Syntax{"Hyprland",
           {"CTRL + ", "ALT + ", "SHIFT + ", "SUPER + "},
           R"lua(hl.bind("%m%k", hl.dsp.exec_cmd("%c")))lua"},
    Syntax{"river",
           {"Control+", "Alt+", "Shift+", "Super+"},
           R"(riverctl map normal %m %k spawn "%c")",
           "+"},
};

// Of letters, digits and function keys: all that every compositor calls by the same name.
std::optional<std::string> keyName(std::string_view display) {
    const auto isPlain = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    const auto start = std::ranges::find_if(display, isPlain) - display.begin();
    std::string name(display.substr(static_cast<std::size_t>(start)));
    if (name.empty() || !std::ranges::all_of(name, isPlain)) {
        return std::nullopt;
    }
    if (name.size() == 1) {
        name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    }
    return name.size() == 1 || name[0] == 'F' ? std::optional(name) : std::nullopt;
}

// Each word of it.
std::string inQuotes(std::string_view command) {
    std::string words = "\"";
    for (const char c : command) {
        words += c == ' ' ? std::string(R"(" ")") : std::string(1, c);
    }
    return words + "\"";
}

std::string modifiersIn(const Syntax& syntax, std::uint32_t modifiers) {
    std::string said;
    for (std::size_t i = 0; i < modifierBits.size(); ++i) {
        if ((modifiers & modifierBits[i]) != 0) {
            said += syntax.modifiers[i];
        }
    }
    if (said.ends_with(syntax.lastJoint)) {
        said.resize(said.size() - syntax.lastJoint.size());
    }
    return said;
}

} // namespace

std::string compositorBinding(std::string_view session, const std::optional<Shortcut>& shortcut,
                              std::string_view command) {
    const auto* syntax = std::ranges::find(syntaxes, session, &Syntax::session);
    const auto key = shortcut ? keyName(shortcut->display) : std::nullopt;
    if (syntax == syntaxes.end() || !key) {
        return std::string(command);
    }
    std::string line;
    for (std::size_t i = 0; i < syntax->line.size(); ++i) {
        if (syntax->line[i] != '%') {
            line += syntax->line[i];
            continue;
        }
        const char part = syntax->line[++i];
        line += part == 'm'   ? modifiersIn(*syntax, shortcut->modifiers)
                : part == 'k' ? *key
                : part == 'w' ? inQuotes(command)
                              : std::string(command);
    }
    return line;
}

} // namespace vantrel
