// SPDX-License-Identifier: MIT
// Whatever stands in an autostart entry can be read, and what the program writes into one comes
// back.
#include "Require.h"
#include "Utf8.h"

#include "linux/DesktopEntry.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace vorla;
using fuzz::require;

constexpr std::string_view header = "[Desktop Entry]";

void checkExec(std::string_view exec) {
    if (const auto program = programOfExec(exec)) {
        require(!program->empty(), "a program has a name");
        require(program->size() <= exec.size(), "a program stands in its line");
    }
}

void checkValues(const DesktopEntry& entry, std::string_view bytes) {
    for (const char* const key : {"Type", "Exec", "TryExec", "Hidden", "OnlyShowIn", "a", ""}) {
        const auto text = entry.string(key);
        const auto list = entry.strings(key);
        require(text || (list.empty() && !entry.boolean(key)), "no value has no parts");
        require(!text || text->size() <= bytes.size(), "a value stands in the file");
        require(
            std::ranges::none_of(list, [](const std::string& part) { return part.empty(); }),
            "a part of a list is something");
        if (text == "true" || text == "false") {
            require(entry.boolean(key) == (text == "true"), "true is true");
        }
        checkExec(text.value_or(""));
    }
}

void checkReading(std::string_view bytes) {
    const auto entry = DesktopEntry::parse(bytes);
    require(entry || !bytes.starts_with(std::string(header) + "\n"), "the group is found");
    require(!entry || bytes.find(header) != std::string_view::npos, "no group is made up");
    if (entry) {
        checkValues(*entry, bytes);
    }
}

void checkWriting(const std::string& value) {
    const std::array<DesktopEntryLine, 2> lines = {{{"Name", value}, {"After", "it"}}};
    const auto entry = DesktopEntry::parse(desktopEntryText(lines));
    require(entry.has_value(), "what is written is an entry");
    require(entry->string("Name") == value, "what is written is read");
    require(entry->string("After") == "it", "a value stays on its line");
}

void checkQuoting(const std::string& path) {
    if (!canStandInExec(path) || path.empty()) {
        return;
    }
    require(fuzz::isWellFormed(path), "a path in an entry is well-formed");
    const std::string quoted = quotedExecArgument(path);
    require(programOfExec(quoted) == path, "a quoted program is found");
    require(programOfExec(quoted + " --more \"x\"") == path, "arguments do not hide the program");
    const std::array<DesktopEntryLine, 1> lines = {{{"Exec", quoted}}};
    const auto entry = DesktopEntry::parse(desktopEntryText(lines));
    require(entry && entry->string("Exec") == quoted, "a line that starts the program is read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    checkReading(bytes);
    checkReading(std::string(header) + "\nExec=" + bytes);
    checkExec(bytes);
    checkWriting(bytes);
    checkQuoting(bytes);
    return 0;
}
