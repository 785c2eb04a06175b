// SPDX-License-Identifier: MIT
#include "linux/SearchPath.h"

#include "linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vorla {
namespace {

using namespace std::string_literals;

TEST(SearchPath, knowsAProgram) {
    const TemporaryFolder folder;
    const auto program = folder.writeProgram("program");
    EXPECT_TRUE(isProgram(program));
    EXPECT_FALSE(isProgram(program + "\0x"s));
    EXPECT_FALSE(isProgram(folder.write("file", "")));
    EXPECT_FALSE(isProgram(folder.path()));
    EXPECT_FALSE(isProgram(folder.at("missing")));
    EXPECT_FALSE(isProgram(""));
}

TEST(SearchPath, partsAtColonsAndDropsEmptyParts) {
    using Parts = std::vector<std::string_view>;
    EXPECT_EQ(colonList(""), Parts{});
    EXPECT_EQ(colonList("::"), Parts{});
    EXPECT_EQ(colonList("one"), Parts{"one"});
    EXPECT_EQ(colonList(":one::two:"), (Parts{"one", "two"}));
}

TEST(SearchPath, holdsAProgramInTheFirstAbsoluteFolderThatHasIt) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.at("first/tool"));
    folder.write("second/tool", "no program");
    const auto tool = folder.writeProgram("third/tool");
    folder.writeProgram("fourth/tool");
    const auto places = folder.at("first") + ":" + folder.at("second") + "::" + folder.at("third") +
                        ":" + folder.at("fourth");
    EXPECT_EQ(programIn(places, "tool"), tool);
    EXPECT_EQ(programIn(places, "other"), "");
    const auto relative = std::filesystem::relative(folder.at("third")).string();
    ASSERT_TRUE(isProgram(relative + "/tool"));
    EXPECT_EQ(programIn(relative, "tool"), "");
}

} // namespace
} // namespace vorla
