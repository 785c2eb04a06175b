// SPDX-License-Identifier: MIT
// Refreshes many times in one process, with real companions good and bad, as fast as it can, and
// shows what the process holds as it goes on. Fails if the last tenth holds more than the second.
//
//     soak COUNT
#include "app/AppDelegate.h"
#include "fakes/FakeAddressOpener.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFennicLauncher.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeNotificationCentre.h"
#include "fakes/FakePreferences.h"
#include "fakes/FakeStatusItem.h"
#include "linux/EventLoop.h"
#include "linux/Memory.h"
#include "linux/ProcessLauncher.h"

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

namespace {

constexpr int parts = 10;
constexpr std::chrono::minutes patience{1};

/// A kind of companion, and what the menu says after its run.
struct Kind {
    /// A program from tests/children/.
    const char* program = nullptr;
    std::string title;
    std::string error;
};

const std::string figures = "5h 87% · W 62%";
const std::string noFigures = "Vorla ?";

/// The good one comes most often, and after each bad one.
const std::array<Kind, 12> kinds = {
    Kind{"printsSnapshot", figures, ""},
    Kind{"exitsWithStatus", noFigures, "vorla-usage failed (3). Try it in Terminal."},
    Kind{"printsSnapshot", figures, ""},
    Kind{
        "printsIllFormedText", noFigures,
        "Invalid JSON from vorla-usage. Install v0.5 or newer, then Refresh."},
    Kind{"printsSnapshot", figures, ""},
    // More than a run usually prints, and enough for memory to be given back after it.
    Kind{
        "floodsOutput", noFigures,
        "Invalid JSON from vorla-usage. Install v0.5 or newer, then Refresh."},
    Kind{"printsSnapshot", figures, ""},
    Kind{"diesOfSignal", noFigures, "vorla-usage failed (9). Try it in Terminal."},
    Kind{"printsSnapshot", figures, ""},
    Kind{"none", noFigures, "vorla-usage missing. Install in ~/.local/bin or PATH, then Refresh."},
    Kind{"printsSnapshot", figures, ""},
    Kind{"isNoProgram", noFigures, "Cannot run vorla-usage: Exec format error"},
};

/// What this process holds at one moment.
struct Holdings {
    long long rssKibibytes = 0;
    long long privateDirtyKibibytes = 0;
    long long descriptors = 0;
    long long threads = 0;
    long long children = 0;
};

long long entries(const char* path) {
    const std::filesystem::directory_iterator all(path);
    return std::distance(begin(all), end(all));
}

/// The number of KiB behind `name` in /proc/self/smaps_rollup.
long long rolledUp(std::string_view name) {
    std::ifstream file("/proc/self/smaps_rollup");
    std::string word;
    long long value = 0;
    while (file >> word) {
        if (word == name) {
            file >> value;
        }
    }
    return value;
}

/// All children, ended or not, that have not been collected.
long long childCount() {
    std::ifstream file("/proc/self/task/" + std::to_string(getpid()) + "/children");
    const std::istream_iterator<std::string> all(file);
    return std::distance(all, {});
}

Holdings measure() {
    return {
        .rssKibibytes = rolledUp("Rss:"),
        .privateDirtyKibibytes = rolledUp("Private_Dirty:"),
        .descriptors = entries("/proc/self/fd"),
        .threads = entries("/proc/self/task"),
        .children = childCount()};
}

void print(int runs, const Holdings& now) {
    std::printf(
        "%9d %9lld %14lld %12lld %8lld %9lld\n", runs, now.rssKibibytes, now.privateDirtyKibibytes,
        now.descriptors, now.threads, now.children);
    std::fflush(stdout);
}

/// A folder with one companion of each kind, of which one at a time is the one that is found.
class Companions final {
public:
    Companions() {
        std::string pattern = std::filesystem::temp_directory_path() / "vorla-soak-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), "mkdtemp");
        }
        folder_ = pattern;
        std::ofstream(folder_ / "isNoProgram") << "no program\n";
        std::filesystem::permissions(folder_ / "isNoProgram", std::filesystem::perms::owner_all);
    }

    ~Companions() { std::filesystem::remove_all(folder_); }

    Companions(const Companions&) = delete;
    Companions& operator=(const Companions&) = delete;

    /// A program from tests/children/, or a file in the folder.
    void use(const std::string& name) const {
        const auto ours = folder_ / name;
        const auto theirs = std::filesystem::path(VORLA_TEST_CHILDREN) / name;
        std::filesystem::remove(found());
        std::filesystem::create_symlink(std::filesystem::exists(ours) ? ours : theirs, found());
    }

    std::filesystem::path found() const { return folder_ / "vorla-usage"; }

private:
    std::filesystem::path folder_;
};

class Soak final {
public:
    /// Refreshes once. False if the menu does not say afterwards what it should.
    bool runOnce(const Kind& kind) {
        companions_.use(kind.program);
        bool inTime = true;
        const auto start = std::chrono::steady_clock::now();
        item_.listener->chosen(MenuAction::refresh);
        while (isRefreshing() && inTime) {
            loop_.runOnce(std::chrono::seconds{1});
            inTime = std::chrono::steady_clock::now() - start < patience;
        }
        const auto line = item_.text(LineRole::error);
        if (inTime && item_.last().title == kind.title && line == kind.error) {
            return true;
        }
        std::printf("%s: \"%s\", \"%s\"\n", kind.program, item_.last().title.c_str(), line.c_str());
        return false;
    }

    void start() {
        companions_.use(kinds.front().program);
        delegate_.applicationDidFinishLaunching();
        while (isRefreshing()) {
            loop_.runOnce(std::chrono::seconds{1});
        }
    }

private:
    /// Forgets all menus but the last, which the fake keeps for tests.
    bool isRefreshing() {
        item_.shown.erase(item_.shown.begin(), item_.shown.end() - 1);
        return !item_.line(LineRole::refresh)->enabled;
    }

    Companions companions_;
    EventLoop loop_;
    FakeClock clock_;
    FakeStatusItem item_;
    LinuxProcessLauncher launcher_{loop_};
    FakePreferences preferences_;
    FakeLoginItem loginItem_;
    FakeNotificationCentre notificationCentre_;
    FakeClipboard clipboard_;
    FakeAddressOpener addressOpener_;
    FakeFennicLauncher fennicLauncher_;
    AppDelegate delegate_{Platform{
        .loop = loop_,
        .clock = clock_,
        .statusItem = item_,
        .launcher = launcher_,
        .preferences = preferences_,
        .loginItem = loginItem_,
        .notificationCentre = notificationCentre_,
        .clipboard = clipboard_,
        .addressOpener = addressOpener_,
        .fennicLauncher = fennicLauncher_,
        .companionPlaces =
            {.environment = Environment(
                 {"VORLA_USAGE_EXECUTABLE=" + companions_.found().string(), "STATUS=3",
                  "LINES=4000", "SIGNAL=" + std::to_string(SIGKILL),
                  "SNAPSHOT=" VORLA_TEST_DATA "/snapshots/full.json"}),
             .homeDirectory = "/nonexistent",
             .resourcesDirectory = std::nullopt},
        .replyToTerminate = [] {},
    }};
};

/// Whether nothing has grown, apart from what the allocator holds more at one moment than at
/// another.
bool isFlat(const Holdings& early, const Holdings& late) {
    constexpr long long tolerable = 256;
    return late.rssKibibytes <= early.rssKibibytes + tolerable &&
           late.privateDirtyKibibytes <= early.privateDirtyKibibytes + tolerable &&
           late.descriptors == early.descriptors && late.threads == early.threads &&
           late.children == 0;
}

int run(int count) {
    keepMemorySmall();
    Soak soak;
    soak.start();
    std::puts("     runs   RSS KiB private dirty KiB  descriptors  threads  children");
    std::vector<Holdings> tenths;
    for (int done = 0; done < count; ++done) {
        if (!soak.runOnce(kinds.at(static_cast<std::size_t>(done) % kinds.size()))) {
            return 1;
        }
        if ((done + 1) % (count / parts) == 0) {
            tenths.push_back(measure());
            print(done + 1, tenths.back());
        }
    }
    const bool flat = isFlat(tenths.at(1), tenths.back());
    std::puts(flat ? "flat" : "NOT FLAT: the last tenth holds more than the second");
    return flat ? 0 : 1;
}

} // namespace

} // namespace vorla

int main(int argumentCount, char** arguments) {
    const std::string_view text = argumentCount == 2 ? arguments[1] : "";
    int count = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), count).ptr;
    if (end != text.data() + text.size() || count < 2 * vorla::parts) {
        std::fputs("soak COUNT, with COUNT at least 20\n", stderr);
        return 2;
    }
    try {
        return vorla::run(count);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "soak: %s\n", error.what());
        return 1;
    }
}
