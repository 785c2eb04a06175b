// SPDX-License-Identifier: MIT
#pragma once

#include "bus/ScriptedPanel.h"
#include "linux/Pixmap.h"

#include <sys/prctl.h>

#include <array>
#include <list>
#include <map>
#include <ostream>
#include <set>

namespace vorla {

/// Gives this process another command name for as long as it lives.
class CommandName final {
public:
    explicit CommandName(const std::string& name) {
        prctl(PR_GET_NAME, before_.data());
        prctl(PR_SET_NAME, name.c_str());
    }
    ~CommandName() { prctl(PR_SET_NAME, before_.data()); }
    CommandName(const CommandName&) = delete;
    CommandName& operator=(const CommandName&) = delete;

private:
    std::array<char, 16> before_ = {};
};

/// How one panel behaves towards an item, as far as it has been seen to.
struct HostTraits {
    enum class Label { unread, besideTheIcon, insteadOfTheIcon };
    enum class Pick { smallestThatFits, largestArea, largestSquare, fileOnly };
    enum class OnLayout { readsAnew, keepsOldLabels, closesTheMenu };
    enum class Opening { toldOnce, toldInGroups, untold };
    enum class LeftClick {
        opensTheMenu,
        opensItIfActivateFails,
        onlyActivates,
        opensItBelowOnePath
    };
    using Names = std::set<std::string>;

    std::string name;
    std::string commandName;
    Label label = Label::unread;
    Pick pick = Pick::largestArea;
    int iconSize = 22;
    /// Which properties it reads anew at each signal.
    std::map<std::string, Names> rereads = {};
    bool hasMenu = true;
    OnLayout onLayout = OnLayout::readsAnew;
    Opening opening = Opening::toldOnce;
    LeftClick leftClick = LeftClick::opensTheMenu;
};

/// How tests name what they play.
inline void PrintTo(const HostTraits& traits, std::ostream* out) {
    *out << traits.name;
}

/// A panel that is watcher and host at once and behaves by its traits: it learns of the item only
/// what such a panel reads, and when such a panel reads it.
class ScriptedHost final {
public:
    ScriptedHost(ManualLoop& loop, const std::string& address, HostTraits traits)
        : traits_(std::move(traits)), loop_(loop), commandName_(traits_.commandName),
          bus_(bus::Bus::open(loop.real(), address)) {
        signals_ = bus_.subscribe(
            {.sender = applicationName}, [this](bus::Message& message) { hear(message); });
        bus::Interface watcher("org.kde.StatusNotifierWatcher");
        watcher.method("RegisterStatusNotifierItem", [this](const std::string& path) {
            itemPath_ = path;
            readItem({"Title", "IconName", "IconPixmap", "XAyatanaLabel", "ItemIsMenu"});
            readLayout();
        });
        watcher_ = bus::exportObject(bus_, "/StatusNotifierWatcher", std::move(watcher));
    }

    bool appear() {
        return bus_.requestName("org.kde.StatusNotifierHost-1") &&
               bus_.requestName("org.kde.StatusNotifierWatcher");
    }

    bool knowsTheItem() const { return !itemPath_.empty(); }

    /// Runs until it has heard all that the application has sent so far, and read all that it
    /// reads upon it.
    void settle() {
        do {
            bool heard = false;
            send<>(
                {applicationName, vorla::itemPath, "org.freedesktop.DBus.Peer", "Ping"},
                [&heard](const bus::Reply<>&) { heard = true; });
            loop_.runUntil([&] { return heard && pending_.empty(); });
        } while (!pending_.empty());
    }

    /// Returns whether the menu is open now.
    bool leftClick() {
        using LeftClick = HostTraits::LeftClick;
        const auto click = traits_.leftClick;
        // A click goes to the item itself unless that is nothing but a menu.
        bool refused = itemIsMenu_;
        if (click == LeftClick::onlyActivates || click == LeftClick::opensItIfActivateFails) {
            refused = callItem("Activate");
        }
        const bool fits = click != LeftClick::opensItBelowOnePath ||
                          itemPath_.starts_with("/org/ayatana/NotificationItem/");
        if (click != LeftClick::onlyActivates && refused && fits) {
            openMenu();
        }
        return isOpen_;
    }

    void openMenu() {
        if (!traits_.hasMenu) {
            callItem("ContextMenu");
            return;
        }
        if (traits_.opening == HostTraits::Opening::toldInGroups) {
            send<std::vector<std::int32_t>, std::vector<std::int32_t>>(
                menuMethod("AboutToShowGroup"),
                [this](const auto& reply) {
                    if (reply.results && !std::get<0>(*reply.results).empty()) {
                        readLayout();
                    }
                },
                std::vector<std::int32_t>{0});
        } else {
            send<bool>(
                menuMethod("AboutToShow"),
                [this](const bus::Reply<bool>& reply) {
                    if (reply.results && std::get<0>(*reply.results)) {
                        readLayout();
                    }
                },
                std::int32_t{0});
        }
        isOpen_ = true;
        tell("opened");
        settle();
    }

    void closeMenu() {
        isOpen_ = false;
        tell("closed");
        settle();
    }

    bool isOpen() const { return isOpen_; }

    /// The text that it shows in its bar, or nothing.
    std::string shownText() const {
        return traits_.label == HostTraits::Label::unread ? "" : label_;
    }

    /// The path of the picture that it shows, or nothing.
    std::string shownFile() const { return iconName_; }

    /// The picture that it shows, or an empty one.
    Pixmap shownPixmap() const {
        const bool isHidden = !iconName_.empty() ||
                              traits_.label == HostTraits::Label::insteadOfTheIcon ||
                              traits_.pick == HostTraits::Pick::fileOnly;
        return isHidden ? Pixmap{} : picked();
    }

    /// The visible lines in order, as it shows them.
    std::vector<std::string> shownLines() const {
        std::vector<std::string> shown;
        for (const std::int32_t id : order_) {
            const auto& properties = lines_.at(id);
            const auto visible = properties.find("visible");
            if (visible != properties.end() && visible->second == bus::Variant(false)) {
                continue;
            }
            const auto label = properties.find("label");
            shown.push_back(label == properties.end() ? "" : std::get<std::string>(label->second));
        }
        return shown;
    }

    /// As it was when this panel last read it.
    const std::string& title() const { return title_; }

    bool rereadsTitle() const {
        const auto names = traits_.rereads.find("NewTitle");
        return names != traits_.rereads.end() && names->second.contains("Title");
    }

    /// Names of all signals since the last call.
    std::vector<std::string> newSignals() { return std::exchange(heard_, {}); }

    /// How often it has taken a whole layout.
    int layoutsTaken = 0;

private:
    using Leaf = ScriptedPanel::Leaf;
    using Layout = ScriptedPanel::Layout;
    using Names = HostTraits::Names;
    using Pictures = std::vector<std::tuple<std::int32_t, std::int32_t, std::vector<std::uint8_t>>>;

    static bus::MethodName menuMethod(const std::string& member) {
        return {applicationName, menuPath, menuInterface, member};
    }

    template <typename... Results, typename Answer, typename... Arguments>
    void send(const bus::MethodName& method, Answer answer, const Arguments&... arguments) {
        const auto place = pending_.emplace(pending_.end());
        *place = bus_.call(
            method, std::chrono::seconds{25},
            [this, place, answer](const bus::Reply<Results...>& reply) {
                answer(reply);
                pending_.erase(place);
            },
            arguments...);
    }

    /// Whether the item refuses a click method.
    bool callItem(const std::string& member) {
        bool refused = false;
        send<>(
            {applicationName, itemPath_, itemInterface, member},
            [&refused](const bus::Reply<>& reply) { refused = !reply.results; }, std::int32_t{5},
            std::int32_t{5});
        settle();
        return refused;
    }

    void tell(const std::string& kind) {
        const auto ignore = [](const auto&) {};
        const bus::Variant data(std::int32_t{0});
        switch (traits_.opening) {
        case HostTraits::Opening::toldOnce:
            send<>(menuMethod("Event"), ignore, std::int32_t{0}, kind, data, std::uint32_t{0});
            return;
        case HostTraits::Opening::toldInGroups:
            send<std::vector<std::int32_t>>(
                menuMethod("EventGroup"), ignore,
                std::vector<ScriptedPanel::Event>{{0, kind, data, 0U}});
            return;
        case HostTraits::Opening::untold:
            return;
        }
    }

    template <typename Value>
    void readProperty(const std::string& name, Value& place) {
        send<bus::InVariant<Value>>(
            {applicationName, itemPath_, "org.freedesktop.DBus.Properties", "Get"},
            [&place](const auto& reply) {
                if (reply.results) {
                    place = std::get<0>(*reply.results).value;
                }
            },
            std::string(itemInterface), name);
    }

    void readItem(const Names& names) {
        const std::map<std::string, std::string&> texts = {
            {"Title", title_}, {"IconName", iconName_}, {"XAyatanaLabel", label_}};
        for (const std::string& name : names) {
            if (const auto text = texts.find(name); text != texts.end()) {
                readProperty(name, text->second);
            } else if (name == "IconPixmap") {
                readProperty(name, pictures_);
            } else if (name == "ItemIsMenu") {
                readProperty(name, itemIsMenu_);
            }
        }
    }

    void readLayout() {
        if (!traits_.hasMenu) {
            return;
        }
        send<std::uint32_t, Layout>(
            menuMethod("GetLayout"),
            [this](const bus::Reply<std::uint32_t, Layout>& reply) {
                if (reply.results) {
                    takeLayout(std::get<1>(*reply.results));
                }
            },
            std::int32_t{0}, std::int32_t{-1}, std::vector<std::string>{});
    }

    void takeLayout(const Layout& layout) {
        ++layoutsTaken;
        order_.clear();
        for (const auto& child : std::get<2>(layout)) {
            const auto& [id, properties, children] = child.value;
            order_.push_back(id);
            const bool keepsOld = traits_.onLayout == HostTraits::OnLayout::keepsOldLabels;
            if (!keepsOld || !lines_.contains(id)) {
                lines_[id] = properties;
            }
        }
    }

    void hear(bus::Message& message) {
        const std::string name = sd_bus_message_get_member(message.native());
        heard_.push_back(name);
        if (name == "XAyatanaNewLabel") {
            if (traits_.label != HostTraits::Label::unread) {
                label_ = message.read<std::string>();
            }
        } else if (name == "ItemsPropertiesUpdated") {
            for (const auto& [id, changes] : message.read<std::vector<PublishedMenu::Change>>()) {
                for (const auto& [property, value] : changes) {
                    lines_[id][property] = value;
                }
            }
        } else if (name == "LayoutUpdated") {
            isOpen_ = isOpen_ && traits_.onLayout != HostTraits::OnLayout::closesTheMenu;
            readLayout();
        }
        if (const auto names = traits_.rereads.find(name);
            knowsTheItem() && names != traits_.rereads.end()) {
            readItem(names->second);
        }
    }

    Pixmap picked() const {
        using Pick = HostTraits::Pick;
        const std::tuple<std::int32_t, std::int32_t, std::vector<std::uint8_t>>* best = nullptr;
        const auto area = [](const auto& picture) {
            return std::get<0>(picture) * std::get<1>(picture);
        };
        for (const auto& picture : pictures_) {
            const auto& [width, height, bytes] = picture;
            if (traits_.pick == Pick::smallestThatFits) {
                const bool fits = width >= traits_.iconSize && height >= traits_.iconSize;
                best = fits && (best == nullptr || area(picture) < area(*best)) ? &picture : best;
            } else if (traits_.pick == Pick::largestArea || width == height) {
                best = best == nullptr || area(picture) > area(*best) ? &picture : best;
            }
        }
        if (best == nullptr) {
            return {};
        }
        return {std::get<0>(*best), std::get<1>(*best), std::get<2>(*best)};
    }

    HostTraits traits_;
    ManualLoop& loop_;
    CommandName commandName_;
    bus::Bus bus_;
    bus::Slot signals_;
    bus::Slot watcher_;
    std::list<bus::Slot> pending_;
    std::vector<std::string> heard_;
    std::string itemPath_;
    std::string title_;
    bool itemIsMenu_ = false;
    std::string label_;
    std::string iconName_;
    Pictures pictures_;
    std::vector<std::int32_t> order_;
    std::map<std::int32_t, bus::Dictionary> lines_;
    bool isOpen_ = false;
};

} // namespace vorla
