// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Files in the format of the freedesktop.org Desktop Entry Specification, as far as one of our own
/// needs it: the group "Desktop Entry", no translations. Pure.
namespace vorla {

/// Without the blanks that may stand around a line, a key or a value.
std::string_view withoutBlanks(std::string_view text);

/// A desktop entry that was read. Lines that are no valid lines are passed over.
class DesktopEntry final {
public:
    /// Nothing if the group is missing.
    static std::optional<DesktopEntry> parse(std::string_view bytes);

    /// The value with its escapes resolved, or nothing if the key is missing.
    std::optional<std::string> string(std::string_view key) const;
    /// The parts of a list; none if the key is missing.
    std::vector<std::string> strings(std::string_view key) const;
    /// Nothing if the key is missing or neither true nor false, which were 1 and 0 in old entries.
    std::optional<bool> boolean(std::string_view key) const;

private:
    /// As they stand in the file; of a key that is given twice, the last value counts.
    std::map<std::string, std::string, std::less<>> values_;
};

struct DesktopEntryLine {
    std::string_view key;
    std::string value;
};

/// The text of a file with these lines in the group; the values are escaped.
std::string desktopEntryText(std::span<const DesktopEntryLine> lines);

/// Whether all desktops take `path` for the same program. Some of them refuse a "%" even where it
/// is doubled, and others a backslash; control characters and ill-formed UTF-8 have no place in a
/// value. Where systemd starts the entries, a path with quotes, "$" or "`" is lost all the same: it
/// takes no such name of a program, however it is spelt.
bool canStandInExec(std::string_view path);

/// `argument` in quotes for the value of Exec. Precondition: canStandInExec(argument).
std::string quotedExecArgument(std::string_view argument);

/// The program that a value of Exec starts, its quotes resolved; nothing if there is none.
std::optional<std::string> programOfExec(std::string_view exec);

} // namespace vorla
