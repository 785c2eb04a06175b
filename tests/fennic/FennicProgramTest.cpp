// SPDX-License-Identifier: MIT
#include "model/FennicSeam.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace vorla {

namespace {

constexpr int waitLimitMilliseconds = 60000;

/// The program itself, without a display.
class Program final {
public:
    explicit Program(const QStringList& variables = {}) {
        process.setEnvironment(QProcess::systemEnvironment() + variables);
        process.start(VORLA_FENNIC_PROGRAM, QStringList());
        EXPECT_TRUE(process.waitForStarted(waitLimitMilliseconds));
    }

    ~Program() {
        process.kill();
        process.waitForFinished(waitLimitMilliseconds);
    }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void send(std::string_view text) {
        process.write(text.data(), static_cast<qint64>(text.size()));
    }

    /// The exit status once the program has ended; -1 if it crashed.
    int wait() {
        EXPECT_TRUE(QTest::qWaitFor(
            [this] { return process.state() == QProcess::NotRunning; }, waitLimitMilliseconds));
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    std::string standardOutput() { return process.readAllStandardOutput().toStdString(); }

    std::string standardError() { return process.readAllStandardError().toStdString(); }

    QProcess process;
};

} // namespace

TEST(FennicProgram, saysThatItClosesWhenItsInputEndsAndSucceeds) {
    Program program;
    program.send(FennicOpening{}.encode().value());
    program.process.closeWriteChannel();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.standardOutput(), "closing\n");
}

TEST(FennicProgram, takesLaterLinesWhateverTheySayAndStaysOpen) {
    Program program;
    program.send(FennicOpening{.quota = {}, .activationToken = "token"}.encode().value());
    program.send(FennicRaise{}.encode());
    program.send(FennicRaise{.activationToken = "token"}.encode());
    // More than the pipe holds: when all of it has been written, the nonsense has been read.
    program.send("nonsense\n\n[]\n" + std::string(2 * maximumFennicSeamLine, 'x') + "\n");
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return program.process.bytesToWrite() == 0; }, waitLimitMilliseconds));
    EXPECT_EQ(program.process.state(), QProcess::Running);
    EXPECT_EQ(program.standardOutput(), "");
    program.process.closeWriteChannel();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.standardOutput(), "closing\n");
}

TEST(FennicProgram, readsNumbersWhateverTheDecimalPointOfTheLocale) {
    // Pashto has one of two bytes, which the reader of JSON cannot take.
    const QTemporaryDir locales;
    ASSERT_EQ(
        QProcess::execute("localedef", {"-i", "ps_AF", "-f", "UTF-8", locales.filePath("ps_AF")}),
        0);
    Program program({"LOCPATH=" + locales.path(), "LC_ALL=ps_AF"});
    program.send(FennicOpening{}.encode().value());
    program.send("{\"number\":1.5}\n");
    program.process.closeWriteChannel();
    EXPECT_EQ(program.wait(), 0) << program.standardError();
    EXPECT_EQ(program.standardOutput(), "closing\n");
}

TEST(FennicProgram, doesNotOpenWithoutASummary) {
    for (const char* line : {"", "{}\n", "nonsense\n", "{\"quota\":{}}"}) {
        Program program;
        program.send(line);
        program.process.closeWriteChannel();
        EXPECT_EQ(program.wait(), 1) << line;
        EXPECT_EQ(program.standardOutput(), "") << line;
        EXPECT_EQ(
            program.standardError(),
            "VorlaUsageFennic is opened from the menu of VorlaUsageMenuBar.\n")
            << line;
    }
}

TEST(FennicProgram, succeedsEvenIfNobodyHearsThatItCloses) {
    Program program;
    program.send(FennicOpening{}.encode().value());
    program.process.closeReadChannel(QProcess::StandardOutput);
    program.process.closeWriteChannel();
    EXPECT_EQ(program.wait(), 0);
}

} // namespace vorla
