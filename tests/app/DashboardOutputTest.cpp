// SPDX-License-Identifier: MIT
#include "app/Command.h"
#include "fakes/FakeLauncher.h"
#include "fakes/ManualLoop.h"
#include "model/AddressScanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorla {

namespace {

/// A dashboard whose output the test plays, and the scanner that reads it.
class DashboardOutputTest : public testing::Test {
protected:
    void SetUp() override {
        command->onOutput = [this](std::string_view text) {
            lastLength = text.size();
            longest = std::max(longest, lastLength);
            address = scanner.scan(text);
        };
        command->start("/tool", "--web", [](const CommandResult&) {});
    }

    void TearDown() override { command->abandon(); }

    FakeChild& dashboard() const { return launcher.last(); }

    /// Prints lines of this many bytes, 1,000 at a time.
    void printLines(int thousands, std::size_t bytes) const {
        std::string lines;
        for (int count = 0; count < 1000; ++count) {
            lines += std::string(bytes - 1, '.') + '\n';
        }
        for (int count = 0; count < thousands; ++count) {
            dashboard().print(lines);
        }
    }

    ManualLoop loop;
    FakeLauncher launcher;
    std::shared_ptr<Command> command = Command::create(loop, launcher, Environment());
    AddressScanner scanner;
    std::optional<std::string> address;
    std::size_t lastLength = 0;
    std::size_t longest = 0;
};

} // namespace

TEST_F(DashboardOutputTest, yieldsAnAddressThatIsPrintedInPieces) {
    dashboard().print("Serving on http://127.0.0.1:10");
    EXPECT_EQ(address, "http://127.0.0.1:10");
    dashboard().print("00/caf\xC3");
    EXPECT_EQ(address, "http://127.0.0.1:1000/caf%EF%BF%BD");
    dashboard().print("\xA9 (Ctrl-C to stop)\n");
    EXPECT_EQ(address, "http://127.0.0.1:1000/caf%C3%A9");
}

TEST_F(DashboardOutputTest, yieldsTheAddressBeforeAndAfterAMillionLines) {
    dashboard().print("Serving on http://127.0.0.1:1000/ (Ctrl-C to stop)\n");
    printLines(1000, 10);
    EXPECT_EQ(address, "http://127.0.0.1:1000/");
    dashboard().print("Serving on http://127.0.0.1:2000/\n");
    EXPECT_EQ(address, "http://127.0.0.1:2000/");
}

TEST_F(DashboardOutputTest, yieldsTheAddressAlsoWhenItsLineHasBeenDropped) {
    dashboard().print("Serving on http://127.0.0.1:1000/ (Ctrl-C to stop)\n");
    printLines(20, 64);
    EXPECT_LT(lastLength, longest);
    EXPECT_EQ(address, "http://127.0.0.1:1000/");
    dashboard().print("http://localhost:2000/ http://127.0.0.1:3");
    EXPECT_EQ(address, "http://127.0.0.1:3");
    dashboard().print(".evil.example/\n");
    EXPECT_EQ(address, "http://127.0.0.1:1000/");
}

TEST_F(DashboardOutputTest, yieldsAnAddressFromWhereverItStandsInAPiece) {
    // The longest piece that comes, of bytes that take three times as much when repaired.
    const std::string rest(std::size_t{64} << 10U, '\xFF');
    for (int number = 0; number < 50; ++number) {
        const std::string expected = "http://127.0.0.1:" + std::to_string(number) + "/";
        const std::string line = '\n' + expected + '\n';
        dashboard().print(line + rest.substr(line.size()));
        EXPECT_EQ(address, expected);
        dashboard().print(rest);
        EXPECT_EQ(address, expected);
    }
    EXPECT_LE(longest, Command::maximumRecentBytes);
}

} // namespace vorla
