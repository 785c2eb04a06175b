// SPDX-License-Identifier: MIT
#include "app/CompanionLookup.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace vorla {

namespace {

/// A folder with places where the tool may be, none of which has it at first.
class CompanionLookup : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = std::filesystem::temp_directory_path() / "vorla-XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
    }

    void TearDown() override { std::filesystem::remove_all(root_); }

    std::string path(const std::string& relative) const { return root_ / relative; }

    std::string makeFile(const std::string& relative, mode_t mode) const {
        const std::string file = path(relative);
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file) << "#!/bin/true\n";
        chmod(file.c_str(), mode);
        return file;
    }

    std::string makeTool(const std::string& relative) const { return makeFile(relative, 0755); }

    CompanionPlaces places(std::vector<std::string> variables) const {
        return {
            .environment = Environment(std::move(variables)),
            .homeDirectory = path("home"),
            .resourcesDirectory = std::nullopt};
    }

private:
    std::filesystem::path root_;
};

} // namespace

TEST_F(CompanionLookup, anOverrideIsTaken) {
    makeTool("home/.local/bin/vorla-usage");
    const auto tool = makeTool("elsewhere/my-tool");
    EXPECT_EQ(findCompanion(places({"VORLA_USAGE_EXECUTABLE=" + tool})), tool);
}

TEST_F(CompanionLookup, anOverrideThatIsNotExecutableHidesAUsableTool) {
    makeTool("home/.local/bin/vorla-usage");
    const auto file = makeFile("elsewhere/my-tool", 0644);
    EXPECT_EQ(findCompanion(places({"VORLA_USAGE_EXECUTABLE=" + file})), std::nullopt);
}

TEST_F(CompanionLookup, anOverrideThatDoesNotExistHidesAUsableTool) {
    makeTool("home/.local/bin/vorla-usage");
    EXPECT_EQ(findCompanion(places({"VORLA_USAGE_EXECUTABLE=" + path("none")})), std::nullopt);
}

TEST_F(CompanionLookup, anEmptyOverrideHidesAUsableTool) {
    makeTool("home/.local/bin/vorla-usage");
    EXPECT_EQ(findCompanion(places({"VORLA_USAGE_EXECUTABLE="})), std::nullopt);
}

TEST_F(CompanionLookup, anOverrideThatIsADirectoryIsNotUsable) {
    std::filesystem::create_directories(path("folder"));
    EXPECT_EQ(findCompanion(places({"VORLA_USAGE_EXECUTABLE=" + path("folder")})), std::nullopt);
}

TEST_F(CompanionLookup, theResourcesDirectoryComesFirst) {
    makeTool("home/.local/bin/vorla-usage");
    makeTool("bin/vorla-usage");
    const auto tool = makeTool("resources/vorla-usage");
    auto all = places({"PATH=" + path("bin")});
    for (const auto& directory : {path("resources"), path("resources/")}) {
        all.resourcesDirectory = directory;
        EXPECT_EQ(findCompanion(all), tool);
    }
}

TEST_F(CompanionLookup, aResourcesDirectoryWithoutTheToolIsPassedOver) {
    const auto tool = makeTool("home/.local/bin/vorla-usage");
    makeFile("resources/vorla-usage", 0644);
    auto all = places({});
    all.resourcesDirectory = path("resources");
    EXPECT_EQ(findCompanion(all), tool);
}

TEST_F(CompanionLookup, theHomeDirectoryComesBeforeTheSearchPath) {
    const auto tool = makeTool("home/.local/bin/vorla-usage");
    makeTool("bin/vorla-usage");
    EXPECT_EQ(findCompanion(places({"PATH=" + path("bin")})), tool);
}

TEST_F(CompanionLookup, theHomeDirectoryIsJoinedPlainly) {
    makeTool("home/.local/bin/vorla-usage");
    auto all = places({});
    all.homeDirectory = path("home/");
    EXPECT_EQ(findCompanion(all), path("home/") + "/.local/bin/vorla-usage");
}

TEST_F(CompanionLookup, aSearchPathEntryWithASlashGivesADoubledOne) {
    makeTool("tools/vorla-usage");
    const auto variables = {"PATH=/usr/bin::" + path("tools/")};
    EXPECT_EQ(findCompanion(places(variables)), path("tools/") + "/vorla-usage");
}

TEST_F(CompanionLookup, searchPathEntriesAreTriedInOrder) {
    const auto first = makeTool("first/vorla-usage");
    makeTool("second/vorla-usage");
    EXPECT_EQ(findCompanion(places({"PATH=" + path("first") + ":" + path("second")})), first);
}

TEST_F(CompanionLookup, theCandidatesAreInOrderAndEmptySearchPathEntriesAddNone) {
    using Candidates = std::vector<std::string>;
    auto all = places({"PATH=/usr/bin::/opt/tools/"});
    all.homeDirectory = "/home/ada";
    EXPECT_EQ(
        companionCandidates(all), (Candidates{
                                      "/home/ada/.local/bin/vorla-usage", "/usr/bin/vorla-usage",
                                      "/opt/tools//vorla-usage"}));
    for (const auto* searchPath : {"PATH=", "PATH=:", "PATH=::"}) {
        all.environment = Environment({searchPath});
        EXPECT_EQ(companionCandidates(all), Candidates{"/home/ada/.local/bin/vorla-usage"});
    }
    all.environment = Environment({"PATH=:/bin:"});
    all.resourcesDirectory = "/usr/libexec/VorlaUsageMenuBar";
    EXPECT_EQ(
        companionCandidates(all), (Candidates{
                                      "/usr/libexec/VorlaUsageMenuBar/vorla-usage",
                                      "/home/ada/.local/bin/vorla-usage", "/bin/vorla-usage"}));
}

TEST_F(CompanionLookup, withoutASearchPathOnlyTheHomeDirectoryIsLeft) {
    EXPECT_EQ(findCompanion(places({})), std::nullopt);
    const auto tool = makeTool("home/.local/bin/vorla-usage");
    EXPECT_EQ(findCompanion(places({})), tool);
}

TEST_F(CompanionLookup, aDirectoryOfThatNameIsPassedOver) {
    std::filesystem::create_directories(path("first/vorla-usage"));
    const auto tool = makeTool("second/vorla-usage");
    EXPECT_EQ(findCompanion(places({"PATH=" + path("first") + ":" + path("second")})), tool);
}

TEST_F(CompanionLookup, aNamedPipeIsPassedOver) {
    std::filesystem::create_directories(path("first"));
    ASSERT_EQ(mkfifo(path("first/vorla-usage").c_str(), 0755), 0);
    const auto tool = makeTool("second/vorla-usage");
    EXPECT_EQ(findCompanion(places({"PATH=" + path("first") + ":" + path("second")})), tool);
}

TEST_F(CompanionLookup, aLinkToTheToolIsUsable) {
    const auto tool = makeTool("real/tool");
    std::filesystem::create_directories(path("bin"));
    std::filesystem::create_symlink(tool, path("bin/vorla-usage"));
    EXPECT_EQ(findCompanion(places({"PATH=" + path("bin")})), path("bin/vorla-usage"));
}

TEST_F(CompanionLookup, aToolInstalledLaterIsFound) {
    const auto all = places({"PATH=" + path("bin")});
    EXPECT_EQ(findCompanion(all), std::nullopt);
    const auto tool = makeTool("bin/vorla-usage");
    EXPECT_EQ(findCompanion(all), tool);
}

} // namespace vorla
