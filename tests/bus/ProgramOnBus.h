// SPDX-License-Identifier: MIT
#pragma once

#include "bus/ProgramFixture.h"
#include "bus/ScriptedNotificationService.h"

#include <sys/resource.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vorla {

/// The program on a bus of its own, with a panel and the hand of a user.
class ProgramOnBus : public ProgramTest {
protected:
    static constexpr auto figures = "5h 87% · W 62%";

    void SetUp() override {
        ProgramTest::SetUp();
        bus_.emplace();
        panel_.emplace(loop(), bus_->address());
    }

    void TearDown() override {
        endBus();
        ProgramTest::TearDown();
    }

    void endBus() {
        service_.reset();
        panel_.reset();
        bus_.reset();
    }

    /// The program with a companion that lies at companion(), and `variables`.
    Program& startHere(Texts variables = {}) {
        variables.push_back("DBUS_SESSION_BUS_ADDRESS=" + bus_->address());
        variables.push_back("VORLA_USAGE_EXECUTABLE=" + companion());
        return start({}, std::move(variables));
    }

    /// The program when it shows the figures of a good companion.
    Program& startWithFigures(Texts variables = {}) {
        companionIs("printsSnapshot");
        auto& program = startHere(std::move(variables));
        EXPECT_TRUE(runUntilFigures());
        return program;
    }

    bool runUntilFigures() {
        return loop().runUntil(
            [this] { return panel_->itemProperty<std::string>("XAyatanaLabel") == figures; });
    }

    /// From now on the companion is this test child.
    void companionIs(const std::string& name) const {
        std::filesystem::remove(companion());
        std::filesystem::create_symlink(child(name), companion());
    }

    void choose(LineRole role) {
        EXPECT_TRUE(panel_->sendEvent(lineId({.role = role}), "clicked"));
    }

    /// What the line says by now; empty if it cannot be seen.
    std::string text(LineRole role) { return textAmong(panel_->lines(), role); }

    bool isChecked(LineRole role) {
        const auto properties = propertiesOf(role, panel_->lines());
        const auto state = properties.find("toggle-state");
        return state != properties.end() && state->second == bus::Variant(std::int32_t{1});
    }

    /// The program may still be about to start.
    bool runUntilText(LineRole role, const std::string& expected) {
        return loop().runUntil([&] {
            const auto lines = panel_->linesIfAny();
            return lines && textAmong(*lines, role) == expected;
        });
    }

    bool runUntilChecked(LineRole role) {
        return loop().runUntil([&] { return isChecked(role); });
    }

    /// Without that the desktop could not be asked whether it shows notifications.
    ScriptedNotificationService& startNotificationService() {
        service_.emplace(loop(), bus_->address());
        EXPECT_TRUE(service_->appear());
        return *service_;
    }

    void endsAtRequest(Program& program) {
        program.send(SIGTERM);
        expectEnd(program, 0);
    }

    /// Changes a limit of the running program, as far as the system lets it be changed.
    static void limit(const Program& program, __rlimit_resource resource, rlim_t value) {
        rlimit limits = {};
        ASSERT_EQ(prlimit(program.number(), resource, nullptr, &limits), 0);
        limits.rlim_cur = std::min(value, limits.rlim_max);
        ASSERT_EQ(prlimit(program.number(), resource, &limits, nullptr), 0);
    }

    /// The lowest number that is free, so that under this limit nothing more can be opened.
    static rlim_t lowestFreeDescriptor(const Program& program) {
        const auto folder = "/proc/" + std::to_string(program.number()) + "/fd/";
        rlim_t number = 0;
        while (std::filesystem::is_symlink(folder + std::to_string(number))) {
            ++number;
        }
        return number;
    }

    PrivateBus& bus() { return *bus_; }
    ScriptedPanel& panel() { return *panel_; }

private:
    std::string companion() const { return folder() / "vorla-usage"; }

    using Lines = std::vector<ScriptedPanel::Leaf>;

    static bus::Dictionary propertiesOf(LineRole role, const Lines& lines) {
        for (const auto& [id, properties, children] : lines) {
            if (id == lineId({.role = role})) {
                return properties;
            }
        }
        return {};
    }

    static std::string textAmong(const Lines& lines, LineRole role) {
        const auto properties = propertiesOf(role, lines);
        const auto label = properties.find("label");
        const bool isSeen = !properties.contains("visible") && label != properties.end();
        return isSeen ? std::get<std::string>(label->second) : "";
    }

    std::optional<PrivateBus> bus_;
    std::optional<ScriptedPanel> panel_;
    std::optional<ScriptedNotificationService> service_;
};

} // namespace vorla
