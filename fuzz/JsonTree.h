// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"

#include <optional>
#include <string_view>

namespace vorla::fuzz {

/// Nothing if the document is refused.
std::optional<JsonValue> parsed(std::string_view bytes);

/// Equal kinds and contents, numbers by their text.
bool areEqual(const JsonValue& left, const JsonValue& right);

} // namespace vorla::fuzz
