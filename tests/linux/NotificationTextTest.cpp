// SPDX-License-Identifier: MIT
#include "linux/NotificationText.h"

#include <gtest/gtest.h>

namespace vorla {
namespace {

TEST(NotificationText, leavesTheTitleAsItIs) {
    EXPECT_EQ(notificationTitle("5h < 10% & \"low\"\n"), "5h < 10% & \"low\"\n");
    EXPECT_EQ(notificationTitle(""), "");
}

TEST(NotificationText, escapesTheBodyOnlyForServicesThatReadMarkup) {
    EXPECT_EQ(notificationBody("a<b> & \"c\" 'd'", BodyFormat::plain), "a<b> & \"c\" 'd'");
    EXPECT_EQ(
        notificationBody("a<b> & \"c\" 'd'", BodyFormat::markup), "a&lt;b&gt; &amp; \"c\" 'd'");
}

TEST(NotificationText, dropsWhatTheBusRefuses) {
    using namespace std::string_literals;
    EXPECT_EQ(notificationTitle("a\0b"s), "ab");
    EXPECT_EQ(notificationBody("\0a\0"s, BodyFormat::plain), "a");
    EXPECT_EQ(notificationTitle("a\xFFz"), "a\uFFFDz");
}

TEST(NotificationText, isCutAtTheBound) {
    const std::string longText(100'000, 'x');
    EXPECT_EQ(notificationTitle(longText).size(), maximumTitleBytes);
    EXPECT_EQ(notificationBody(longText, BodyFormat::plain).size(), maximumBodyBytes);
    EXPECT_EQ(notificationTitle(std::string(maximumTitleBytes, 'x')).size(), maximumTitleBytes);
    EXPECT_EQ(
        notificationBody(std::string(5000, '<'), BodyFormat::markup).size(),
        maximumBodyBytes * std::string("&lt;").size());
}

TEST(NotificationText, isCutBetweenCharacters) {
    const std::string most(maximumTitleBytes - 2, 'x');
    EXPECT_EQ(notificationTitle(most + "€€"), most);
    EXPECT_EQ(notificationTitle(most + "e\u0301"), most);
    EXPECT_EQ(notificationTitle(most + "é€"), most + "é");
    EXPECT_EQ(notificationTitle(most + "xe\u0301"), most + "x");
}

TEST(NotificationText, isFilledAlsoWithCharactersThatBecomeShorter) {
    // Of three bytes for the bus, of four in the text, at no multiple of which it is bounded.
    std::string longText = "x";
    std::string expected = "x";
    for (std::size_t count = 0; count < 341; ++count) {
        longText += "\U0001FFFE";
        expected += "\uFFFD";
    }
    EXPECT_EQ(expected.size(), maximumTitleBytes);
    EXPECT_EQ(notificationTitle(longText + longText), expected);
}

} // namespace
} // namespace vorla
