// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// UTF-8 by its definition, slow and simple: a second opinion on the program's own tables.
namespace vorla::fuzz {

struct CodePoint {
    char32_t value = 0;
    std::size_t length = 0;
};

/// Nothing if `bytes` do not begin with a well-formed code point.
std::optional<CodePoint> firstCodePoint(std::string_view bytes);

bool isWellFormed(std::string_view bytes);

/// Whether a well-formed text has one of the 66 code points that Unicode never assigns.
bool hasNoncharacter(std::string_view text);

/// With one U+FFFD for each maximal ill-formed part.
std::string expectedRepair(std::string_view bytes);

} // namespace vorla::fuzz
