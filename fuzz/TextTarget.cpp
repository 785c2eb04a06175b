// SPDX-License-Identifier: MIT
// Any bytes become well-formed text, however they are cut into pieces; and text is only ever cut
// between characters.
#include "Require.h"
#include "Utf8.h"

#include "linux/BusText.h"
#include "model/Text.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace vorla;
using fuzz::isWellFormed;
using fuzz::require;

constexpr std::size_t maximumLabelBytes = 4096;

/// Checking a text costs the square of its characters.
constexpr std::size_t charactersTried = 16;

/// Feeds `bytes` in pieces: each bit of `cuts` that is set ends one, over and over.
void checkPieces(std::string_view bytes, std::uint64_t cuts, std::size_t kept) {
    const std::string whole = text::repaired(bytes);
    require(whole == fuzz::expectedRepair(bytes), "each maximal ill-formed part is replaced once");
    require(isWellFormed(whole), "repaired text is well-formed");
    require(text::repaired(whole) == whole, "well-formed text is left alone");
    require(
        text::repaired(text::trimmed(bytes)) == text::trimmed(whole),
        "trimming before the repair is as good as after it");

    text::Utf8Repair inPieces;
    text::Utf8Repair shortened;
    std::size_t begin = 0;
    for (std::size_t end = 1; end <= bytes.size(); ++end) {
        const bool cutsHere = (cuts >> (end % 64) & 1U) != 0;
        if (!cutsHere && end != bytes.size()) {
            continue;
        }
        inPieces.append(bytes.substr(begin, end - begin));
        shortened.append(bytes.substr(begin, end - begin));
        shortened.keepLast(kept);
        begin = end;
    }
    require(inPieces.text() == whole, "pieces make the same text as the whole");
    require(shortened.text().size() <= kept, "no more is kept than asked for");
    require(isWellFormed(shortened.text()), "the rest is cut between code points");
    require(whole.ends_with(shortened.text()), "the end is what is kept");
}

/// Where characters end, found by taking one after the other.
std::vector<std::size_t> characterEnds(std::string_view text) {
    std::vector<std::size_t> ends;
    std::size_t end = 0;
    while (end < text.size()) {
        const std::string_view first = text::firstCharacters(text.substr(end), 1);
        require(!first.empty(), "a text has a first character");
        require(isWellFormed(first), "a character is whole");
        end += first.size();
        ends.push_back(end);
    }
    return ends;
}

void checkFitting(
    std::string_view text, const std::vector<std::size_t>& ends, std::size_t maximum) {
    const std::string_view fitting = text::fittingCharacters(text, maximum);
    const auto firstTooLong = std::ranges::upper_bound(ends, maximum);
    const std::size_t expected = firstTooLong == ends.begin() ? 0 : *std::prev(firstTooLong);
    require(fitting == text.substr(0, expected), "as many whole characters as fit");
}

void checkCharacters(std::string_view text, std::size_t maximum) {
    const std::vector<std::size_t> ends = characterEnds(text);
    require(text::firstCharacters(text, 0).empty(), "no characters are no text");
    const std::size_t tried = std::min(ends.size(), charactersTried);
    for (std::size_t count = 1; count <= tried; ++count) {
        require(
            text::firstCharacters(text, count) == text.substr(0, ends[count - 1]),
            "what follows a cut has the same characters as before");
    }
    require(text::firstCharacters(text, ends.size()) == text, "all characters are the text");
    require(text::firstCharacters(text, ends.size() + 1) == text, "more characters are the text");
    for (const std::size_t bytes : {maximum, maximum % (text.size() + 1), text.size() - 1}) {
        checkFitting(text, ends, bytes);
    }
}

bool isWhiteSpaceOnly(std::string_view text) {
    while (!text.empty()) {
        const auto first = fuzz::firstCodePoint(text);
        if (!first || !text::isWhiteSpace(first->value)) {
            return false;
        }
        text.remove_prefix(first->length);
    }
    return true;
}

void checkTrimmed(std::string_view text) {
    const std::string_view trimmed = text::trimmed(text);
    require(isWellFormed(trimmed), "trimmed text is well-formed");
    require(text::trimmed(trimmed) == trimmed, "trimmed text is left alone");
    if (trimmed.empty()) {
        require(isWhiteSpaceOnly(text), "only white space is trimmed");
        return;
    }
    const auto begin = static_cast<std::size_t>(trimmed.data() - text.data());
    require(begin + trimmed.size() <= text.size(), "trimmed text is a part of the text");
    require(isWhiteSpaceOnly(text.substr(0, begin)), "only white space goes from the start");
    require(
        isWhiteSpaceOnly(text.substr(begin + trimmed.size())),
        "only white space goes from the end");
}

void checkUppercased(std::string_view text) {
    const std::string uppercased = text::withFirstCharacterUppercased(text);
    const std::string_view rest = text.substr(text::firstCharacters(text, 1).size());
    require(isWellFormed(uppercased), "a capital is well-formed");
    require(uppercased.ends_with(rest), "only the first character changes");
    require(
        text::withFirstCharacterUppercased(uppercased) == uppercased, "a capital has no capital");
}

/// Undoes the doubling, and finds an underscore that was not doubled.
std::string withoutDoubling(std::string_view label) {
    std::string text;
    for (std::size_t place = 0; place < label.size(); ++place) {
        text.push_back(label[place]);
        if (label[place] == '_') {
            ++place;
            require(place < label.size() && label[place] == '_', "no letter is a mnemonic");
        }
    }
    return text;
}

void checkLabels(std::string_view bytes) {
    const std::string plain = plainLabel(bytes);
    const std::string doubled = menuLabel(bytes);
    const std::string toolTip = toolTipText(bytes);
    for (const std::string& label : {plain, doubled, toolTip}) {
        require(label.size() <= maximumLabelBytes, "a label is bounded");
        require(isWellFormed(label), "a label is well-formed");
        require(!fuzz::hasNoncharacter(label), "a label has no noncharacter");
        require(label.find('\0') == std::string::npos, "a label has no NUL");
        require(label.find('\t') == std::string::npos, "a label has no tab");
    }
    require(toolTip.find_first_of("&<>") == std::string::npos, "a tooltip has no markup");
    require(plain.empty() == bytes.empty(), "a text becomes a label");
    require(doubled.empty() == bytes.empty(), "a text becomes a menu label");
    require(toolTip.empty() == bytes.empty(), "a text becomes a tooltip");
    const std::string single = withoutDoubling(doubled);
    // Each ill-formed byte takes three, each underscore two: no more than this, and nothing is cut.
    const bool isWhole = bytes.size() * 6 <= maximumLabelBytes;
    require(!isWhole || plain == single, "both labels say the same");
    require(single == "\uFFFD" || plain.starts_with(single), "both labels begin alike");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider provider(data, size);
    const auto cuts = provider.ConsumeIntegral<std::uint64_t>();
    const std::size_t maximum = provider.ConsumeIntegral<std::uint8_t>();
    const std::string bytes = provider.ConsumeRemainingBytesAsString();
    checkPieces(bytes, cuts, maximum);
    checkLabels(bytes);
    const std::string text = text::repaired(bytes);
    if (!text.empty()) {
        checkCharacters(text, maximum);
        checkTrimmed(text);
        checkUppercased(text);
    }
    return 0;
}
