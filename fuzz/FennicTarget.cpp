// SPDX-License-Identifier: MIT
// What the task-fit window believes: an answer of the service, in whatever pieces it comes, and the
// lines on the window's standard input.
#include "Require.h"
#include "Utf8.h"

#include "fennic/HttpAnswerReader.h"
#include "model/FennicOutcome.h"
#include "model/FennicSeam.h"
#include "model/Json.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace vorla;
using fuzz::require;

/// A line of this size is not too long once it is written anew.
constexpr std::size_t fittingBytes = 32'768;

template <typename Value>
std::optional<Value> decoded(std::string_view bytes) {
    try {
        return Value::decode(bytes);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
}

bool isShare(double value) {
    return value >= 0 && value <= 1;
}

void checkResult(const FennicResult& result) {
    require(
        isShare(result.fitProbability) && isShare(result.taskSizeConfidence) &&
            isShare(result.actionConfidence),
        "shares lie within their range");
    require(result.verdict() != result.recommendedAction, "an action has a headline");
    require(result.sizeLabel() != result.taskSize, "a size has a word");
    const auto lines = result.lines({.fiveHourRemainingPercent = 15, .weeklyRemainingPercent = 40});
    require(lines.size() == 7, "a result has seven lines");
    for (const FennicLine& line : lines) {
        require(!line.text.empty() && fuzz::isWellFormed(line.text), "a line says something");
    }
}

void checkOutcome(std::string_view body) {
    const std::string text(body);
    const auto result = decoded<FennicResult>(body);
    if (result) {
        checkResult(*result);
    }
    const auto good = FennicOutcome::of(FennicAnswer{.status = 200, .body = text}, "host");
    require(good.result == result, "the outcome of an answer is its result");
    require(good.message.empty() == result.has_value(), "there is a message without a result");
    const auto bad = FennicOutcome::of(FennicAnswer{.status = 503, .body = text}, "host");
    require(!bad.result && !bad.message.empty(), "no other status brings a result");
}

bool isOneLine(std::string_view line) {
    return line.size() <= maximumFennicSeamLine && line.ends_with('\n') &&
           std::ranges::none_of(
               line.substr(0, line.size() - 1), [](char byte) { return byte >= 0 && byte < ' '; });
}

void checkSeam(std::string_view bytes) {
    if (const auto opening = decoded<FennicOpening>(bytes)) {
        require(opening->activationToken != "", "a token is not empty");
        const auto line = opening->encode();
        require(line || bytes.size() > fittingBytes, "an opening can be said again");
        if (line) {
            require(isOneLine(*line), "an opening is one line");
            require(decoded<FennicOpening>(*line) == opening, "an opening is understood");
        }
    }
    if (const auto raise = decoded<FennicRaise>(bytes)) {
        const std::string line = raise->encode();
        require(isOneLine(line), "a request is one line");
        const bool isWhole = bytes.size() <= fittingBytes;
        require(!isWhole || decoded<FennicRaise>(line) == raise, "a request is understood");
    }
}

void checkSame(const HttpAnswerReader& pieces, const HttpAnswerReader& whole) {
    require(pieces.status() == whole.status(), "pieces have the status of the whole");
    for (const char* const name : {"location", "content-length", "transfer-encoding"}) {
        require(pieces.header(name) == whole.header(name), "pieces have the headers of the whole");
    }
}

/// Feeds `bytes` at once, and in pieces that end where `cuts` say.
void checkHttp(std::string_view bytes, const std::array<std::size_t, 4>& cuts) {
    using State = HttpAnswerReader::State;
    HttpAnswerReader whole;
    HttpAnswerReader pieces;
    const State state = whole.read(bytes);
    State stateOfPieces = State::incomplete;
    std::string_view rest = bytes;
    for (const std::size_t cut : cuts) {
        stateOfPieces = pieces.read(rest.substr(0, cut));
        rest.remove_prefix(std::min(cut, rest.size()));
    }
    stateOfPieces = pieces.read(rest);
    require(stateOfPieces == state, "pieces come to the same as the whole");
    checkSame(pieces, whole);
    require(whole.body().size() <= HttpAnswerReader::maximumBodyBytes, "a body is bounded");
    require(state == State::tooLarge || pieces.body() == whole.body(), "pieces have its body");

    const State end = whole.readEnd();
    require(pieces.readEnd() == end, "pieces end as the whole does");
    require(end != State::incomplete, "the end is the end");
    require(state == State::incomplete || end == state, "a final state stays");
    require(whole.read("x") == end, "nothing is read after the end");
    if (end == State::complete) {
        require(whole.status() >= 200 && whole.status() <= 999, "a status is final");
        checkOutcome(whole.body());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Numbers are taken from the end, so that the rest stays legible.
    FuzzedDataProvider provider(data, size);
    const auto part = provider.ConsumeIntegral<std::uint8_t>() % 3;
    std::array<std::size_t, 4> cuts = {};
    for (std::size_t& cut : cuts) {
        cut = provider.ConsumeIntegral<std::uint8_t>();
    }
    const std::string bytes = provider.ConsumeRemainingBytesAsString();
    if (part == 0) {
        checkOutcome(bytes);
    } else if (part == 1) {
        checkSeam(bytes);
    } else {
        checkHttp(bytes, cuts);
    }
    return 0;
}
