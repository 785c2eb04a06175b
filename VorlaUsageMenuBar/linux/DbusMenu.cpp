// SPDX-License-Identifier: MIT
#include "linux/DbusMenu.h"

#include <algorithm>
#include <utility>

namespace vorla {

namespace {

constexpr const char* interfaceName = "com.canonical.dbusmenu";
constexpr std::uint32_t protocolVersion = 3;
constexpr std::int32_t root = 0;
constexpr std::chrono::seconds longestOpening{10};
/// A panel sends a few at most; each opening of the root takes a whole new menu.
constexpr std::size_t maximumGroupedEvents = 100;
/// A line has seven properties; each name is looked for in those of all lines.
constexpr std::size_t maximumPropertyNames = 100;

const bus::Dictionary& rootProperties() {
    static const bus::Dictionary properties = {{"children-display", "submenu"}};
    return properties;
}

[[noreturn]] void refuse(const char* what) {
    throw std::system_error(EINVAL, std::generic_category(), what);
}

void refuseTooMany(const std::vector<std::string>& names) {
    if (names.size() > maximumPropertyNames) {
        refuse("too many names");
    }
}

/// Those of the given names; no names stand for all.
bus::Dictionary named(bus::Dictionary properties, const std::vector<std::string>& names) {
    if (!names.empty()) {
        std::erase_if(properties, [&](const auto& property) {
            return std::ranges::find(names, property.first) == names.end();
        });
    }
    return properties;
}

bus::Dictionary namedOf(const PublishedLine& line, const std::vector<std::string>& names) {
    return named(withoutDefaults(allProperties(line)), names);
}

} // namespace

DbusMenu::DbusMenu(bus::Bus& bus, MainLoop& loop, std::string path)
    : bus_(bus), loop_(loop), path_(std::move(path)),
      object_(bus::exportObject(bus, path_, interface())) {}

bus::Interface DbusMenu::interface() {
    bus::Interface result(interfaceName);
    addQueries(result);
    addEvents(result);
    result.property("Version", [] { return protocolVersion; });
    result.property("TextDirection", [] { return std::string("ltr"); });
    result.property("Status", [] { return std::string("normal"); });
    result.property("IconThemePath", [] { return Names{}; });
    result.signal<std::vector<ItemProperties>, std::vector<std::tuple<std::int32_t, Names>>>(
        "ItemsPropertiesUpdated");
    result.signal<std::uint32_t, std::int32_t>("LayoutUpdated");
    result.signal<std::int32_t, std::uint32_t>("ItemActivationRequested");
    return result;
}

void DbusMenu::addQueries(bus::Interface& interface) {
    interface.method(
        "GetLayout", [this](std::int32_t parent, std::int32_t depth, const Names& names) {
            return layout(parent, depth, names);
        });
    interface.method("GetGroupProperties", [this](const Ids& ids, const Names& names) {
        return groupProperties(ids, names);
    });
    interface.method("GetProperty", [this](std::int32_t id, const std::string& name) {
        return property(id, name);
    });
}

void DbusMenu::addEvents(bus::Interface& interface) {
    interface.method(
        "Event",
        [this](std::int32_t id, const std::string& kind, const bus::Variant&, std::uint32_t time) {
            event(id, kind, time);
        });
    interface.method(
        "EventGroup", [this](const std::vector<Event>& events) { return eventGroup(events); });
    interface.method("AboutToShow", [this](std::int32_t id) { return aboutToShow(id); });
    interface.method("AboutToShowGroup", [this](const Ids& ids) { return aboutToShowGroup(ids); });
}

void DbusMenu::show(std::span<const MenuLine> lines) {
    const auto changes = menu_.update(lines);
    if (!changes.empty()) {
        const std::vector<std::tuple<std::int32_t, Names>> removed;
        bus_.emit(path_, interfaceName, "ItemsPropertiesUpdated", changes, removed);
    }
    if (openLimit_ == nullptr) {
        bringOutLayout();
    }
}

void DbusMenu::bringOutLayout() {
    if (!menu_.hasWaitingLines()) {
        return;
    }
    menu_.publishWaitingLines();
    bus_.emit(path_, interfaceName, "LayoutUpdated", menu_.revision(), root);
}

bool DbusMenu::holds(std::int32_t id) const {
    return id == root || menu_.find(id) != nullptr;
}

std::tuple<std::uint32_t, DbusMenu::Layout>
DbusMenu::layout(std::int32_t parent, std::int32_t depth, const Names& names) const {
    refuseTooMany(names);
    if (parent != root) {
        const auto* const line = menu_.find(parent);
        if (line == nullptr) {
            refuse("no such menu line");
        }
        return {menu_.revision(), {parent, namedOf(*line, names), {}}};
    }
    std::vector<bus::InVariant<Leaf>> children;
    if (depth != 0) {
        for (const auto& line : menu_.lines()) {
            children.push_back({{lineId(line.identity), namedOf(line, names), {}}});
        }
    }
    return {menu_.revision(), {root, named(rootProperties(), names), std::move(children)}};
}

// Walks the layout rather than the request, which may name an id a million times.
std::vector<DbusMenu::ItemProperties> DbusMenu::groupProperties(Ids ids, const Names& names) const {
    refuseTooMany(names);
    std::ranges::sort(ids);
    const auto isAskedFor = [&](std::int32_t id) {
        return ids.empty() || std::ranges::binary_search(ids, id);
    };
    std::vector<ItemProperties> result;
    if (isAskedFor(root)) {
        result.emplace_back(root, named(rootProperties(), names));
    }
    for (const auto& line : menu_.lines()) {
        const std::int32_t id = lineId(line.identity);
        if (isAskedFor(id)) {
            result.emplace_back(id, namedOf(line, names));
        }
    }
    return result;
}

bus::Variant DbusMenu::property(std::int32_t id, const std::string& name) const {
    const auto* const line = menu_.find(id);
    if (id != root && line == nullptr) {
        refuse("no such menu line");
    }
    const auto properties = line == nullptr ? rootProperties() : allProperties(*line);
    const auto found = properties.find(name);
    if (found == properties.end()) {
        refuse("no such property");
    }
    return found->second;
}

bool DbusMenu::aboutToShow(std::int32_t id) {
    if (!holds(id)) {
        refuse("no such menu line");
    }
    if (id != root) {
        return false;
    }
    const std::uint32_t before = menu_.revision();
    menuWillOpen();
    bringOutLayout();
    return menu_.revision() != before;
}

std::tuple<DbusMenu::Ids, DbusMenu::Ids> DbusMenu::aboutToShowGroup(const Ids& ids) {
    if (ids.size() > maximumGroupedEvents) {
        refuse("too many lines");
    }
    Ids changed;
    Ids unknown;
    for (const auto id : ids) {
        if (!holds(id)) {
            unknown.push_back(id);
        } else if (aboutToShow(id)) {
            changed.push_back(id);
        }
    }
    return {std::move(changed), std::move(unknown)};
}

void DbusMenu::event(std::int32_t id, const std::string& kind, std::uint32_t time) {
    if (id == root) {
        rootEvent(kind);
        return;
    }
    const auto* const line = menu_.find(id);
    if (line == nullptr) {
        refuse("no such menu line");
    }
    const bool canBeChosen = line->visible && line->enabled && line->action != MenuAction::none;
    if (kind == "clicked" && canBeChosen && listener_ != nullptr) {
        choiceTime_ = time;
        listener_->chosen(line->action);
        choiceTime_ = 0;
    }
}

DbusMenu::Ids DbusMenu::eventGroup(const std::vector<Event>& events) {
    if (events.size() > maximumGroupedEvents) {
        refuse("too many events");
    }
    Ids unknown;
    for (const auto& [id, kind, data, time] : events) {
        if (holds(id)) {
            event(id, kind, time);
        } else {
            unknown.push_back(id);
        }
    }
    return unknown;
}

void DbusMenu::rootEvent(const std::string& kind) {
    if (kind == "opened") {
        opened();
    } else if (kind == "closed") {
        openLimit_.reset();
        bringOutLayout();
    }
}

void DbusMenu::opened() {
    if (openLimit_ != nullptr) {
        // The last opening was never ended, or another panel's goes on; nothing waits for longer
        // than one opening may take.
        bringOutLayout();
    }
    openLimit_ = loop_.after(longestOpening, [this] {
        openLimit_.reset();
        bringOutLayout();
    });
    menuWillOpen();
}

void DbusMenu::menuWillOpen() {
    if (listener_ != nullptr) {
        listener_->menuWillOpen();
    }
}

} // namespace vorla
