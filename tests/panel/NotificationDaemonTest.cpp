// SPDX-License-Identifier: MIT
#include "bus/NotificationFixture.h"
#include "panel/DisplayServer.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>

namespace vorla {
namespace {

/// A desktop with nothing but a bus, a screen and a home; the bus starts its services.
class NotificationDaemon : public NotificationFixture {
protected:
    NotificationDaemon() {
        variables = {
            {"DISPLAY", screen.display()},
            {"HOME", folder.path()},
            {"XDG_CONFIG_HOME", folder.at("config")},
            {"XDG_CACHE_HOME", folder.at("cache")},
            {"XDG_DATA_HOME", folder.at("data")},
            {"XDG_RUNTIME_DIR", folder.path()},
            {"GDK_BACKEND", "x11"},
            {"NO_AT_BRIDGE", "1"}};
        EXPECT_TRUE(callBus<>("UpdateActivationEnvironment", variables).results);
        variables["DBUS_SESSION_BUS_ADDRESS"] = daemon.address();
        centre.emplace(
            applicationBus, loop, NotificationSettingsPlaces{folder.at("config"), ""},
            generousLimit);
    }

    void TearDown() override {
        centre.reset();
        for (const auto& name : offered) {
            end(name);
        }
    }

    template <typename... Results, typename... Arguments>
    bus::Reply<Results...> callBus(const std::string& member, const Arguments&... arguments) {
        std::optional<bus::Reply<Results...>> answer;
        const auto slot = applicationBus.call(
            {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member},
            generousLimit, [&](const bus::Reply<Results...>& reply) { answer = reply; },
            arguments...);
        EXPECT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
        return answer.value();
    }

    bool runs(const std::string& name) {
        return std::get<0>(*callBus<bool>("NameHasOwner", name).results);
    }

    /// Ends a service, and returns once the bus knows.
    void end(const std::string& name) {
        const auto process = callBus<std::uint32_t>("GetConnectionUnixProcessID", name);
        if (process.results) {
            kill(static_cast<pid_t>(std::get<0>(*process.results)), SIGKILL);
            EXPECT_TRUE(loop.runUntil([&] { return !runs(name); }));
        }
    }

    void offer(const std::string& name, const std::string& command) {
        offerService(loop, daemon, folder.at("services"), name, command);
        offered.push_back(name);
    }

    /// The command that a service file of the system gives.
    static std::string installedCommand(const std::string& file) {
        std::ifstream lines("/usr/share/dbus-1/services/" + file + ".service");
        const std::string key = "Exec=";
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with(key)) {
                return line.substr(key.size());
            }
        }
        ADD_FAILURE() << file << " is not installed";
        return {};
    }

    /// What a shell command prints in this desktop.
    std::string output(const std::string& command) const {
        std::string whole = "env";
        for (const auto& [name, value] : variables) {
            whole += " " + name + "='" + value + "'";
        }
        whole += " " + command + " 2>&1";
        std::FILE* const pipe = popen(whole.c_str(), "r");
        std::string text;
        std::array<char, 4096> buffer = {};
        while (const auto count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
            text.append(buffer.data(), count);
        }
        EXPECT_EQ(pclose(pipe), 0) << command << ": " << text;
        return text;
    }

    DisplayServer screen{{std::string("PATH=") + std::getenv("PATH"), "HOME=" + folder.path()}};
    std::map<std::string, std::string> variables;
    std::vector<std::string> offered;
};

constexpr auto serviceName = "org.freedesktop.Notifications";

class Dunst : public NotificationDaemon {
protected:
    Dunst() { offer(serviceName, installedCommand("org.knopwob.dunst")); }

    std::string count(const std::string& which) const {
        auto number = output("dunstctl count " + which);
        return number.substr(0, number.find('\n'));
    }

    /// What was shown, as dunst tells it once the bubbles are closed.
    std::string history() const {
        output("dunstctl close-all");
        return output("dunstctl history");
    }
};

TEST_F(Dunst, isStartedByTheRequestAndShowsABubble) {
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_FALSE(runs(serviceName));
    const auto answer = request();
    EXPECT_TRUE(answer.granted) << answer.error.value_or("");
    EXPECT_TRUE(runs(serviceName));
    EXPECT_EQ(add({"key", "Weekly <10%>", "5h & \"more\" <left>"}), std::nullopt);
    EXPECT_EQ(count("displayed"), "1");
    const auto shown = history();
    EXPECT_NE(shown.find("Weekly <10%>"), std::string::npos) << shown;
    EXPECT_NE(shown.find("VorlaUsageMenuBar"), std::string::npos) << shown;
    // It reads markup, and would not show this body at all if it were sent as it is.
    EXPECT_NE(shown.find("5h &amp; \\\"more\\\" &lt;left&gt;"), std::string::npos) << shown;
}

TEST_F(Dunst, replacesTheBubbleOfTheSameIdentifier) {
    EXPECT_EQ(add({"a", "first", ""}), std::nullopt);
    EXPECT_EQ(add({"b", "other", ""}), std::nullopt);
    EXPECT_EQ(count("displayed"), "2");
    EXPECT_EQ(add({"a", "second", ""}), std::nullopt);
    EXPECT_EQ(count("displayed"), "2");
    const auto shown = history();
    EXPECT_EQ(shown.find("first"), std::string::npos) << shown;
    EXPECT_NE(shown.find("second"), std::string::npos) << shown;
    EXPECT_NE(shown.find("other"), std::string::npos) << shown;
}

TEST_F(Dunst, isAuthorizedAndTakesNotificationsWhilePaused) {
    ASSERT_TRUE(request().granted);
    output("dunstctl set-paused true");
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_EQ(add({"a", "later", ""}), std::nullopt);
    EXPECT_EQ(count("displayed"), "0");
    EXPECT_EQ(count("waiting"), "1");
}

TEST_F(Dunst, isStartedAgainForTheNextNotificationAfterItDied) {
    EXPECT_EQ(add({"a", "first", ""}), std::nullopt);
    end(serviceName);
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_EQ(add({"a", "second", ""}), std::nullopt);
    EXPECT_NE(history().find("second"), std::string::npos);
}

class XfceNotifyDaemon : public NotificationDaemon {
protected:
    XfceNotifyDaemon() {
        offer("org.xfce.Xfconf", installedCommand("org.xfce.Xfconf"));
        offer(serviceName, installedCommand("org.xfce.xfce4-notifyd.Notifications"));
    }

    /// The screen as one number.
    std::string picture() const { return output("import -silent -window root rgb:- | cksum"); }
};

TEST_F(XfceNotifyDaemon, isStartedByTheRequestAndShowsABubble) {
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_FALSE(runs(serviceName));
    const auto answer = request();
    EXPECT_TRUE(answer.granted) << answer.error.value_or("");
    const auto before = picture();
    EXPECT_EQ(picture(), before);
    EXPECT_EQ(add({"key", "Weekly <10%>", "5h & \"more\" <left>"}), std::nullopt);
    EXPECT_TRUE(loop.runUntil([&] { return picture() != before; }));
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(XfceNotifyDaemon, isProvisionalForAnApplicationThatTheUserMuted) {
    ASSERT_TRUE(request().granted);
    const std::string property =
        "xfconf-query -c xfce4-notifyd -p /applications/muted_applications";
    output(property + " -n -a -t string -s other -t string -s VorlaUsageMenuBar");
    EXPECT_EQ(status(), AuthorizationStatus::provisional);
    EXPECT_EQ(add({"key", "quiet", ""}), std::nullopt);
    output(property + " -n -a -t string -s other");
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

} // namespace
} // namespace vorla
