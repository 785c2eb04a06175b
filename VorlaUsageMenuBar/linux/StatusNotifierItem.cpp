// SPDX-License-Identifier: MIT
#include "linux/StatusNotifierItem.h"

#include "linux/BusText.h"

#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace vorla {

namespace {

constexpr const char* interfaceName = "org.kde.StatusNotifierItem";
/// Some panels open the menu on a left click only for items below /org/ayatana/NotificationItem/.
constexpr const char* itemPath = "/org/ayatana/NotificationItem/VorlaUsageMenuBar";
constexpr const char* menuPath = "/org/ayatana/NotificationItem/VorlaUsageMenuBar/Menu";
constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
/// The widest title, so that a panel which reserves room for it keeps its other items in place.
constexpr const char* titleGuide = "5h 100% · W 100%";

constexpr std::chrono::seconds activationTokenLife{10};
constexpr std::size_t longestActivationToken = 1024;
constexpr std::chrono::seconds registrationLimit{25};

/// By which programs under X11 may take the focus: the time of the click in what a starter of
/// programs would hand on. Nothing under Wayland, where it would keep a toolkit from asking for a
/// token of its own.
std::optional<std::string> startupId(std::uint32_t clickTime) {
    if (clickTime == 0 || std::getenv("WAYLAND_DISPLAY") != nullptr) {
        return std::nullopt;
    }
    return "VorlaUsageMenuBar-" + std::to_string(getpid()) + "_TIME" + std::to_string(clickTime);
}

/// An icon's name, its pixels, title and body.
using ToolTip = std::tuple<std::string, std::vector<Pixmap>, std::string, std::string>;

} // namespace

namespace bus {

template <>
struct Codec<Pixmap> {
    static std::string signature() { return "(iiay)"; }

    static void write(Message& message, const Pixmap& pixmap) {
        message.openContainer('r', "iiay");
        message.write<std::int32_t, std::int32_t>(pixmap.width, pixmap.height);
        message.write(pixmap.argb);
        message.closeContainer();
    }
};

} // namespace bus

StatusNotifierItem::StatusNotifierItem(bus::Bus& bus, MainLoop& loop, std::string iconFile)
    : bus_(bus), loop_(loop), iconFile_(std::move(iconFile)), menu_(bus, loop, menuPath),
      object_(bus::exportObject(bus, itemPath, interface())),
      hostRecognition_(bus, loop, [this](IconKind kind) { adoptIconKind(kind); }) {
    const bus::SignalRule rule = {
        .sender = "org.freedesktop.DBus",
        .path = "/org/freedesktop/DBus",
        .interface = "org.freedesktop.DBus",
        .member = "NameOwnerChanged",
        .firstArgument = watcherName};
    watcherChanges_ = bus.subscribe(rule, [this](bus::Message& message) {
        message.read<std::string>();
        message.read<std::string>();
        const auto newOwner = message.read<std::string>();
        if (!newOwner.empty() && isComplete_) {
            registerItem();
        }
    });
}

bus::Interface StatusNotifierItem::interface() {
    bus::Interface result(interfaceName);
    result.method("ProvideXdgActivationToken", [this](const std::string& token) {
        keepActivationToken(token);
    });
    result.property("Category", [] { return std::string("ApplicationStatus"); });
    result.property("Id", [] { return std::string("VorlaUsageMenuBar"); });
    result.property("Title", [this] { return title_; });
    result.property("Status", [] { return std::string("Active"); });
    result.property("IconName", [this] { return iconName(); });
    result.property("IconPixmap", [this] { return drawnIcon(); });
    result.property("ToolTip", [this] { return ToolTip{"", {}, toolTipText(title_), ""}; });
    result.property("ItemIsMenu", [] { return true; });
    result.property("Menu", [] { return bus::ObjectPath{menuPath}; });
    result.property("XAyatanaLabel", [this] { return title_; });
    result.property("XAyatanaLabelGuide", [] { return std::string(titleGuide); });
    addUnusedProperties(result);
    result.signal("NewTitle");
    result.signal("NewIcon");
    result.signal("NewToolTip");
    result.signal<std::string, std::string>("XAyatanaNewLabel");
    return result;
}

// Panels ask for them all the same.
void StatusNotifierItem::addUnusedProperties(bus::Interface& interface) {
    for (const char* const name :
         {"IconThemePath", "OverlayIconName", "AttentionIconName", "AttentionMovieName"}) {
        interface.property(name, [] { return std::string{}; });
    }
    for (const char* const name : {"OverlayIconPixmap", "AttentionIconPixmap"}) {
        interface.property(name, [] { return std::vector<Pixmap>{}; });
    }
    interface.property("WindowId", [] { return std::int32_t{0}; });
    interface.property("XAyatanaOrderingIndex", [] { return std::uint32_t{0}; });
}

void StatusNotifierItem::show(const StatusMenu& menu) {
    menu_.show(menu.lines);
    std::string title = plainLabel(menu.title);
    const bool titleChanges = title != title_;
    const bool figuresChange = menu.figures != figures_;
    title_ = std::move(title);
    figures_ = menu.figures;
    if (titleChanges) {
        announceTitle();
    }
    if (titleChanges || figuresChange) {
        announceIcon();
    }
    if (!isComplete_) {
        isComplete_ = true;
        registerItem();
    }
}

void StatusNotifierItem::announceTitle() {
    // Each panel listens to others of these, and reads nothing anew at PropertiesChanged.
    bus_.emit(itemPath, interfaceName, "XAyatanaNewLabel", title_, std::string(titleGuide));
    bus_.emit(itemPath, interfaceName, "NewTitle");
    bus_.emit(itemPath, interfaceName, "NewToolTip");
}

void StatusNotifierItem::adoptIconKind(IconKind kind) {
    const bool changes = kind != iconKind_;
    iconKind_ = kind;
    if (changes && isComplete_) {
        announceIcon();
    }
}

// Different figures may look the same.
void StatusNotifierItem::announceIcon() {
    const std::uint64_t fingerprintNow = fingerprint(drawnIcon());
    if (fingerprintNow != iconFingerprint_) {
        iconFingerprint_ = fingerprintNow;
        bus_.emit(itemPath, interfaceName, "NewIcon");
    }
}

std::string StatusNotifierItem::iconName() const {
    return iconKind_ == IconKind::file ? iconFile_ : "";
}

std::vector<Pixmap> StatusNotifierItem::drawnIcon() const {
    return iconPixmaps(iconKind_, {figures_, title_});
}

/// A panel that does not answer, or none at all, is no failure: the next one gets its own call.
void StatusNotifierItem::registerItem() {
    const bus::MethodName method = {
        watcherName, "/StatusNotifierWatcher", watcherName, "RegisterStatusNotifierItem"};
    try {
        registration_ =
            bus_.call(method, registrationLimit, [](const bus::Reply<>&) {}, std::string(itemPath));
    } catch (const std::system_error&) {
        // The bus is gone, and with it the panel.
        registration_.reset();
    }
}

void StatusNotifierItem::keepActivationToken(const std::string& token) {
    if (token.empty() || token.size() > longestActivationToken) {
        return;
    }
    activationToken_ = token;
    activationTokenLimit_ = loop_.after(activationTokenLife, [this] { activationToken_.reset(); });
}

std::optional<std::string> StatusNotifierItem::takeActivationToken() {
    activationTokenLimit_.reset();
    auto ownId = startupId(menu_.takeChoiceTime());
    auto token = std::exchange(activationToken_, std::nullopt);
    return token ? std::move(token) : std::move(ownId);
}

} // namespace vorla
