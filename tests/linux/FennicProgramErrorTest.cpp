// SPDX-License-Identifier: MIT
#include "linux/FennicProgram.h"

#include "linux/FennicProgramFixture.h"
#include "linux/Folders.h"
#include "linux/LauncherFixture.h"

#include <limits>
#include <utility>

namespace vorla {

namespace {

/// A main loop with room for a number of further watches.
class NarrowLoop final : public MainLoop {
public:
    NarrowLoop(MainLoop& loop, int room) : loop_(loop), room_(room) {}

    void post(std::function<void()> work) override { loop_.post(std::move(work)); }

    std::chrono::milliseconds now() const override { return loop_.now(); }

    std::unique_ptr<Source>
    after(std::chrono::milliseconds delay, std::function<void()> work) override {
        return loop_.after(delay, std::move(work));
    }

    std::unique_ptr<Source>
    every(std::chrono::seconds interval, std::function<void()> work) override {
        return loop_.every(interval, std::move(work));
    }

    std::unique_ptr<Source> whenReadable(int descriptor, std::function<void()> work) override {
        if (room_-- <= 0) {
            throw std::system_error(std::make_error_code(std::errc::no_space_on_device));
        }
        return loop_.whenReadable(descriptor, std::move(work));
    }

private:
    MainLoop& loop_;
    int room_;
};

/// Openings that fail, of which nothing may be left, and where the program is looked for.
class FennicProgramError : public FennicProgramFixture {};

} // namespace

TEST_F(FennicProgramError, refusesAnOpeningThatCannotBeEncoded) {
    use({child("recordsItsStart")});
    EXPECT_EQ(openingError(openingOfBytes(maximumFennicSeamLine + 1)), std::errc::message_size);
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(openingError({.quota = {.weeklySecondsToReset = infinite}}), std::errc::message_size);
}

TEST_F(FennicProgramError, startsTheFirstCandidateThatIsAProgram) {
    use(
        {folder() / "none", folder(), makeFile("plain", "#!/bin/true\n", 0644),
         child("recordsItsStart"), child("waitsForEver")});
    open();
    EXPECT_EQ(record("input"), usualOpening().encode());
}

TEST_F(FennicProgramError, throwsWhereThereIsNoProgram) {
    use({folder() / "none", folder(), makeFile("plain", "#!/bin/true\n", 0644)});
    EXPECT_EQ(openingError().message(), "No such file or directory");
    use({});
    EXPECT_EQ(openingError().message(), "No such file or directory");
}

TEST_F(FennicProgramError, throwsForAFileThatIsNoProgram) {
    use({makeFile("script", "echo\n", 0755)});
    EXPECT_EQ(openingError().message(), "Exec format error");
}

TEST_F(FennicProgramError, throwsWhereverDescriptorsRunOut) {
    use({makeFile("script", "echo\n", 0755)});
    // A sanitizer needs descriptors to look at a type for the first time, so it sees them all here.
    EXPECT_EQ(openingError().value(), ENOEXEC);
    use({child("waitsForEndOfInput")});
    std::size_t failures = 0;
    for (rlim_t limit = 3; limit < 200 && window == nullptr; ++limit) {
        std::error_code error;
        {
            const LoweredLimit lowered(RLIMIT_NOFILE, limit);
            try {
                open();
            } catch (const std::system_error& thrown) {
                error = thrown.code();
            }
        }
        if (window == nullptr) {
            ++failures;
            EXPECT_EQ(error.value(), EMFILE);
            EXPECT_EQ(entries("/proc/self/fd"), descriptors);
            EXPECT_TRUE(hasNoChild());
        }
    }
    // There are at least that many descriptors of which each can be the one too many.
    EXPECT_GE(failures, 6U);
    window.reset();
    EXPECT_TRUE(loop().runUntil(hasNoChild));
}

TEST_F(FennicProgramError, killsAndCollectsAProgramThatCannotBeWatched) {
    for (const int room : {0, 1}) {
        NarrowLoop narrow(loop(), room);
        FennicProgramLauncher helpless(narrow, environment(), {child("waitsForEver")});
        try {
            window = helpless.open(usualOpening(), [this] { ++closings; });
            FAIL() << "nothing was thrown";
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::errc::no_space_on_device);
        }
        EXPECT_TRUE(hasNoChild());
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    }
}

TEST_F(FennicProgramError, isLookedForBesideTheExecutableAndThenAmongTheResources) {
    const auto executable = std::filesystem::read_symlink("/proc/self/exe");
    std::vector<std::string> expected = {executable.parent_path() / "VorlaUsageFennic"};
    if (const auto resources = resourcesDirectory()) {
        expected.push_back(*resources + "/VorlaUsageFennic");
    }
    EXPECT_EQ(fennicProgramCandidates(), expected);
}

} // namespace vorla
