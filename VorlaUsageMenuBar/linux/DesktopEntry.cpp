// SPDX-License-Identifier: MIT
#include "linux/DesktopEntry.h"

#include "model/Text.h"

#include <algorithm>

namespace vorla {

namespace {

constexpr std::string_view groupHeader = "[Desktop Entry]";
constexpr std::string_view blanks = " \t\r";
/// What a backslash must precede within the quotes of Exec.
constexpr std::string_view quotedSpecials = "\"`$\\";

/// What "\" and `letter` stand for, or nothing if they stand for themselves.
std::optional<char> unescaped(char letter) {
    switch (letter) {
    case 's':
        return ' ';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case '\\':
    case ';':
        return letter;
    default:
        return std::nullopt;
    }
}

/// Resolves the escapes, and parts the value at each semicolon that is not escaped if it is a list.
std::vector<std::string> parts(std::string_view value, bool isList) {
    std::vector<std::string> found(1);
    for (std::size_t at = 0; at < value.size(); ++at) {
        const auto meaning =
            value[at] == '\\' && at + 1 < value.size() ? unescaped(value[at + 1]) : std::nullopt;
        if (meaning) {
            found.back() += *meaning;
            ++at;
        } else if (isList && value[at] == ';') {
            found.emplace_back();
        } else {
            found.back() += value[at];
        }
    }
    return found;
}

std::string escaped(std::string_view value) {
    std::string text;
    for (const char& byte : value) {
        switch (byte) {
        case '\\':
            text += "\\\\";
            break;
        case '\n':
            text += "\\n";
            break;
        case '\t':
            text += "\\t";
            break;
        case '\r':
            text += "\\r";
            break;
        case ' ':
            // Blanks at either end of a value would be lost.
            text += text.empty() || &byte == &value.back() ? "\\s" : " ";
            break;
        default:
            text += byte;
        }
    }
    return text;
}

} // namespace

std::string_view withoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view bytes) {
    DesktopEntry entry;
    bool groupSeen = false;
    bool inGroup = false;
    while (!bytes.empty()) {
        const auto line = withoutBlanks(bytes.substr(0, bytes.find('\n')));
        bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size() - 1) + 1);
        const auto equals = line.find('=');
        if (line.starts_with('[')) {
            inGroup = line == groupHeader;
            groupSeen = groupSeen || inGroup;
        } else if (inGroup && !line.starts_with('#') && equals != std::string_view::npos) {
            entry.values_[std::string(withoutBlanks(line.substr(0, equals)))] =
                withoutBlanks(line.substr(equals + 1));
        }
    }
    if (!groupSeen) {
        return std::nullopt;
    }
    return entry;
}

std::optional<std::string> DesktopEntry::string(std::string_view key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return parts(found->second, false).front();
}

std::vector<std::string> DesktopEntry::strings(std::string_view key) const {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return {};
    }
    auto list = parts(found->second, true);
    std::erase(list, std::string());
    return list;
}

std::optional<bool> DesktopEntry::boolean(std::string_view key) const {
    const auto found = values_.find(key);
    const auto value = found == values_.end() ? std::string_view() : found->second;
    if (value == "true" || value == "1") {
        return true;
    }
    if (value == "false" || value == "0") {
        return false;
    }
    return std::nullopt;
}

std::string desktopEntryText(std::span<const DesktopEntryLine> lines) {
    std::string text(groupHeader);
    text += '\n';
    for (const auto& [key, value] : lines) {
        text.append(key).append("=").append(escaped(value)).append("\n");
    }
    return text;
}

bool canStandInExec(std::string_view path) {
    const auto isRefused = [](char byte) {
        return byte == '%' || byte == '\\' || (byte >= 0 && byte < ' ') || byte == '\x7f';
    };
    return std::ranges::none_of(path, isRefused) && text::repaired(path) == path;
}

std::string quotedExecArgument(std::string_view argument) {
    std::string quoted = "\"";
    for (const char byte : argument) {
        if (quotedSpecials.find(byte) != std::string_view::npos) {
            quoted += '\\';
        }
        quoted += byte;
    }
    return quoted + '"';
}

std::optional<std::string> programOfExec(std::string_view exec) {
    exec = withoutBlanks(exec);
    std::string program;
    bool quoted = false;
    for (std::size_t at = 0; at < exec.size(); ++at) {
        if (exec[at] == '"') {
            quoted = !quoted;
        } else if (!quoted && blanks.find(exec[at]) != std::string_view::npos) {
            break;
        } else if (quoted && exec[at] == '\\' && at + 1 < exec.size()) {
            program += exec[++at];
        } else {
            program += exec[at];
        }
    }
    if (quoted || program.empty()) {
        return std::nullopt;
    }
    return program;
}

} // namespace vorla
