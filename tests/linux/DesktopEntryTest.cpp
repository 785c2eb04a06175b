// SPDX-License-Identifier: MIT
#include "linux/DesktopEntry.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {
namespace {

DesktopEntry entryWith(std::string_view lines) {
    const auto entry = DesktopEntry::parse("[Desktop Entry]\n" + std::string(lines));
    EXPECT_TRUE(entry);
    return entry.value_or(DesktopEntry());
}

TEST(DesktopEntry, isNothingWithoutItsGroup) {
    EXPECT_FALSE(DesktopEntry::parse(""));
    EXPECT_FALSE(DesktopEntry::parse("Type=Application\n"));
    EXPECT_FALSE(DesktopEntry::parse("[desktop entry]\nType=Application\n"));
    EXPECT_FALSE(DesktopEntry::parse("# [Desktop Entry]\n"));
    EXPECT_TRUE(DesktopEntry::parse("[Desktop Entry]"));
}

TEST(DesktopEntry, readsOnlyItsOwnGroup) {
    const auto entry = DesktopEntry::parse("Type=before\n"
                                           "# a comment\n"
                                           "\n"
                                           "[Desktop Entry]\n"
                                           "Type=Application\n"
                                           "[Desktop Action new]\n"
                                           "Type=other\n"
                                           "Exec=other\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->string("Type"), "Application");
    EXPECT_EQ(entry->string("Exec"), std::nullopt);
}

TEST(DesktopEntry, toleratesBlanksLineEndsAndOddLines) {
    const auto entry = entryWith("Type = Application \r\n"
                                 "no line of a desktop entry\n"
                                 "#Exec=commented\n"
                                 "Name=first\n"
                                 "Name=last\n"
                                 "Exec=a=b");
    EXPECT_EQ(entry.string("Type"), "Application");
    EXPECT_EQ(entry.string("#Exec"), std::nullopt);
    EXPECT_EQ(entry.string("Name"), "last");
    EXPECT_EQ(entry.string("Exec"), "a=b");
}

TEST(DesktopEntry, resolvesTheEscapesOfAString) {
    const auto entry = entryWith(R"(Name=\sa\nb\tc\rd\\e\qf\)");
    EXPECT_EQ(entry.string("Name"), " a\nb\tc\rd\\e\\qf\\");
}

TEST(DesktopEntry, partsAListAtItsSemicolons) {
    const auto entry = entryWith("OnlyShowIn=GNOME;X\\;Y;KDE;\nNotShowIn=XFCE\nEmpty=\n");
    EXPECT_EQ(entry.strings("OnlyShowIn"), (std::vector<std::string>{"GNOME", "X;Y", "KDE"}));
    EXPECT_EQ(entry.strings("NotShowIn"), (std::vector<std::string>{"XFCE"}));
    EXPECT_EQ(entry.strings("Empty"), std::vector<std::string>());
    EXPECT_EQ(entry.strings("Missing"), std::vector<std::string>());
}

TEST(DesktopEntry, knowsTrueAndFalseOnly) {
    const auto entry = entryWith("A=true\nB=false\nC=True\nD=\n");
    EXPECT_EQ(entry.boolean("A"), true);
    EXPECT_EQ(entry.boolean("B"), false);
    EXPECT_EQ(entry.boolean("C"), std::nullopt);
    EXPECT_EQ(entry.boolean("D"), std::nullopt);
    EXPECT_EQ(entry.boolean("E"), std::nullopt);
}

TEST(DesktopEntry, knowsTheNumbersOfOldEntriesForTrueAndFalse) {
    const auto entry = entryWith("A=1\nB=0\nC=2\n");
    EXPECT_EQ(entry.boolean("A"), true);
    EXPECT_EQ(entry.boolean("B"), false);
    EXPECT_EQ(entry.boolean("C"), std::nullopt);
}

TEST(DesktopEntry, writesWhatItReads) {
    const std::array<DesktopEntryLine, 3> lines = {
        {{"Type", "Application"}, {"Name", "  two blanks\n\t\r\\ é  "}, {"Exec", R"("/a\\b")"}}};
    const auto text = desktopEntryText(lines);
    EXPECT_EQ(
        text, "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=\\s two blanks\\n\\t\\r\\\\ é \\s\n"
              "Exec=\"/a\\\\\\\\b\"\n");
    const auto entry = DesktopEntry::parse(text);
    ASSERT_TRUE(entry);
    for (const auto& [key, value] : lines) {
        EXPECT_EQ(entry->string(key), value);
    }
}

TEST(DesktopEntry, quotesAnArgumentForExec) {
    EXPECT_EQ(quotedExecArgument("/plain/path"), R"("/plain/path")");
    EXPECT_EQ(quotedExecArgument("/with space/é"), R"("/with space/é")");
    EXPECT_EQ(quotedExecArgument(R"(/"$`')"), R"("/\"\$\`'")");
}

TEST(DesktopEntry, findsTheProgramThatItQuoted) {
    for (const auto* const path :
         {"/plain", "/with space", "/quote\"s 'too'", "/$HOME`x`", "/é/语", "/;#=&|<>()*?~"}) {
        ASSERT_TRUE(canStandInExec(path)) << path;
        const auto quoted = quotedExecArgument(path);
        EXPECT_EQ(programOfExec(quoted), path);
        EXPECT_EQ(programOfExec(quoted + " --argument \"more\""), path);
    }
}

TEST(DesktopEntry, findsTheProgramOfForeignLines) {
    struct Case {
        std::string_view exec;
        std::optional<std::string> program;
    };

    for (const auto& [exec, program] : {
             Case{"program", "program"},
             Case{"  /usr/bin/program\t--flag %U", "/usr/bin/program"},
             Case{R"("a \\ b" c)", R"(a \ b)"},
             Case{R"(/opt/"my program" x)", "/opt/my program"},
             Case{"", std::nullopt},
             Case{"   ", std::nullopt},
             Case{R"("" x)", std::nullopt},
             Case{R"("no end)", std::nullopt},
             Case{R"("escaped end\")", std::nullopt},
         }) {
        EXPECT_EQ(programOfExec(exec), program) << exec;
    }
}

TEST(DesktopEntry, refusesPathsThatReadersOfExecTakeDifferently) {
    for (const auto* const path :
         {"/100%", "/%%", "/back\\slash", "/line\nend", "/tab\t", "/\x01", "/\x7f", "/bad\xff"}) {
        EXPECT_FALSE(canStandInExec(path)) << path;
    }
    EXPECT_FALSE(canStandInExec(std::string_view("/nul\0", 5)));
}

} // namespace
} // namespace vorla
