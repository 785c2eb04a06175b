// SPDX-License-Identifier: MIT
#include "fennic/SeamInput.h"

#include "model/FennicSeam.h"

#include <QTest>

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <thread>
#include <vector>

namespace vorla {

namespace {

constexpr int waitLimitMilliseconds = 60000;

/// A pipe with a SeamInput at its end.
class Seam final {
public:
    Seam() {
        std::array<int, 2> pair = {};
        if (pipe(pair.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        readEnd_ = pair[0];
        writeEnd_ = pair[1];
        input = std::make_unique<SeamInput>(readEnd_);
    }

    ~Seam() {
        end();
        close(readEnd_);
    }

    Seam(const Seam&) = delete;
    Seam& operator=(const Seam&) = delete;

    void send(std::string_view text) {
        while (!text.empty()) {
            const ssize_t count = write(writeEnd_, text.data(), text.size());
            ASSERT_GT(count, 0);
            text.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    void end() {
        if (writeEnd_ >= 0) {
            close(std::exchange(writeEnd_, -1));
        }
    }

    void watch() {
        input->watch(
            [this](const std::string& line) { lines.push_back(line); }, [this] { ++ends; });
    }

    bool waitForLines(std::size_t count) {
        return QTest::qWaitFor([&] { return lines.size() >= count; }, waitLimitMilliseconds);
    }

    bool waitForEnd() {
        return QTest::qWaitFor([&] { return ends > 0; }, waitLimitMilliseconds);
    }

    std::unique_ptr<SeamInput> input;
    std::vector<std::string> lines;
    int ends = 0;

private:
    int readEnd_ = -1;
    int writeEnd_ = -1;
};

using Lines = std::vector<std::string>;

} // namespace

TEST(SeamInput, waitsForAWholeLine) {
    Seam seam;
    std::jthread sender([&] {
        seam.send("first ");
        seam.send("line\n");
    });
    EXPECT_EQ(seam.input->waitForLine(), "first line\n");
}

TEST(SeamInput, hasNoLineWhenTheInputEndsBeforeOne) {
    for (const char* text : {"", "unfinished"}) {
        Seam seam;
        seam.send(text);
        seam.end();
        EXPECT_EQ(seam.input->waitForLine(), std::nullopt);
    }
}

TEST(SeamInput, reportsWhatArrivedWithTheFirstLine) {
    Seam seam;
    seam.send("one\ntwo\nthree\n");
    EXPECT_EQ(seam.input->waitForLine(), "one\n");
    seam.watch();
    EXPECT_EQ(seam.lines, (Lines{"two\n", "three\n"}));
}

TEST(SeamInput, reportsLaterLinesAsTheyCome) {
    Seam seam;
    seam.watch();
    seam.send("one\ntw");
    ASSERT_TRUE(seam.waitForLines(1));
    seam.send("o\n");
    ASSERT_TRUE(seam.waitForLines(2));
    EXPECT_EQ(seam.lines, (Lines{"one\n", "two\n"}));
    EXPECT_EQ(seam.ends, 0);
}

TEST(SeamInput, reportsTheEndOnceAndAfterAllLines) {
    Seam seam;
    seam.watch();
    seam.send("last\nunfinished");
    seam.end();
    ASSERT_TRUE(seam.waitForEnd());
    QTest::qWait(0);
    EXPECT_EQ(seam.lines, (Lines{"last\n"}));
    EXPECT_EQ(seam.ends, 1);
}

TEST(SeamInput, passesOverLinesThatAreTooLong) {
    const std::string longest = std::string(maximumFennicSeamLine - 1, 'x') + "\n";
    Seam seam;
    std::jthread sender([&] {
        seam.send("x" + longest);
        seam.send(std::string(10 * maximumFennicSeamLine, 'y') + "\n");
        seam.send(longest);
        seam.send("short\n");
    });
    EXPECT_EQ(seam.input->waitForLine(), longest);
    EXPECT_EQ(seam.input->waitForLine(), "short\n");
}

} // namespace vorla
