// SPDX-License-Identifier: MIT
#include "Session.h"

#include "SnapshotText.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace vorla::bench {

namespace {

std::string madeFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "vorla-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no folder for the benchmark's files");
    }
    return pattern;
}

} // namespace

Session::Session(std::vector<std::string> variables)
    : variables_(std::move(variables)), folder_(madeFolder()) {
    std::filesystem::create_directory(folder_ + "/home");
    require(panel_.becomeWatcher(), "the panel's name");
    labels_ = panel_.bus().subscribe(
        {.sender = applicationName, .member = "XAyatanaNewLabel"}, [this](bus::Message& message) {
            titleAt_ = wallTime();
            title_ = message.read<std::string>();
        });
    newConnections_ = panel_.bus().subscribe(
        {.sender = "org.freedesktop.DBus", .member = "NameOwnerChanged"},
        [this](bus::Message& message) {
            const Nanoseconds now = wallTime();
            const auto name = message.read<std::string>();
            const auto oldOwner = message.read<std::string>();
            if (name.starts_with(':') && oldOwner.empty()) {
                connectedAt_ = now;
            }
        });
    panel_.call<>({"org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer", "Ping"});
}

Session::~Session() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::vector<std::string> Session::environment() const {
    std::vector<std::string> all = {
        "PATH=/usr/bin:/bin",
        "LANG=C.UTF-8",
        "HOME=" + folder_ + "/home",
        "DBUS_SESSION_BUS_ADDRESS=" + daemon_.address(),
        "VORLA_USAGE_EXECUTABLE=" VORLA_BENCH_COMPANION,
        "VORLA_BENCH_FOLDER=" + folder_};
    all.insert(all.end(), variables_.begin(), variables_.end());
    return all;
}

void Session::setOutput(const std::string& bytes) {
    // In one step: a run may be going on.
    const std::string next = folder_ + "/next";
    std::ofstream(next, std::ios::binary) << bytes;
    std::filesystem::rename(next, folder_ + "/output");
}

std::unique_ptr<MeasuredProgram> Session::start(const std::string& program) {
    panel_.registrations.clear();
    title_.clear();
    auto process = std::make_unique<MeasuredProgram>(program, environment());
    startedAt_ = process->startedAt();
    require(loop_.runUntil([this] { return !panel_.registrations.empty(); }), "a registration");
    registeredAt_ = wallTime();
    return process;
}

Nanoseconds Session::floorStartUpTime() {
    connectedAt_ = Nanoseconds{0};
    const MeasuredProgram floor(VORLA_BENCH_FLOOR, environment());
    require(loop_.runUntil([this] { return connectedAt_ != Nanoseconds{0}; }), "a connection");
    return connectedAt_ - floor.startedAt();
}

void Session::waitForTitle(const std::string& title) {
    // A long output takes a second, but half a minute and more on a machine that has a lot to do.
    constexpr std::chrono::minutes limit{5};
    require(loop_.runUntil([&] { return title_ == title; }, limit), "the new title");
}

void Session::refresh(std::size_t outputBytes) {
    fiveHourRemaining_ = (fiveHourRemaining_ + 1) % 100;
    setOutput(
        outputBytes == 0 ? snapshotText(fiveHourRemaining_)
                         : paddedSnapshotText(fiveHourRemaining_, outputBytes));
    choose(LineRole::refresh);
    waitForTitle(titleOf(fiveHourRemaining_));
}

void Session::choose(LineRole role) {
    require(panel_.sendEvent(lineId({.role = role}), "clicked"), "an answer");
}

Nanoseconds Session::exitToTitle() const {
    std::int64_t nanoseconds = 0;
    std::ifstream(folder_ + "/exit") >> nanoseconds;
    return titleAt_ - Nanoseconds{nanoseconds};
}

void Session::readEverything() {
    const auto getAll = [this](const char* path, const char* interface) {
        const auto reply = panel_.call<bus::Dictionary>(
            {applicationName, path, "org.freedesktop.DBus.Properties", "GetAll"},
            std::string(interface));
        require(reply.results.has_value(), interface);
    };
    getAll(itemPath, itemInterface);
    getAll(menuPath, menuInterface);
    panel_.aboutToShow();
    require(!panel_.lines().empty(), "a menu");
}

void Session::wait(std::chrono::milliseconds duration) {
    const Nanoseconds end = wallTime() + duration;
    while (wallTime() < end) {
        loop_.real().runOnce(std::chrono::ceil<std::chrono::milliseconds>(end - wallTime()));
    }
}

void Session::require(bool holds, const char* what) const {
    if (!holds) {
        throw std::runtime_error(std::string("The program has not come up with ") + what + ".");
    }
}

} // namespace vorla::bench
