// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vorla {

/// Reads what a server sends back to one request on a connection of its own (HTTP/1.1, RFC 9112),
/// piece by piece. Needs no network and no toolkit.
class HttpAnswerReader final {
public:
    enum class State {
        incomplete,
        complete,
        /// The server speaks something else.
        notHttp,
        /// Past one of the maxima.
        tooLarge,
        /// The connection ended in the middle.
        truncated
    };

    static constexpr std::size_t maximumHeadBytes = 65536;
    static constexpr std::size_t maximumBodyBytes = 1048576;

    /// Takes more of what arrived. Whatever follows once the state is final is of no interest.
    State read(std::string_view bytes);

    /// The server has closed the connection.
    State readEnd();

    /// Of the final answer; interim ones are passed over. 0 before it has come.
    int status() const { return status_; }

    const std::string& body() const { return body_; }

    /// `name` in lower case. Of a header that is given twice, the last value counts.
    std::optional<std::string_view> header(std::string_view name) const;

private:
    enum class Part { statusLine, headers, sizedBody, chunkSize, chunk, chunkEnd, trailers, rest };

    /// Whether there may be more to read in what has arrived.
    bool readPart();
    bool readStatusLine();
    bool readHeader();
    bool readChunkSize();
    bool readChunkEnd();
    bool readTrailer();
    bool readBody(bool isSized);
    bool beginBody();
    bool beginSizedBody(std::string_view length);
    bool finish(State state);

    /// The next line without its end, or nothing as long as it is not all there.
    std::optional<std::string_view> takeLine();

    State state_ = State::incomplete;
    Part part_ = Part::statusLine;
    std::string arrived_;
    /// How much of arrived_ has been read.
    std::size_t position_ = 0;
    /// Bytes of status lines, headers, trailers and chunk sizes so far.
    std::size_t headBytes_ = 0;
    /// What is missing of the body or of the current chunk.
    std::size_t missingBytes_ = 0;
    int status_ = 0;
    std::map<std::string, std::string, std::less<>> headers_;
    std::string body_;
};

} // namespace vorla
