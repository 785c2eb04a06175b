// SPDX-License-Identifier: MIT
#include "fennic/X11Focus.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace vorla {

namespace {

/// In messages to window managers: from an application, not from a panel.
constexpr std::uint32_t fromApplication = 1;
constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

/// The time of the user's click, as start-up notifications carry it: at the end, after "_TIME".
std::optional<std::uint32_t> clickTime(std::string_view token) {
    constexpr std::string_view mark = "_TIME";
    const std::size_t position = token.rfind(mark);
    if (position == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view digits = token.substr(position + mark.size());
    const char* const end = digits.data() + digits.size();
    std::uint32_t time = 0;
    const auto [parsed, error] = std::from_chars(digits.data(), end, time);
    // A time of 0 says that there was no click.
    if (error != std::errc() || parsed != end || time == 0) {
        return std::nullopt;
    }
    return time;
}

/// One window, seen past the toolkit. Failures go unnoticed: then it just does not come forward.
class X11Window final {
public:
    X11Window(xcb_connection_t* connection, xcb_window_t number)
        : connection_(connection), number_(number) {
        const auto cookie = xcb_get_geometry(connection, number);
        const Owned<xcb_get_geometry_reply_t> reply(
            xcb_get_geometry_reply(connection, cookie, nullptr));
        if (reply != nullptr) {
            root_ = reply->root;
        }
    }

    void moveToCurrentDesktop() const {
        const auto current = cardinal(root_, "_NET_CURRENT_DESKTOP");
        const auto own = cardinal(number_, "_NET_WM_DESKTOP");
        if (current && own && own != current && own != allDesktops) {
            tellWindowManager("_NET_WM_DESKTOP", {*current, fromApplication});
        }
    }

    /// Brings it back if it is minimised. The toolkit does so only once it has heard of that, which
    /// may be too late.
    void map() const {
        xcb_map_window(connection_, number_);
        xcb_flush(connection_);
    }

    void requestFocus(std::uint32_t time) const {
        xcb_change_property(
            connection_, XCB_PROP_MODE_REPLACE, number_, atom("_NET_WM_USER_TIME"),
            XCB_ATOM_CARDINAL, 32, 1, &time);
        tellWindowManager("_NET_ACTIVE_WINDOW", {fromApplication, time});
    }

private:
    xcb_atom_t atom(std::string_view name) const {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const Owned<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection_, cookie, nullptr));
        constexpr xcb_atom_t none = XCB_ATOM_NONE;
        return reply == nullptr ? none : reply->atom;
    }

    std::optional<std::uint32_t> cardinal(xcb_window_t window, std::string_view property) const {
        const auto cookie =
            xcb_get_property(connection_, 0, window, atom(property), XCB_ATOM_CARDINAL, 0, 1);
        const Owned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_, cookie, nullptr));
        if (reply == nullptr || reply->format != 32 || reply->value_len != 1) {
            return std::nullopt;
        }
        return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    }

    void tellWindowManager(std::string_view type, std::array<std::uint32_t, 2> data) const {
        xcb_client_message_event_t message = {};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = number_;
        message.type = atom(type);
        message.data.data32[0] = data[0];
        message.data.data32[1] = data[1];
        constexpr std::uint32_t audience =
            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
        xcb_send_event(connection_, 0, root_, audience, reinterpret_cast<const char*>(&message));
        xcb_flush(connection_);
    }

    xcb_connection_t* connection_;
    xcb_window_t number_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
};

} // namespace

bool bringToUserOfX11(QWindow& window, const std::optional<std::string>& activationToken) {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // A platform without a display may answer too, with no connection to anything.
    if (x11 == nullptr || x11->connection() == nullptr) {
        return false;
    }
    const X11Window shown(x11->connection(), static_cast<xcb_window_t>(window.winId()));
    shown.moveToCurrentDesktop();
    shown.map();
    const auto time = clickTime(activationToken.value_or(""));
    if (time) {
        shown.requestFocus(*time);
    }
    return time.has_value();
}

} // namespace vorla
