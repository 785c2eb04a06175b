// SPDX-License-Identifier: MIT
#include "app/RecentText.h"

#include <gtest/gtest.h>

namespace vorla {

TEST(RecentText, isAllTextUpToItsBound) {
    RecentText recent(8);
    recent.append("abcd");
    EXPECT_EQ(recent.text(), "abcd");
    recent.append("efgh");
    EXPECT_EQ(recent.text(), "abcdefgh");
}

TEST(RecentText, losesItsOldestHalfWhenFull) {
    RecentText recent(8);
    recent.append("abcdefgh");
    recent.append("ij");
    EXPECT_EQ(recent.text(), "ghij");
    recent.append("kl");
    EXPECT_EQ(recent.text(), "ghijkl");
}

TEST(RecentText, isTheEndOfAPieceBeyondTheBound) {
    RecentText recent(4);
    recent.append("ab");
    recent.append("cdefgh");
    EXPECT_EQ(recent.text(), "gh");
}

TEST(RecentText, isWellFormed) {
    RecentText recent(9);
    recent.append("a\xC3");
    EXPECT_EQ(recent.text(), "a\uFFFD");
    recent.append("\xA9z\xFF");
    EXPECT_EQ(recent.text(), "a\u00E9z\uFFFD");
    recent.append("\xFF\xFF");
    EXPECT_EQ(recent.text(), "\uFFFD");
}

TEST(RecentText, isEmptyOnceItHasBeenTaken) {
    RecentText recent(8);
    recent.append("ab\xC3");
    EXPECT_EQ(recent.take(), "ab\uFFFD");
    EXPECT_EQ(recent.text(), "");
    recent.append("\xA9");
    EXPECT_EQ(recent.text(), "\uFFFD");
}

} // namespace vorla
