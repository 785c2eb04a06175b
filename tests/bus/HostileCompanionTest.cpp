// SPDX-License-Identifier: MIT
// Companions that cannot be started, and companions that print what nobody can use.
#include "bus/HostileCompanion.h"
#include "model/FileContent.h"
#include "model/Repeated.h"

#include <sys/stat.h>

#include <random>
#include <string>
#include <vector>

namespace vorla {

namespace {

class HostileStart : public HostileCompanion {
protected:
    /// An application whose companion is looked for elsewhere finds none, and one with a good
    /// companion does afterwards.
    void expectMissingAt(const std::string& executable) {
        makeApplication(executable);
        delegate().applicationDidFinishLaunching();
        ASSERT_NO_FATAL_FAILURE(expectLine(missing));
        startWithFigures();
    }

    void expectLineOfFile(const std::string& content, const std::string& line, mode_t mode = 0755) {
        startWithFigures();
        companionHolds(content, mode);
        refresh();
        expectLineAndRecovery(line);
    }
};

class HostileOutput : public HostileCompanion {
protected:
    void expectLineOfOutput(const std::string& output, const std::string& line) {
        startWithFigures();
        makeFile("output", output);
        refreshWith("printsFiles");
        expectLineAndRecovery(line);
    }

    /// A good snapshot that proposes these events before its own two shows its figures, and has so
    /// many notifications posted.
    void expectPostsOfEvents(const std::string& events, std::size_t posts) {
        startWithFigures();
        auto document = goodDocument();
        const std::string before = R"("notificationEvents": [)";
        document.insert(document.find(before) + before.size(), events);
        makeFile("output", document);
        preferences.setBoolean(AppDelegate::notificationsEnabledKey, true);
        refreshWith("printsFiles");
        ASSERT_NO_FATAL_FAILURE(expectFigures());
        notificationCentre.answerSettings(AuthorizationStatus::authorized);
        EXPECT_EQ(notificationCentre.posts.size(), posts);
    }

    void expectLineOfErrors(const std::string& errors, const std::string& line) {
        startWithFigures({"STATUS=3"});
        makeFile("errors", errors);
        refreshWith("printsFiles");
        expectLineAndRecovery(line);
    }
};

std::string event(const std::string& key) {
    return R"({"key":")" + key + R"(","title":"","body":""},)";
}

} // namespace

TEST_F(HostileStart, noFile) {
    startWithFigures();
    std::filesystem::remove(companion());
    refresh();
    expectLineAndRecovery(missing);
}

TEST_F(HostileStart, aFolder) {
    startWithFigures();
    std::filesystem::remove(companion());
    std::filesystem::create_directory(companion());
    refresh();
    expectLineAndRecovery(missing);
}

TEST_F(HostileStart, aFileThatIsNotExecutable) {
    expectLineOfFile("#!/bin/true\n", missing, 0644);
}

TEST_F(HostileStart, aLinkToNothing) {
    startWithFigures();
    companionIs("none");
    refresh();
    expectLineAndRecovery(missing);
}

TEST_F(HostileStart, aLinkToItself) {
    startWithFigures();
    companionIs(companion());
    refresh();
    expectLineAndRecovery(missing);
}

TEST_F(HostileStart, aNamedPipe) {
    startWithFigures();
    std::filesystem::remove(companion());
    ASSERT_EQ(mkfifo(companion().c_str(), 0755), 0);
    refresh();
    expectLineAndRecovery(missing);
}

TEST_F(HostileStart, aDevice) {
    startWithFigures();
    companionIs("/dev/zero");
    refresh();
    expectLineAndRecovery(missing);
}

TEST_F(HostileStart, aPathThatIsTooLong) {
    expectMissingAt(repeated("/longer", 1000));
}

TEST_F(HostileStart, aNameThatIsTooLong) {
    expectMissingAt("/" + std::string(300, 'x'));
}

TEST_F(HostileStart, aPathBelowAFile) {
    expectMissingAt("/etc/passwd/vorla-usage");
}

TEST_F(HostileStart, anEmptyPath) {
    expectMissingAt("");
}

TEST_F(HostileStart, aRelativePath) {
    const CurrentFolder current(folder());
    companionIs("printsSnapshot");
    makeApplication("vorla-usage");
    delegate().applicationDidFinishLaunching();
    ASSERT_NO_FATAL_FAILURE(expectFigures());
    std::filesystem::remove(companion());
    refresh();
    ASSERT_NO_FATAL_FAILURE(expectLine(missing));
    refreshWith("printsSnapshot");
    expectFigures();
}

TEST_F(HostileStart, anEmptyFile) {
    expectLineOfFile("", cannotRun("Exec format error"));
}

TEST_F(HostileStart, aScriptThatNamesNoInterpreter) {
    expectLineOfFile("echo '{}'\n", cannotRun("Exec format error"));
}

TEST_F(HostileStart, aScriptWhoseInterpreterIsMissing) {
    expectLineOfFile("#!/nowhere/interpreter\n", cannotRun("No such file or directory"));
}

TEST_F(HostileStart, aScriptWhoseInterpreterIsAFolder) {
    expectLineOfFile("#!/tmp\n", cannotRun("Permission denied"));
}

TEST_F(HostileStart, aScriptThatIsItsOwnInterpreter) {
    expectLineOfFile(
        "#!" + companion().string() + "\n", cannotRun("Too many levels of symbolic links"));
}

TEST_F(HostileStart, aProgramForAnotherMachine) {
    auto program = contentOf(child("exitsWithStatus"));
    program.at(18) = '\x7F';
    expectLineOfFile(program, cannotRun("Exec format error"));
}

TEST_F(HostileStart, aProgramCutShort) {
    expectLineOfFile(
        contentOf(child("exitsWithStatus")).substr(0, 64), cannotRun("Exec format error"));
}

TEST_F(HostileStart, aProgramThatSomebodyIsWriting) {
    startWithFigures();
    companionHolds(contentOf(child("exitsWithStatus")));
    FileDescriptor writer(open(companion().c_str(), O_WRONLY | O_CLOEXEC));
    refresh();
    ASSERT_NO_FATAL_FAILURE(expectLine(cannotRun("Text file busy")));
    writer.close();
    refreshWith("printsSnapshot");
    expectFigures();
}

TEST_F(HostileOutput, nothing) {
    expectLineOfOutput("", invalid);
}

TEST_F(HostileOutput, text) {
    expectLineOfOutput("<!doctype html><title>Sign in</title>\n", invalid);
}

TEST_F(HostileOutput, randomBytes) {
    std::string bytes(1'000'000, '\0');
    std::minstd_rand random(1);
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    expectLineOfOutput(bytes, invalid);
}

TEST_F(HostileOutput, zeroBytes) {
    expectLineOfOutput(std::string(100'000, '\0'), invalid);
}

TEST_F(HostileOutput, aZeroByteAfterTheDocument) {
    expectLineOfOutput(goodDocument() + '\0', invalid);
}

TEST_F(HostileOutput, illFormedText) {
    auto document = goodDocument();
    document.replace(document.find("primary"), 1, "\xFF");
    expectLineOfOutput(document, invalid);
}

TEST_F(HostileOutput, halfADocument) {
    const auto document = goodDocument();
    expectLineOfOutput(document.substr(0, document.size() / 2), invalid);
}

TEST_F(HostileOutput, twoDocuments) {
    expectLineOfOutput(goodDocument() + goodDocument(), invalid);
}

TEST_F(HostileOutput, aDocumentAfterTwoByteOrderMarks) {
    startWithFigures();
    makeFile("output", "\xEF\xBB\xBF\xEF\xBB\xBF" + goodDocument());
    refreshWith("printsFiles");
    ASSERT_NO_FATAL_FAILURE(expectLineAndRecovery(invalid));
    // One is none too many.
    makeFile("output", "\xEF\xBB\xBF" + goodDocument());
    refreshWith("printsFiles");
    expectFigures();
}

TEST_F(HostileOutput, aDocumentInSixteenBitUnits) {
    std::string wide = "\xFF\xFE";
    for (const char byte : goodDocument()) {
        wide += {byte, '\0'};
    }
    expectLineOfOutput(wide, invalid);
}

TEST_F(HostileOutput, aVeryLongLine) {
    expectLineOfOutput(std::string(8'000'000, 'x'), invalid);
}

TEST_F(HostileOutput, aVeryLongNumber) {
    auto document = goodDocument();
    const auto place = document.find("1700000000");
    document.insert(place, 1'000'000, '9');
    expectLineOfOutput(document, invalid);
}

TEST_F(HostileOutput, aNumberThatNoTextCanHold) {
    auto document = goodDocument();
    document.replace(document.find("1700012000.5"), 12, "1e300");
    expectLineOfOutput(document, invalid);
}

TEST_F(HostileOutput, aVeryDeepDocument) {
    expectLineOfOutput(std::string(1'000'000, '['), invalid);
}

TEST_F(HostileOutput, aVeryLongArray) {
    expectLineOfOutput("[0" + repeated(",0", 5'000'000) + "]", invalid);
}

TEST_F(HostileOutput, eventsWithoutEnd) {
    std::string events;
    for (int number = 0; number < 200'000; ++number) {
        events += event("k" + std::to_string(number));
    }
    expectPostsOfEvents(events, 256);
}

TEST_F(HostileOutput, anEventWhoseKeyIsVeryLong) {
    expectPostsOfEvents(event(std::string(50'000'000, 'k')), 2);
}

TEST_F(HostileOutput, theDocumentAmongTheErrors) {
    startWithFigures();
    makeFile("errors", goodDocument());
    refreshWith("printsFiles");
    expectLineAndRecovery(invalid);
}

TEST_F(HostileOutput, oneByteAtATime) {
    startWithFigures();
    makeFile("output", goodDocument() + "}");
    refreshWith("printsByteByByte");
    ASSERT_NO_FATAL_FAILURE(expectLineAndRecovery(invalid));
    makeFile("output", goodDocument());
    refreshWith("printsByteByByte");
    expectFigures();
}

TEST_F(HostileOutput, packets) {
    startWithFigures();
    makeFile("output", goodDocument() + "}");
    refreshWith("printsPackets");
    ASSERT_NO_FATAL_FAILURE(expectLineAndRecovery(invalid));
    makeFile("output", goodDocument());
    refreshWith("printsPackets");
    expectFigures();
}

TEST_F(HostileOutput, aFloodOfOutput) {
    startWithFigures({"LINES=100000000"});
    refreshWith("floodsOutput");
    expectLineAndRecovery(failed(SIGTERM));
}

TEST_F(HostileOutput, aFloodOfErrors) {
    startWithFigures({"LINES=100000000"});
    refreshWith("floodsErrors");
    std::string line;
    for (int number = 0; number < 5; ++number) {
        line += std::to_string(number) + std::string(62, '.') + '\n';
    }
    expectLineAndRecovery(line.substr(0, 300));
}

TEST_F(HostileOutput, aFloodOfBoth) {
    startWithFigures();
    refreshWith("floodsBoth");
    expectLineAndRecovery(std::string(300, 'x'));
}

TEST_F(HostileOutput, errorsOfWhiteSpace) {
    expectLineOfErrors(repeated("\xE2\x80\x83\n", 1'000'000), failed(3));
}

TEST_F(HostileOutput, errorsThatAreIllFormed) {
    expectLineOfErrors(std::string(1'000'000, '\xFF'), repeated("\uFFFD", 300));
}

TEST_F(HostileOutput, errorsThatAreOneCharacterWithoutEnd) {
    // Of a letter with marks enough to fill memory, 64 KiB are kept.
    expectLineOfErrors(
        "e" + repeated("\u0301", 10'000'000), "e" + repeated("\u0301", 32'767) + "\uFFFD");
}

TEST_F(HostileOutput, diagnosticErrorsThatAreOneCharacterWithoutEnd) {
    startWithFigures({"STATUS=3"});
    makeFile("errors", "e" + repeated("\u0301", 10'000'000));
    companionIs("printsFiles");
    item.listener->chosen(MenuAction::copyDiagnosticSnapshot);
    ASSERT_TRUE(
        loop().runUntil([this] { return item.line(LineRole::diagnosticStatus).has_value(); }));
    EXPECT_EQ(item.text(LineRole::diagnosticStatus), "e" + repeated("\u0301", 32'767) + "\uFFFD");
}

TEST_F(HostileOutput, manyErrorsOfOneLetter) {
    expectLineOfErrors(repeated("é", 1'000'000), repeated("é", 300));
}

} // namespace vorla
