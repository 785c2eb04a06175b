// SPDX-License-Identifier: MIT
#include "fennic/HttpAnswerReader.h"

#include <algorithm>
#include <charconv>

namespace vorla {

namespace {

constexpr std::string_view protocol = "HTTP/";
constexpr std::string_view blanks = " \t";

constexpr int lowestFinalStatus = 200;
constexpr int switchingProtocols = 101;
constexpr int noContent = 204;
constexpr int notModified = 304;

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// Letters of ASCII only, whatever the locale.
std::string lowercased(std::string_view text) {
    std::string lower(text);
    for (char& byte : lower) {
        if (byte >= 'A' && byte <= 'Z') {
            byte = static_cast<char>(byte - 'A' + 'a');
        }
    }
    return lower;
}

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The whole of `digits` as a number, or nothing. More than fits counts as the greatest size.
std::optional<std::size_t> wholeNumber(std::string_view digits, int base) {
    std::size_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto [parsed, error] = std::from_chars(digits.data(), end, value, base);
    if (error == std::errc::invalid_argument || parsed != end) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        return static_cast<std::size_t>(-1);
    }
    return value;
}

/// The status of a line such as "HTTP/1.1 200 OK", or nothing.
std::optional<int> statusOf(std::string_view line) {
    constexpr std::size_t statusStart = protocol.size() + 4;
    if (line.size() < statusStart + 3 || !line.starts_with("HTTP/1.") || !isDigit(line[7]) ||
        line[8] != ' ') {
        return std::nullopt;
    }
    const std::string_view digits = line.substr(statusStart, 3);
    const std::string_view reason = line.substr(statusStart + 3);
    if (!std::ranges::all_of(digits, isDigit) || digits[0] == '0' ||
        (!reason.empty() && reason[0] != ' ')) {
        return std::nullopt;
    }
    return (digits[0] - '0') * 100 + (digits[1] - '0') * 10 + (digits[2] - '0');
}

} // namespace

HttpAnswerReader::State HttpAnswerReader::read(std::string_view bytes) {
    if (state_ != State::incomplete) {
        return state_;
    }
    arrived_ += bytes;
    while (state_ == State::incomplete && readPart()) {}
    arrived_.erase(0, position_);
    position_ = 0;
    return state_;
}

HttpAnswerReader::State HttpAnswerReader::readEnd() {
    if (state_ != State::incomplete) {
        return state_;
    }
    if (part_ == Part::rest) {
        state_ = State::complete;
    } else if (
        part_ == Part::statusLine && !arrived_.starts_with(protocol.substr(0, arrived_.size()))) {
        state_ = State::notHttp;
    } else {
        state_ = State::truncated;
    }
    return state_;
}

std::optional<std::string_view> HttpAnswerReader::header(std::string_view name) const {
    const auto header = headers_.find(name);
    if (header == headers_.end()) {
        return std::nullopt;
    }
    return header->second;
}

bool HttpAnswerReader::readPart() {
    switch (part_) {
    case Part::statusLine:
        return readStatusLine();
    case Part::headers:
        return readHeader();
    case Part::sizedBody:
    case Part::chunk:
        return readBody(true);
    case Part::rest:
        return readBody(false);
    case Part::chunkSize:
        return readChunkSize();
    case Part::chunkEnd:
        return readChunkEnd();
    case Part::trailers:
        return readTrailer();
    }
    return false;
}

bool HttpAnswerReader::readStatusLine() {
    const auto line = takeLine();
    if (!line) {
        return false;
    }
    const auto status = statusOf(*line);
    if (!status || *status == switchingProtocols) {
        return finish(State::notHttp);
    }
    status_ = *status;
    headers_.clear();
    part_ = Part::headers;
    return true;
}

bool HttpAnswerReader::readHeader() {
    const auto line = takeLine();
    if (!line) {
        return false;
    }
    if (line->empty()) {
        return beginBody();
    }
    const std::size_t colon = line->find(':');
    const std::string name = lowercased(line->substr(0, colon));
    if (colon == std::string_view::npos || name.empty() ||
        name.find_first_of(blanks) != std::string::npos) {
        return finish(State::notHttp);
    }
    const std::string value(withoutBlanks(line->substr(colon + 1)));
    const auto known = headers_.find(name);
    // Two lengths that differ mean that nobody can tell where the answer ends.
    if (name == "content-length" && known != headers_.end() && known->second != value) {
        return finish(State::notHttp);
    }
    headers_[name] = value;
    return true;
}

bool HttpAnswerReader::beginBody() {
    if (status_ < lowestFinalStatus) {
        part_ = Part::statusLine;
        return true;
    }
    if (status_ == noContent || status_ == notModified) {
        return finish(State::complete);
    }
    if (const auto coding = header("transfer-encoding")) {
        part_ = Part::chunkSize;
        return lowercased(*coding) == "chunked" || finish(State::notHttp);
    }
    if (const auto length = header("content-length")) {
        return beginSizedBody(*length);
    }
    part_ = Part::rest;
    return true;
}

bool HttpAnswerReader::beginSizedBody(std::string_view length) {
    const auto bytes = wholeNumber(length, 10);
    if (!bytes) {
        return finish(State::notHttp);
    }
    if (*bytes > maximumBodyBytes) {
        return finish(State::tooLarge);
    }
    missingBytes_ = *bytes;
    part_ = Part::sizedBody;
    return *bytes > 0 || finish(State::complete);
}

bool HttpAnswerReader::readChunkSize() {
    const auto line = takeLine();
    if (!line) {
        return false;
    }
    const auto bytes = wholeNumber(withoutBlanks(line->substr(0, line->find(';'))), 16);
    if (!bytes) {
        return finish(State::notHttp);
    }
    missingBytes_ = *bytes;
    part_ = *bytes == 0 ? Part::trailers : Part::chunk;
    return true;
}

bool HttpAnswerReader::readChunkEnd() {
    const auto line = takeLine();
    if (!line) {
        return false;
    }
    part_ = Part::chunkSize;
    return line->empty() || finish(State::notHttp);
}

bool HttpAnswerReader::readTrailer() {
    const auto line = takeLine();
    if (!line) {
        return false;
    }
    return !line->empty() || finish(State::complete);
}

bool HttpAnswerReader::readBody(bool isSized) {
    const std::string_view unread = std::string_view(arrived_).substr(position_);
    const std::string_view piece = isSized ? unread.substr(0, missingBytes_) : unread;
    if (piece.size() > maximumBodyBytes - body_.size()) {
        return finish(State::tooLarge);
    }
    body_ += piece;
    position_ += piece.size();
    if (!isSized) {
        return false;
    }
    missingBytes_ -= piece.size();
    if (missingBytes_ > 0) {
        return false;
    }
    if (part_ == Part::sizedBody) {
        return finish(State::complete);
    }
    part_ = Part::chunkEnd;
    return true;
}

bool HttpAnswerReader::finish(State state) {
    state_ = state;
    return false;
}

std::optional<std::string_view> HttpAnswerReader::takeLine() {
    const std::string_view unread = std::string_view(arrived_).substr(position_);
    const std::size_t end = unread.find('\n');
    const bool isWhole = end != std::string_view::npos;
    const std::size_t length = isWhole ? end + 1 : unread.size();
    if (length > maximumHeadBytes - headBytes_) {
        finish(State::tooLarge);
        return std::nullopt;
    }
    if (!isWhole) {
        return std::nullopt;
    }
    headBytes_ += length;
    position_ += length;
    std::string_view line = unread.substr(0, end);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace vorla
