// SPDX-License-Identifier: MIT
#include "fennic/HttpAnswerReader.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

using State = HttpAnswerReader::State;

struct Reading {
    State state = State::incomplete;
    int status = 0;
    std::string body;

    bool operator==(const Reading&) const = default;
};

/// Reads the text in pieces of `step` bytes, then the end of the connection.
Reading readInPieces(std::string_view text, std::size_t step) {
    HttpAnswerReader reader;
    while (!text.empty()) {
        reader.read(text.substr(0, step));
        text.remove_prefix(std::min(step, text.size()));
    }
    const State state = reader.readEnd();
    return {.state = state, .status = reader.status(), .body = reader.body()};
}

/// The same whatever the pieces are.
Reading readWhole(std::string_view text) {
    const Reading whole = readInPieces(text, text.size() + 1);
    for (const std::size_t step : {std::size_t(1), std::size_t(2), std::size_t(7)}) {
        EXPECT_EQ(readInPieces(text, step), whole) << text << " in pieces of " << step;
    }
    return whole;
}

State stateAfter(std::string_view text) {
    return readWhole(text).state;
}

} // namespace

TEST(HttpAnswerReader, readsABodyOfStatedLength) {
    EXPECT_EQ(
        readWhole("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nHello"),
        (Reading{State::complete, 200, "Hello"}));
    EXPECT_EQ(
        readWhole("HTTP/1.0 404\r\ncontent-length:0\r\n\r\n"), (Reading{State::complete, 404, ""}));
}

TEST(HttpAnswerReader, readsNothingPastTheStatedLength) {
    EXPECT_EQ(
        readWhole("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nHello"),
        (Reading{State::complete, 200, "He"}));
}

TEST(HttpAnswerReader, readsABodyThatEndsWithTheConnection) {
    EXPECT_EQ(readWhole("HTTP/1.1 200 OK\r\n\r\nHello"), (Reading{State::complete, 200, "Hello"}));
    EXPECT_EQ(readWhole("HTTP/1.1 500 \r\nA: b\r\n\r\n"), (Reading{State::complete, 500, ""}));
}

TEST(HttpAnswerReader, readsAChunkedBody) {
    EXPECT_EQ(
        readWhole("HTTP/1.1 200 OK\r\nTransfer-Encoding: Chunked\r\nContent-Length: 9\r\n\r\n"
                  "4\r\nHell\r\nA;x=y\r\no, there! \r\n0\r\nTrailer: x\r\n\r\n"),
        (Reading{State::complete, 200, "Hello, there! "}));
}

TEST(HttpAnswerReader, acceptsLinesThatEndInALineFeedOnly) {
    EXPECT_EQ(
        readWhole("HTTP/1.1 200 OK\nContent-Length: 2\n\nHi"),
        (Reading{State::complete, 200, "Hi"}));
}

TEST(HttpAnswerReader, passesOverInterimAnswers) {
    EXPECT_EQ(
        readWhole("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Hints\r\nContent-Length: 7\r\n\r\n"
                  "HTTP/1.1 201 Made\r\nContent-Length: 1\r\n\r\nx"),
        (Reading{State::complete, 201, "x"}));
}

TEST(HttpAnswerReader, expectsNoBodyWhereThereIsNone) {
    EXPECT_EQ(
        readWhole("HTTP/1.1 204 None\r\nContent-Length: 5\r\n\r\n"),
        (Reading{State::complete, 204, ""}));
    EXPECT_EQ(readWhole("HTTP/1.1 304 Same\r\n\r\n"), (Reading{State::complete, 304, ""}));
}

TEST(HttpAnswerReader, findsHeadersByTheirLowerCaseNames) {
    HttpAnswerReader reader;
    reader.read("HTTP/1.1 307 Go\r\nLOCATION: \t/first\r\nLocation: /last here \r\n\r\n");
    EXPECT_EQ(reader.header("location"), "/last here");
    EXPECT_EQ(reader.header("etag"), std::nullopt);
}

TEST(HttpAnswerReader, refusesWhatIsNotHttp) {
    for (const char* text :
         {"220 mail.example ready\r\n",
          "SSH-2.0",
          "HTTP/2 200\r\n",
          "HTTP/1.1200 OK\r\n",
          "HTTP/1.1 20 OK\r\n",
          "HTTP/1.1 2000\r\n",
          "HTTP/1.1 099 No\r\n",
          "HTTP/1.x 200 OK\r\n",
          "HTTP/1.1 101 Switching\r\n\r\n",
          "HTTP/1.1 200 OK\r\nno colon\r\n",
          "HTTP/1.1 200 OK\r\n: nameless\r\n",
          "HTTP/1.1 200 OK\r\nA: b\r\n folded: c\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length : 1\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length: 1x\r\n\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length:\r\n\r\n",
          "HTTP/1.1 200 OK\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip, chunked\r\n\r\n",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nx\r\n",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n\r\n",
          "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nabc\r\n"}) {
        EXPECT_EQ(stateAfter(text), State::notHttp) << text;
    }
}

TEST(HttpAnswerReader, noticesAnAnswerThatIsCutShort) {
    const std::string text =
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n";
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_EQ(stateAfter(text.substr(0, length)), State::truncated) << length;
    }
    EXPECT_EQ(stateAfter("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nx"), State::truncated);
    EXPECT_EQ(stateAfter("HTTP/1.1 100 Continue\r\n\r\n"), State::truncated);
}

TEST(HttpAnswerReader, takesABodyUpToItsMaximumAndNoMore) {
    const std::string body(HttpAnswerReader::maximumBodyBytes, 'x');
    const std::string more = body + "x";
    const std::string head = "HTTP/1.1 200 OK\r\n";
    const auto read = [&](const std::string& text) {
        return readInPieces(head + text, 65536).state;
    };
    EXPECT_EQ(read("Content-Length: 1048576\r\n\r\n" + body), State::complete);
    EXPECT_EQ(read("Content-Length: 1048577\r\n\r\n"), State::tooLarge);
    EXPECT_EQ(read("Content-Length: 99999999999999999999999\r\n\r\n"), State::tooLarge);
    EXPECT_EQ(read("\r\n" + body), State::complete);
    EXPECT_EQ(read("\r\n" + more), State::tooLarge);
    const std::string chunked = "Transfer-Encoding: chunked\r\n\r\n";
    EXPECT_EQ(read(chunked + "100000\r\n" + body + "\r\n0\r\n\r\n"), State::complete);
    EXPECT_EQ(read(chunked + "100000\r\n" + body + "\r\n1\r\nx\r\n"), State::tooLarge);
    EXPECT_EQ(read(chunked + "FFFFFFFFFFFFFFFFFFFF\r\n" + more), State::tooLarge);
}

TEST(HttpAnswerReader, boundsEverythingThatIsNotBody) {
    const std::string much(HttpAnswerReader::maximumHeadBytes, 'x');
    EXPECT_EQ(readInPieces(much + "x", 4096).state, State::tooLarge);
    EXPECT_EQ(readInPieces("HTTP/1.1 200 OK\r\nA: " + much, 4096).state, State::tooLarge);
    std::string interim;
    std::string trailers;
    for (int count = 0; count < 5000; ++count) {
        interim += "HTTP/1.1 100 Continue\r\n\r\n";
        trailers += "Name: a value\r\n";
    }
    EXPECT_EQ(readInPieces(interim, 4096).state, State::tooLarge);
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n";
    EXPECT_EQ(readInPieces(chunked + trailers, 4096).state, State::tooLarge);
}

} // namespace vorla
