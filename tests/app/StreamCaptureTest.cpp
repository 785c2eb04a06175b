// SPDX-License-Identifier: MIT
#include "app/StreamCapture.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

constexpr auto dropNewest = StreamCapture::WhenFull::dropNewest;
constexpr auto dropOldest = StreamCapture::WhenFull::dropOldest;

} // namespace

TEST(StreamCapture, keepsWhatCameInOrder) {
    StreamCapture capture(8);
    EXPECT_EQ(capture.append("ab", dropNewest), 2U);
    EXPECT_EQ(capture.append("cd", dropOldest), 2U);
    EXPECT_EQ(capture.bytes(), "abcd");
}

TEST(StreamCapture, keepsExactlyItsBound) {
    StreamCapture capture(4);
    EXPECT_EQ(capture.append("abcd", dropNewest), 4U);
    EXPECT_EQ(capture.append("e", dropNewest), 0U);
    EXPECT_EQ(capture.bytes(), "abcd");
}

TEST(StreamCapture, dropsTheNewestThatDoNotFit) {
    StreamCapture capture(4);
    capture.append("abc", dropNewest);
    EXPECT_EQ(capture.append("def", dropNewest), 1U);
    EXPECT_EQ(capture.bytes(), "abcd");
}

TEST(StreamCapture, dropsTheOldestHalfWhenFull) {
    StreamCapture capture(8);
    capture.append("abcdefgh", dropOldest);
    EXPECT_EQ(capture.bytes(), "abcdefgh");
    EXPECT_EQ(capture.append("ij", dropOldest), 2U);
    EXPECT_EQ(capture.bytes(), "efghij");
}

TEST(StreamCapture, dropsMoreThanHalfForALargePiece) {
    StreamCapture capture(8);
    capture.append("abcdefgh", dropOldest);
    capture.append("ijklmn", dropOldest);
    EXPECT_EQ(capture.bytes(), "ghijklmn");
}

TEST(StreamCapture, keepsTheEndOfAPieceBeyondTheBound) {
    StreamCapture capture(4);
    capture.append("ab", dropOldest);
    EXPECT_EQ(capture.append("cdefgh", dropOldest), 6U);
    EXPECT_EQ(capture.bytes(), "efgh");
}

TEST(StreamCapture, decodesTheTextPieceByPiece) {
    StreamCapture capture(64);
    capture.append("a\xC3", dropNewest);
    EXPECT_EQ(capture.text(), "a\uFFFD");
    capture.append("\xA9z\xFF", dropNewest);
    EXPECT_EQ(capture.text(), "a\u00E9z\uFFFD");
    EXPECT_EQ(capture.bytes(), "a\xC3\xA9z\xFF");
}

TEST(StreamCapture, catchesUpOnWhatNobodyHasAskedFor) {
    StreamCapture capture(64);
    capture.append("ab", dropNewest);
    capture.append("cd", dropNewest);
    EXPECT_EQ(capture.text(), "abcd");
    EXPECT_EQ(capture.text(), "abcd");
}

TEST(StreamCapture, boundsTheTextToo) {
    StreamCapture capture(8);
    capture.append("abcdefgh", dropOldest);
    EXPECT_EQ(capture.text(), "abcdefgh");
    capture.append("ij", dropOldest);
    EXPECT_EQ(capture.text(), "ghij");
    capture.append("kl", dropOldest);
    EXPECT_EQ(capture.text(), "ghijkl");
}

TEST(StreamCapture, boundsATextThatGrowsByRepair) {
    StreamCapture capture(9);
    capture.append("\xFF\xFF\xFF\xFF", dropOldest);
    EXPECT_EQ(capture.text(), "\uFFFD");
}

TEST(StreamCapture, leavesNoGapInTheText) {
    StreamCapture capture(8);
    capture.append("ab", dropOldest);
    EXPECT_EQ(capture.text(), "ab");
    capture.append("cdefgh", dropOldest);
    capture.append("ij", dropOldest);
    // "cd" was dropped before it was decoded, so "ab" must not stand before "efghij".
    EXPECT_EQ(capture.text(), "efghij");
}

TEST(StreamCapture, isEmptyOnceItsBytesHaveBeenTaken) {
    StreamCapture capture(8);
    capture.append("ab", dropNewest);
    EXPECT_EQ(capture.text(), "ab");
    EXPECT_EQ(capture.take(), "ab");
    EXPECT_EQ(capture.bytes(), "");
    EXPECT_EQ(capture.text(), "");
}

} // namespace vorla
