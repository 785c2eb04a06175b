// SPDX-License-Identifier: MIT
// Prints title and menu of the status item on the session bus as text:
//   print-item [--when-loaded]
// A line in parentheses is greyed, [x] and [ ] are check marks. With --when-loaded it waits until
// the first figures have come, or half a minute.
#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {
namespace {

constexpr const char* busName = "com.vorla.UsageMenuBar";
constexpr const char* itemPath = "/org/ayatana/NotificationItem/VorlaUsageMenuBar";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr std::chrono::seconds patience{30};
constexpr std::chrono::milliseconds betweenLooks{200};

struct MenuLine {
    std::string label;
    bool isSeparator = false;
    bool isEnabled = true;
    /// A line that has nothing to say stays in the layout, with the last text it showed.
    bool isVisible = true;
    bool hasCheckMark = false;
    bool isChecked = false;
};

struct Item {
    std::string title;
    std::vector<MenuLine> lines;
};

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;
using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

/// An answer that is not what the interface promises.
void require(int outcome) {
    if (outcome < 0) {
        throw std::runtime_error("the menu cannot be read");
    }
}

/// The value of a variant, if it has the type asked for; anything else is passed over.
template <typename Value>
std::optional<Value> readVariant(sd_bus_message* message, char type) {
    const char signature[] = {type, '\0'};
    const int matches = sd_bus_message_verify_type(message, 'v', signature);
    if (matches <= 0) {
        require(sd_bus_message_skip(message, "v"));
        return std::nullopt;
    }
    Value value{};
    require(sd_bus_message_enter_container(message, 'v', signature));
    require(sd_bus_message_read_basic(message, type, &value));
    require(sd_bus_message_exit_container(message));
    return value;
}

/// As a panel shows it: a doubled underscore is one, a single one only marks the letter after it.
std::string shownLabel(std::string_view label) {
    std::string shown;
    for (std::size_t position = 0; position < label.size(); ++position) {
        if (label[position] == '_') {
            ++position;
        }
        if (position < label.size()) {
            shown += label[position] == '\n' ? ' ' : label[position];
        }
    }
    return shown;
}

void readProperty(sd_bus_message* message, MenuLine& line) {
    const char* key = nullptr;
    require(sd_bus_message_read_basic(message, 's', &key));
    const std::string_view name = key;
    if (name == "label") {
        line.label = shownLabel(readVariant<const char*>(message, 's').value_or(""));
    } else if (name == "type") {
        const std::string_view type = readVariant<const char*>(message, 's').value_or("");
        line.isSeparator = type == "separator";
    } else if (name == "enabled") {
        line.isEnabled = readVariant<int>(message, 'b').value_or(1) != 0;
    } else if (name == "visible") {
        line.isVisible = readVariant<int>(message, 'b').value_or(1) != 0;
    } else if (name == "toggle-type") {
        const std::string_view type = readVariant<const char*>(message, 's').value_or("");
        line.hasCheckMark = !type.empty();
    } else if (name == "toggle-state") {
        line.isChecked = readVariant<std::int32_t>(message, 'i').value_or(0) == 1;
    } else {
        require(sd_bus_message_skip(message, "v"));
    }
}

/// Reads one node of the layout and, after its own line, those of its children.
void readNode(sd_bus_message* message, std::vector<MenuLine>& lines) {
    std::int32_t identifier = 0;
    require(sd_bus_message_enter_container(message, 'r', "ia{sv}av"));
    require(sd_bus_message_read_basic(message, 'i', &identifier));
    MenuLine line;
    require(sd_bus_message_enter_container(message, 'a', "{sv}"));
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
        readProperty(message, line);
        require(sd_bus_message_exit_container(message));
    }
    require(sd_bus_message_exit_container(message));
    // Number 0 is the menu itself.
    if (identifier != 0 && line.isVisible) {
        lines.push_back(line);
    }
    require(sd_bus_message_enter_container(message, 'a', "v"));
    while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
        readNode(message, lines);
        require(sd_bus_message_exit_container(message));
    }
    require(sd_bus_message_exit_container(message));
    require(sd_bus_message_exit_container(message));
}

/// A string or an object path of the item; nothing while there is no item.
std::optional<std::string> readItemProperty(sd_bus* bus, const char* property, char type) {
    sd_bus_message* received = nullptr;
    const char signature[] = {type, '\0'};
    if (sd_bus_get_property(
            bus, busName, itemPath, itemInterface, property, nullptr, &received, signature) < 0) {
        return std::nullopt;
    }
    const Message message(received, &sd_bus_message_unref);
    const char* text = nullptr;
    require(sd_bus_message_read_basic(message.get(), type, &text));
    return text;
}

std::optional<Item> readItem(sd_bus* bus) {
    const std::optional<std::string> title = readItemProperty(bus, "XAyatanaLabel", 's');
    const std::optional<std::string> menuPath = readItemProperty(bus, "Menu", 'o');
    if (!title || !menuPath) {
        return std::nullopt;
    }
    sd_bus_message* received = nullptr;
    if (sd_bus_call_method(
            bus, busName, menuPath->c_str(), "com.canonical.dbusmenu", "GetLayout", nullptr,
            &received, "iias", 0, -1, 0) < 0) {
        return std::nullopt;
    }
    const Message message(received, &sd_bus_message_unref);
    std::uint32_t revision = 0;
    require(sd_bus_message_read_basic(message.get(), 'u', &revision));
    Item item{.title = *title, .lines = {}};
    readNode(message.get(), item.lines);
    return item;
}

bool isLoaded(const Item& item) {
    return item.title != "Vorla ?" &&
           (item.lines.empty() || item.lines.front().label != "Loading Vorla usage…");
}

enum class Readiness { present, loaded };

/// The item once it is ready, or as it is when patience ends; nothing if there is none.
std::optional<Item> waitForItem(sd_bus* bus, Readiness readiness) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        std::optional<Item> item = readItem(bus);
        const bool ready = item && (readiness == Readiness::present || isLoaded(*item));
        if (ready || std::chrono::steady_clock::now() >= deadline) {
            return item;
        }
        // Messages that nobody asked for would end the wait at once.
        while (sd_bus_process(bus, nullptr) > 0) {}
        sd_bus_wait(
            bus, static_cast<std::uint64_t>(std::chrono::microseconds(betweenLooks).count()));
    }
}

void print(const Item& item) {
    std::printf("%s\n", item.title.c_str());
    for (const MenuLine& line : item.lines) {
        if (line.isSeparator) {
            std::puts("  ----------------------------------------");
            continue;
        }
        std::string text = line.label;
        if (line.hasCheckMark) {
            text = (line.isChecked ? "[x] " : "[ ] ") + text;
        }
        std::printf(line.isEnabled ? "  %s\n" : "  (%s)\n", text.c_str());
    }
}

int failed(const char* sentence) {
    std::fputs(sentence, stderr);
    return EXIT_FAILURE;
}

int run(std::span<char* const> arguments) {
    const bool whenLoaded =
        arguments.size() == 2 && arguments[1] == std::string_view("--when-loaded");
    if (arguments.size() > 1 && !whenLoaded) {
        return failed("The only option is --when-loaded.\n");
    }
    sd_bus* opened = nullptr;
    if (sd_bus_open_user(&opened) < 0) {
        return failed("There is no session bus.\n");
    }
    const Bus bus(opened, &sd_bus_flush_close_unref);
    const auto item = waitForItem(bus.get(), whenLoaded ? Readiness::loaded : Readiness::present);
    if (!item) {
        return failed("There is no status item of VorlaUsageMenuBar on the session bus.\n");
    }
    print(*item);
    return EXIT_SUCCESS;
}

} // namespace
} // namespace vorla

int main(int argumentCount, char** arguments) {
    try {
        return vorla::run({arguments, static_cast<std::size_t>(argumentCount)});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The status item was found, but %s.\n", error.what());
        return EXIT_FAILURE;
    }
}
