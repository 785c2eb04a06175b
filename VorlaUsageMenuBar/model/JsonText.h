// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"

#include <cstddef>
#include <optional>
#include <string>

namespace vorla {

/// `value` as a text for people: members sorted by their keys' UTF-8 bytes, two spaces a level, no
/// line end after the last line. Numbers keep their source text, and of a string nothing is escaped
/// but what must be. Strings must be well-formed UTF-8.
///
/// Nothing if the text would be longer than `maximumBytes`, or the value is nested more deeply than
/// maximumJsonDepth. The limit matters because indentation grows with the square of the depth: a
/// few kilobytes of brackets can ask for hundreds of megabytes.
std::optional<std::string> prettyJson(const JsonValue& value, std::size_t maximumBytes);

} // namespace vorla
