// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Unicode text as the application needs it. All text is UTF-8, and well-formed unless called
/// `bytes`. A character is what a user perceives as one: an extended grapheme cluster (UAX #29).
namespace vorla::text {

/// The Unicode property White_Space.
bool isWhiteSpace(char32_t codePoint);

/// Without white space and line ends at both ends. Ill-formed parts are not white space.
std::string_view trimmed(std::string_view bytes);

/// The first `count` characters, or all of them.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// As many whole characters from the start as fit into `maximumBytes`.
std::string_view fittingCharacters(std::string_view text, std::size_t maximumBytes);

/// The first character in upper case, the rest unchanged. Letters without a single upper-case
/// counterpart, such as ß, stay as they are.
std::string withFirstCharacterUppercased(std::string_view text);

/// Turns a stream of bytes into well-formed text, piece by piece: one U+FFFD for each maximal
/// ill-formed part (The Unicode Standard, chapter 3, "U+FFFD Substitution of Maximal Subparts").
///
/// The work per piece does not grow with what came before.
class Utf8Repair final {
public:
    void append(std::string_view bytes);

    /// All text so far. An unfinished character at the end shows as U+FFFD until the rest comes.
    std::string_view text() const { return text_; }

    /// Drops text from the start, in whole code points, until at most `maximumBytes` are left.
    void keepLast(std::size_t maximumBytes);

    /// Hands over the text and starts anew.
    std::string take();

private:
    std::string text_;
    /// The bytes of an unfinished character; text_ then ends in a U+FFFD that stands for them.
    std::string unfinished_;
};

std::string repaired(std::string_view bytes);

/// More than the first few hundred characters of any script take.
inline constexpr std::size_t maximumExcerptBytes = std::size_t{64} << 10U;

/// What is shown of an explanation that may be anything: its first `count` characters, repaired.
/// No more than maximumExcerptBytes of it are looked at, since a single character has no end if
/// combining marks go on and on.
std::string excerpt(std::string_view bytes, std::size_t count);

} // namespace vorla::text
