// SPDX-License-Identifier: MIT
#include "app/StreamCapture.h"

#include <gtest/gtest.h>

namespace vorla {

TEST(StreamCapture, keepsWhatCameInOrder) {
    StreamCapture capture(8);
    EXPECT_EQ(capture.append("ab"), 2U);
    EXPECT_EQ(capture.append("cd"), 2U);
    EXPECT_EQ(capture.bytes(), "abcd");
}

TEST(StreamCapture, keepsExactlyItsBound) {
    StreamCapture capture(4);
    EXPECT_EQ(capture.append("abcd"), 4U);
    EXPECT_EQ(capture.append("e"), 0U);
    EXPECT_EQ(capture.bytes(), "abcd");
}

TEST(StreamCapture, dropsTheNewestThatDoNotFit) {
    StreamCapture capture(4);
    capture.append("abc");
    EXPECT_EQ(capture.append("def"), 1U);
    EXPECT_EQ(capture.bytes(), "abcd");
}

TEST(StreamCapture, decodesTheTextPieceByPiece) {
    StreamCapture capture(64);
    capture.append("a\xC3");
    EXPECT_EQ(capture.text(), "a\uFFFD");
    capture.append("\xA9z\xFF");
    EXPECT_EQ(capture.text(), "a\u00E9z\uFFFD");
    EXPECT_EQ(capture.bytes(), "a\xC3\xA9z\xFF");
}

TEST(StreamCapture, catchesUpOnWhatNobodyHasAskedFor) {
    StreamCapture capture(64);
    capture.append("ab");
    capture.append("cd");
    EXPECT_EQ(capture.text(), "abcd");
    EXPECT_EQ(capture.text(), "abcd");
}

TEST(StreamCapture, isEmptyOnceItsBytesHaveBeenTaken) {
    StreamCapture capture(8);
    capture.append("ab");
    EXPECT_EQ(capture.text(), "ab");
    EXPECT_EQ(capture.take(), "ab");
    EXPECT_EQ(capture.bytes(), "");
    EXPECT_EQ(capture.text(), "");
}

} // namespace vorla
