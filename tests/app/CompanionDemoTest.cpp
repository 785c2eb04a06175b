// SPDX-License-Identifier: MIT
#include "app/Command.h"
#include "app/Environment.h"
#include "app/LocalPage.h"
#include "fakes/ManualLoop.h"
#include "linux/FileDescriptor.h"
#include "linux/ProcessLauncher.h"
#include "model/AddressScanner.h"
#include "model/DiagnosticDocument.h"
#include "model/Json.h"
#include "model/SessionPaceTracker.h"
#include "model/Usage.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <optional>
#include <set>
#include <spawn.h>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <variant>
#include <vector>

namespace vorla {
namespace {

/// A Monday at midnight (UTC): the start of a played week.
constexpr std::int64_t monday = 1'699'833'600;
constexpr std::int64_t hour = 3600;
constexpr std::int64_t day = 24 * hour;

struct DemoRun {
    int status = -1;
    std::string output;
    std::string errors;
};

/// Runs the demonstration to its end; `now` is the text of VORLA_DEMO_NOW. What it prints on
/// standard error is less than a pipe holds, so the two streams may be read one after the other.
DemoRun runDemo(std::vector<std::string> arguments, const std::optional<std::string>& now) {
    std::string program = VORLA_DEMO_COMPANION;
    std::string variable = "VORLA_DEMO_NOW=" + now.value_or("");
    std::vector<char*> argumentPointers{program.data()};
    for (std::string& argument : arguments) {
        argumentPointers.push_back(argument.data());
    }
    argumentPointers.push_back(nullptr);
    std::vector<char*> environment;
    if (now) {
        environment.push_back(variable.data());
    }
    environment.push_back(nullptr);

    std::array<int, 2> output{};
    std::array<int, 2> errors{};
    if (pipe(output.data()) != 0 || pipe(errors.data()) != 0) {
        ADD_FAILURE() << "no pipes";
        return {};
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors[1], STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    pid_t child = -1;
    const int failure = posix_spawn(
        &child, program.c_str(), &actions, nullptr, argumentPointers.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    close(errors[1]);
    DemoRun run{.output = readToEnd(output[0]), .errors = readToEnd(errors[0])};
    if (failure != 0) {
        ADD_FAILURE() << "the demonstration did not start: " << failure;
        return run;
    }
    int status = 0;
    waitpid(child, &status, 0);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return run;
}

Usage snapshotAt(std::int64_t now) {
    const DemoRun run = runDemo({"--json"}, std::to_string(now));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    return Usage::decode(run.output);
}

std::set<std::string> eventKeys(const Usage& usage) {
    std::set<std::string> keys;
    for (const Usage::NotificationEvent& event : usage.notificationEvents.value()) {
        keys.insert(event.key);
    }
    return keys;
}

/// The demonstration's dashboard, for as long as a test needs it.
class DemoServer final {
public:
    explicit DemoServer(std::int64_t now) {
        std::string program = VORLA_DEMO_COMPANION;
        std::string argument = "--web";
        std::string variable = "VORLA_DEMO_NOW=" + std::to_string(now);
        const std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
        const std::array<char*, 2> environment = {variable.data(), nullptr};
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        output_ = FileDescriptor(ends[0]);
        const FileDescriptor writeEnd(ends[1]);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, writeEnd.number(), STDOUT_FILENO);
        EXPECT_EQ(
            posix_spawn(
                &number_, program.c_str(), &actions, nullptr, arguments.data(), environment.data()),
            0);
        posix_spawn_file_actions_destroy(&actions);
    }

    ~DemoServer() {
        if (number_ > 0) {
            end(SIGKILL);
        }
    }

    DemoServer(const DemoServer&) = delete;
    DemoServer& operator=(const DemoServer&) = delete;

    /// Waits for it.
    std::string firstLine() const {
        std::string line;
        char byte = 0;
        while (read(output_.number(), &byte, 1) == 1 && byte != '\n') {
            line += byte;
        }
        return line;
    }

    /// Makes its socket for visitors fail, by means of a duplicate.
    void breakSocket() const {
        const FileDescriptor process(static_cast<int>(syscall(SYS_pidfd_open, number_, 0)));
        for (int number = STDERR_FILENO + 1; number < 64; ++number) {
            const FileDescriptor duplicate(
                static_cast<int>(syscall(SYS_pidfd_getfd, process.number(), number, 0)));
            int listens = 0;
            socklen_t size = sizeof listens;
            getsockopt(duplicate.number(), SOL_SOCKET, SO_ACCEPTCONN, &listens, &size);
            if (listens != 0) {
                EXPECT_EQ(shutdown(duplicate.number(), SHUT_RDWR), 0);
                return;
            }
        }
        ADD_FAILURE() << "no socket that listens";
    }

    /// Sends the signal and waits; the exit code, or the signal's number below zero.
    int end(int signal) {
        kill(number_, signal);
        return waitForEnd();
    }

    int waitForEnd() {
        int status = 0;
        EXPECT_GT(waitpid(std::exchange(number_, -1), &status, 0), 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    pid_t number_ = -1;
    FileDescriptor output_;
};

} // namespace

TEST(CompanionDemo, printsASnapshotThatDecodesAtEveryHourOfTheWeek) {
    for (std::int64_t now = monday; now < monday + 7 * day; now += hour) {
        const Usage usage = snapshotAt(now);
        EXPECT_EQ(usage.fetchedAt, static_cast<double>(now));
        ASSERT_NE(usage.window(fiveHourMinutes), nullptr);
        ASSERT_NE(usage.window(weeklyMinutes), nullptr);
        for (const Usage::Window& window : usage.windows) {
            EXPECT_EQ(window.usedPercent + window.remainingPercent, 100);
            EXPECT_GT(window.resetsAt, usage.fetchedAt);
        }
    }
}

TEST(CompanionDemo, saysTheSameTwiceAtTheSameMoment) {
    const DemoRun first = runDemo({"--json"}, std::to_string(monday + hour));
    EXPECT_NE(first.output, "");
    EXPECT_EQ(first.output, runDemo({"--json"}, std::to_string(monday + hour)).output);
}

TEST(CompanionDemo, followsTheRealClockWithoutASetting) {
    // Not time(), which may lag behind by a tick of the system's timer.
    const auto now = [] {
        return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now())
            .time_since_epoch();
    };
    const auto before = static_cast<double>(now().count());
    const DemoRun run = runDemo({"--json"}, std::nullopt);
    EXPECT_EQ(run.status, 0);
    const Usage usage = Usage::decode(run.output);
    EXPECT_GE(usage.fetchedAt, before);
    EXPECT_LE(usage.fetchedAt, static_cast<double>(now().count()));
}

TEST(CompanionDemo, fillsTheFiveHourWindowAndResetsIt) {
    const auto firstReset =
        static_cast<std::int64_t>(snapshotAt(monday).window(fiveHourMinutes)->resetsAt);
    EXPECT_EQ(snapshotAt(firstReset).window(fiveHourMinutes)->remainingPercent, 100);
    EXPECT_LT(snapshotAt(firstReset + 5 * hour - 1).window(fiveHourMinutes)->remainingPercent, 40);
    const Usage next = snapshotAt(firstReset + 5 * hour);
    EXPECT_EQ(next.window(fiveHourMinutes)->remainingPercent, 100);
    EXPECT_EQ(next.window(fiveHourMinutes)->resetsAt, static_cast<double>(firstReset + 10 * hour));
}

TEST(CompanionDemo, usesMoreOfTheWeekByDayThanByNight) {
    const auto used = [](std::int64_t now) {
        return snapshotAt(now).window(weeklyMinutes)->usedPercent;
    };
    const std::int64_t byNight = used(monday + day + 6 * hour) - used(monday + day);
    const std::int64_t byDay = used(monday + day + 18 * hour) - used(monday + day + 12 * hour);
    EXPECT_GT(byDay, byNight);
    EXPECT_GE(used(monday + 7 * day - 1), 90);
    EXPECT_EQ(used(monday + 7 * day), 0);
}

TEST(CompanionDemo, letsASessionPaceAppearWithinAQuarterOfAnHour) {
    for (std::int64_t start = monday; start < monday + day; start += 2 * hour) {
        SessionPaceTracker tracker;
        bool appeared = false;
        for (std::int64_t minute = 0; minute <= 15 && !appeared; ++minute) {
            const PaceEstimates pace = tracker.observe(snapshotAt(start + minute * 60));
            appeared = pace.at(fiveHourMinutes).percentPerHour.has_value();
        }
        EXPECT_TRUE(appeared) << "started " << start - monday << " seconds into the week";
    }
}

TEST(CompanionDemo, announcesALowWindowUnderOneKeyForEachPeriod) {
    std::set<std::string> keys;
    std::set<double> lowPeriods;
    for (std::int64_t now = monday; now < monday + day; now += hour / 4) {
        const Usage usage = snapshotAt(now);
        const Usage::Window& window = *usage.window(fiveHourMinutes);
        const std::set<std::string> current = eventKeys(usage);
        EXPECT_EQ(current.size(), window.remainingPercent < 20 ? 1U : 0U);
        keys.insert(current.begin(), current.end());
        if (!current.empty()) {
            lowPeriods.insert(window.resetsAt);
        }
    }
    EXPECT_GE(lowPeriods.size(), 2U);
    EXPECT_EQ(keys.size(), lowPeriods.size());
}

TEST(CompanionDemo, showsABlockOnlyWhileTheHourlyLimitIsUsedUp) {
    const Usage free = snapshotAt(monday + 30 * 60);
    EXPECT_FALSE(free.pressureCheck.value().blocked);
    EXPECT_TRUE(free.pressureCheck->deltaPoints.has_value());

    const Usage blocked = snapshotAt(monday + 59 * 60);
    EXPECT_TRUE(blocked.pressureCheck.value().blocked);
    EXPECT_EQ(blocked.pressureCheck->bucketLabel, "Large tasks");
    EXPECT_TRUE(blocked.pressureCheck->secondary.has_value());
    EXPECT_EQ(blocked.limitBuckets.value().at(1).windows.at(0).remainingPercent, 0);
}

TEST(CompanionDemo, offersOneDefaultAndOneAdditionalBucket) {
    const std::vector<Usage::LimitBucket> buckets = snapshotAt(monday).limitBuckets.value();
    ASSERT_EQ(buckets.size(), 2U);
    EXPECT_TRUE(buckets[0].isDefault);
    EXPECT_FALSE(buckets[1].isDefault);
    EXPECT_EQ(buckets[1].windows.size(), 2U);
}

TEST(CompanionDemo, countsTheBankedResetsThatItListsAsAvailable) {
    const Usage usage = snapshotAt(monday);
    std::int64_t available = 0;
    for (const Usage::Credits::Credit& credit : usage.resetCredits.value().credits.value()) {
        if (credit.status == "available") {
            ++available;
            EXPECT_GT(credit.expiresAt.value(), usage.fetchedAt);
        }
    }
    EXPECT_EQ(usage.resetCredits->availableCount, available);
}

TEST(CompanionDemo, spreadsTheWeeklyBudgetOverTheTimeLeft) {
    const Usage usage = snapshotAt(monday + 5 * day);
    const Usage::Budget& budget = usage.weeklyBudget.value();
    EXPECT_EQ(budget.secondsToReset, static_cast<double>(2 * day));
    EXPECT_EQ(budget.remainingPercent, usage.window(weeklyMinutes)->remainingPercent);
    EXPECT_NEAR(budget.percentPerDay * 2, static_cast<double>(budget.remainingPercent), 0.02);
    EXPECT_NEAR(budget.percentPerHour * 48, static_cast<double>(budget.remainingPercent), 0.5);
}

TEST(CompanionDemo, printsADiagnosticDocumentOfTheKnownVersion) {
    const DemoRun run = runDemo({"--diagnostics-json"}, std::to_string(monday));
    EXPECT_EQ(run.status, 0);
    const JsonValue document = parseJson(run.output);
    const auto& members = std::get<JsonObject>(document.content);
    const auto& version = members.at("diagnosticSchemaVersion");
    EXPECT_EQ(std::get<JsonNumber>(version.content).integer(), 1);
    EXPECT_GT(members.size(), 1U);
}

TEST(CompanionDemo, printsADiagnosticDocumentThatCanBeCopied) {
    const DemoRun run = runDemo({"--diagnostics-json"}, std::to_string(monday));
    EXPECT_NE(
        normalizedDiagnosticDocument(run.output).find("\"name\": \"clock/readable\""),
        std::string::npos);
}

TEST(CompanionDemo, printsWhereItServesItsPageAndEndsWhenItIsAskedTo) {
    for (const int signal : {SIGTERM, SIGINT}) {
        DemoServer server(monday);
        const std::string line = server.firstLine();
        EXPECT_EQ(line, "Serving on http://127.0.0.1:" + portIn(line) + "/ (Ctrl-C to stop)");
        EXPECT_EQ(server.end(signal), 0);
    }
}

TEST(CompanionDemo, endsAlsoWhileAVisitorSaysNothing) {
    DemoServer server(monday);
    const std::string port = portIn(server.firstLine());
    const FileDescriptor silent = connectTo(port);
    // Visitors come in one after another: who has served this one has met the silent one before.
    EXPECT_NE(fetched(port, "/"), "");
    EXPECT_EQ(server.end(SIGTERM), 0);
}

TEST(CompanionDemo, endsIfItCanServeNobodyAnyMore) {
    DemoServer server(monday);
    // Once it has answered it listens.
    fetched(portIn(server.firstLine()), "/");
    server.breakSocket();
    EXPECT_EQ(server.waitForEnd(), 1);
}

TEST(CompanionDemo, servesAPageWithTheFiguresOfTheSnapshot) {
    const std::int64_t now = monday + 3 * day + 100 * 60;
    DemoServer server(now);
    const std::string answer = fetched(portIn(server.firstLine()), "/");
    EXPECT_EQ(answer.rfind("HTTP/1.1 200 OK\r\n", 0), 0U);
    EXPECT_NE(answer.find("\r\nContent-Type: text/html; charset=utf-8\r\n"), std::string::npos);
    EXPECT_NE(answer.find("<!doctype html>"), std::string::npos);
    const std::vector<Usage::LimitBucket> buckets = snapshotAt(now).limitBuckets.value();
    for (const Usage::LimitBucket& bucket : buckets) {
        for (const Usage::Window& window : bucket.windows) {
            const std::string left = std::to_string(window.remainingPercent) + "% left";
            EXPECT_NE(answer.find("<strong>" + left), std::string::npos) << left;
            const std::string used = "width=\"" + std::to_string(window.usedPercent) + "\"";
            EXPECT_NE(answer.find(used), std::string::npos) << used;
        }
    }
    EXPECT_NE(answer.find("<polyline"), std::string::npos);
    EXPECT_EQ(server.end(SIGTERM), 0);
}

TEST(CompanionDemo, servesNothingThatAsksForAnythingElse) {
    DemoServer server(monday);
    const std::string port = portIn(server.firstLine());
    const std::string page = fetched(port, "/");
    EXPECT_NE(page.find("\r\nContent-Security-Policy: default-src 'none'; "), std::string::npos);
    for (const std::string reference :
         {"http://", "https://", "src=", "url(", "@import", "<script"}) {
        EXPECT_EQ(page.find(reference), std::string::npos) << reference;
    }
    EXPECT_EQ(fetched(port, "/other").rfind("HTTP/1.1 404 ", 0), 0U);
    EXPECT_EQ(server.end(SIGTERM), 0);
}

TEST(CompanionDemo, givesTwoServersAPortEach) {
    DemoServer first(monday);
    DemoServer second(monday);
    EXPECT_NE(first.firstLine(), second.firstLine());
    EXPECT_EQ(first.end(SIGTERM), 0);
    EXPECT_EQ(second.end(SIGTERM), 0);
}

TEST(CompanionDemo, isFoundAtTheAddressThatTheProgramRemembersUntilItIsStopped) {
    ManualLoop loop;
    LinuxProcessLauncher launcher(loop);
    const auto command = Command::create(loop, launcher, Environment());
    AddressScanner scanner;
    std::optional<std::string> address;
    command->onOutput = [&](std::string_view text) { address = scanner.scan(text); };
    std::optional<CommandResult> result;
    command->start(
        VORLA_DEMO_COMPANION, "--web", [&](const CommandResult& ended) { result = ended; });
    ASSERT_TRUE(loop.runUntil([&] { return address.has_value(); }));
    EXPECT_EQ(fetched(portIn(*address), "/").rfind("HTTP/1.1 200 OK\r\n", 0), 0U);
    command->stop();
    ASSERT_TRUE(loop.runUntil([&] { return result.has_value(); }));
    EXPECT_EQ(result->status, 0);
    EXPECT_EQ(result->errors, "");
}

TEST(CompanionDemo, refusesEveryOtherArgumentWithOneSentence) {
    const std::vector<std::vector<std::string>> refused = {
        {}, {""}, {"--json", "--json"}, {"--JSON"}, {"--web", "8080"}};
    for (const std::vector<std::string>& arguments : refused) {
        const DemoRun run = runDemo(arguments, std::to_string(monday));
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(
            run.errors, "The demonstration knows only --json, --diagnostics-json and --web.\n");
    }
}

TEST(CompanionDemo, refusesASettingThatIsNoMoment) {
    for (const std::string setting : {"", "soon", "1.5", "-1", "250900000001", "12 "}) {
        for (const std::string argument : {"--json", "--diagnostics-json", "--web"}) {
            const DemoRun run = runDemo({argument}, setting);
            EXPECT_EQ(run.status, 2) << argument << " at " << setting;
            EXPECT_EQ(run.output, "");
            EXPECT_EQ(run.errors, "VORLA_DEMO_NOW must be whole seconds since 1970.\n");
        }
    }
}

TEST(CompanionDemo, decodesAtTheFirstAndTheLastMomentThatItTakes) {
    EXPECT_EQ(snapshotAt(0).fetchedAt, 0.0);
    EXPECT_EQ(snapshotAt(250'900'000'000).fetchedAt, 250'900'000'000.0);
}

} // namespace vorla
