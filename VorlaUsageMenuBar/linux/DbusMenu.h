// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PublishedMenu.h"
#include "linux/bus/Interface.h"
#include "ports/MainLoop.h"
#include "ports/StatusItem.h"

#include <utility>

namespace vorla {

/// The item's menu on the bus, as com.canonical.dbusmenu. Main thread.
///
/// Panels show what they were told last, so everything that changes is sent, and nothing else:
/// changed properties at once, new lines by a new layout. The layout waits while the menu is open,
/// for some panels close the menu over it.
class DbusMenu final {
public:
    /// Throws std::system_error if the bus refuses the object.
    DbusMenu(bus::Bus& bus, MainLoop& loop, std::string path);

    /// Must not destroy the menu from inside its calls.
    void setListener(StatusItem::Listener* listener) { listener_ = listener; }

    void show(std::span<const MenuLine> lines);

    /// When the user made the choice that the listener is being told of, by the display server's
    /// clock; 0 if the panel does not know. Good once.
    std::uint32_t takeChoiceTime() { return std::exchange(choiceTime_, 0); }

private:
    using Ids = std::vector<std::int32_t>;
    using Names = std::vector<std::string>;
    using ItemProperties = std::tuple<std::int32_t, bus::Dictionary>;
    /// A line in a layout; it has no children.
    using Leaf = std::tuple<std::int32_t, bus::Dictionary, std::vector<bus::Variant>>;
    using Layout = std::tuple<std::int32_t, bus::Dictionary, std::vector<bus::InVariant<Leaf>>>;
    using Event = std::tuple<std::int32_t, std::string, bus::Variant, std::uint32_t>;

    bus::Interface interface();
    void addQueries(bus::Interface& interface);
    void addEvents(bus::Interface& interface);

    std::tuple<std::uint32_t, Layout>
    layout(std::int32_t parent, std::int32_t depth, const Names& names) const;
    std::vector<ItemProperties> groupProperties(Ids ids, const Names& names) const;
    bus::Variant property(std::int32_t id, const std::string& name) const;
    bool aboutToShow(std::int32_t id);
    std::tuple<Ids, Ids> aboutToShowGroup(const Ids& ids);
    void event(std::int32_t id, const std::string& kind, std::uint32_t time);
    Ids eventGroup(const std::vector<Event>& events);

    bool holds(std::int32_t id) const;
    void rootEvent(const std::string& kind);
    void opened();
    void menuWillOpen();
    void bringOutLayout();

    bus::Bus& bus_;
    MainLoop& loop_;
    std::string path_;
    StatusItem::Listener* listener_ = nullptr;
    PublishedMenu menu_;
    std::uint32_t choiceTime_ = 0;
    /// Held while the menu counts as open: panels may forget to say that it was closed.
    std::unique_ptr<MainLoop::Source> openLimit_;
    bus::Slot object_;
};

} // namespace vorla
