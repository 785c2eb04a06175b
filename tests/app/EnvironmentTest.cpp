// SPDX-License-Identifier: MIT
#include "app/Environment.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vorla {

namespace {

using Entries = std::vector<std::string>;

} // namespace

TEST(Environment, findsAValue) {
    const Environment environment({"PATH=/bin", "HOME=/home/ada"});
    EXPECT_EQ(environment.value("HOME"), "/home/ada");
}

TEST(Environment, knowsAnEmptyValueFromNone) {
    const Environment environment({"EMPTY="});
    EXPECT_EQ(environment.value("EMPTY"), "");
    EXPECT_EQ(environment.value("ABSENT"), std::nullopt);
}

TEST(Environment, takesNoNameForAnotherThatBeginsLikeIt) {
    const Environment environment({"PATHS=/bin"});
    EXPECT_EQ(environment.value("PATH"), std::nullopt);
    EXPECT_EQ(environment.value("PATHS="), std::nullopt);
}

TEST(Environment, keepsEqualsSignsInAValue) {
    EXPECT_EQ(Environment({"OPTIONS=a=b=c"}).value("OPTIONS"), "a=b=c");
}

TEST(Environment, countsTheFirstOfTwoEntriesWithOneName) {
    const Environment environment({"NAME=first", "OTHER=x", "NAME=second"});
    EXPECT_EQ(environment.value("NAME"), "first");
    EXPECT_EQ(environment.entries(), (Entries{"NAME=first", "OTHER=x"}));
}

TEST(Environment, dropsAnEntryThatIsNoVariable) {
    const Environment environment({"nonsense", "NAME=value"});
    EXPECT_EQ(environment.value("nonsense"), std::nullopt);
    EXPECT_EQ(environment.entries(), Entries{"NAME=value"});
}

TEST(Environment, addsAVariableInACopy) {
    const Environment environment({"A=1"});
    EXPECT_EQ(environment.with("B", "2").entries(), (Entries{"A=1", "B=2"}));
    EXPECT_EQ(environment.entries(), Entries{"A=1"});
}

TEST(Environment, overwritesAVariableInItsPlace) {
    const Environment environment({"A=1", "B=2", "A=3"});
    EXPECT_EQ(environment.with("A", "4").entries(), (Entries{"A=4", "B=2"}));
}

TEST(Environment, readsThatOfThisProcess) {
    ASSERT_EQ(setenv("VORLA_TEST_VARIABLE", "here", 1), 0);
    EXPECT_EQ(Environment::ofThisProcess().value("VORLA_TEST_VARIABLE"), "here");
    ASSERT_EQ(unsetenv("VORLA_TEST_VARIABLE"), 0);
    EXPECT_EQ(Environment::ofThisProcess().value("VORLA_TEST_VARIABLE"), std::nullopt);
}

} // namespace vorla
