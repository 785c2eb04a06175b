// SPDX-License-Identifier: MIT
#include "linux/ShownNotifications.h"

#include <gtest/gtest.h>

namespace vorla {
namespace {

TEST(ShownNotifications, knowTheBubbleOfAnIdentifier) {
    ShownNotifications shown;
    EXPECT_TRUE(shown.isEmpty());
    EXPECT_EQ(shown.bubbleOf("a"), 0U);
    shown.remember("a", 7);
    shown.remember("b", 8);
    shown.remember("a", 9);
    EXPECT_EQ(shown.bubbleOf("a"), 9U);
    EXPECT_EQ(shown.bubbleOf("b"), 8U);
    EXPECT_FALSE(shown.isEmpty());
}

TEST(ShownNotifications, forgetClosedBubbles) {
    ShownNotifications shown;
    shown.remember("a", 7);
    shown.remember("b", 8);
    shown.forget(7);
    shown.forget(99);
    EXPECT_EQ(shown.bubbleOf("a"), 0U);
    EXPECT_EQ(shown.bubbleOf("b"), 8U);
    shown.clear();
    EXPECT_TRUE(shown.isEmpty());
}

TEST(ShownNotifications, rememberNoBubbleWithoutANumber) {
    ShownNotifications shown;
    shown.remember("a", 7);
    shown.remember("a", 0);
    EXPECT_EQ(shown.bubbleOf("a"), 0U);
    EXPECT_TRUE(shown.isEmpty());
}

TEST(ShownNotifications, keepTheLast64) {
    ShownNotifications shown;
    for (std::uint32_t number = 1; number <= 65; ++number) {
        shown.remember(std::to_string(number), number);
    }
    EXPECT_EQ(shown.bubbleOf("1"), 0U);
    EXPECT_EQ(shown.bubbleOf("2"), 2U);
    EXPECT_EQ(shown.bubbleOf("65"), 65U);
    shown.remember("2", 100);
    shown.remember("66", 66);
    EXPECT_EQ(shown.bubbleOf("2"), 100U);
    EXPECT_EQ(shown.bubbleOf("3"), 0U);
}

} // namespace
} // namespace vorla
