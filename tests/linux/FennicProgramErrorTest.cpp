// SPDX-License-Identifier: MIT
#include "linux/FennicProgram.h"

#include "children/SystemLimits.h"
#include "fakes/RefusingLoop.h"
#include "linux/FennicProgramFixture.h"
#include "linux/Folders.h"
#include "linux/Pipe.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <limits>
#include <utility>
#include <vector>

namespace vorla {

namespace {

/// While it lives, this thread has no right to more pipes than other users, and holds so many that
/// new ones are small.
class UsedUpPipes final {
public:
    UsedUpPipes() {
        syscall(SYS_capget, &header_, before_.data());
        auto lowered = before_;
        for (const unsigned right : {unsigned{CAP_SYS_ADMIN}, unsigned{CAP_SYS_RESOURCE}}) {
            lowered.at(right / 32).effective &= ~(1U << right % 32);
        }
        syscall(SYS_capset, &header_, lowered.data());
        while (pipes_.size() < 300 && (pipes_.empty() || !isSmall())) {
            pipes_.emplace_back();
            // Refused once it is too much.
            fcntl(newest(), F_SETPIPE_SZ, 1048576);
        }
    }

    ~UsedUpPipes() { syscall(SYS_capset, &header_, before_.data()); }

    UsedUpPipes(const UsedUpPipes&) = delete;
    UsedUpPipes& operator=(const UsedUpPipes&) = delete;

    bool isSmall() const {
        return std::cmp_less(fcntl(newest(), F_GETPIPE_SZ), maximumFennicSeamLine);
    }

private:
    int newest() const { return pipes_.back().writeEnd.number(); }

    __user_cap_header_struct header_ = {_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> before_ = {};
    std::vector<Pipe> pipes_;
};

/// Openings that fail, of which nothing may be left, and where the program is looked for.
class FennicProgramError : public FennicProgramFixture {};

/// Runs while no other test does: it uses up what all programs of the user share.
class FennicProgramErrorAlone : public FennicProgramError {};

} // namespace

TEST_F(FennicProgramError, refusesAnOpeningThatCannotBeEncoded) {
    use({child("recordsItsStart")});
    const std::string token(maximumFennicSeamLine, 't');
    EXPECT_EQ(openingError({.activationToken = token}), std::errc::message_size);
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(openingError({.quota = {.weeklySecondsToReset = infinite}}), std::errc::message_size);
}

TEST_F(FennicProgramErrorAlone, throwsWhereAPipeIsTooSmallForTheOpening) {
    use({child("recordsItsStart")});
    const UsedUpPipes pipes;
    ASSERT_TRUE(pipes.isSmall());
    descriptors = entries("/proc/self/fd");
    EXPECT_EQ(openingError(openingOfBytes(maximumFennicSeamLine)).value(), ENOBUFS);
    open();
    EXPECT_EQ(record("input"), usualOpening().encode());
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
            const SystemLimit lowered(RLIMIT_NOFILE, limit);
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
        RefusingLoop narrow(loop(), RefusingLoop::Refuses::watches, room);
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
    const std::vector<std::string> expected = {
        executable.parent_path() / "VorlaUsageFennic",
        resourcesDirectory().value() + "/VorlaUsageFennic"};
    EXPECT_EQ(fennicProgramCandidates(), expected);
}

} // namespace vorla
