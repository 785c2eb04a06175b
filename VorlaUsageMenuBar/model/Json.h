// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorla {

/// Input from outside that is not what it should be. It is refused whole; what() is for developers
/// and never shown to a user.
class DecodeError final : public std::runtime_error {
public:
    /// `path` names the place in the document, for example "windows[1].resetsAt".
    DecodeError(std::string_view path, std::string_view problem);
};

/// A number as it stood in the document: no digit is lost or added until someone asks for a value.
struct JsonNumber {
    std::string text;

    /// The value of a token without fraction and exponent that fits 64 bits, else nothing.
    std::optional<std::int64_t> integer() const;
    /// The value as a finite 64-bit number.
    double decimal() const;

    bool operator==(const JsonNumber&) const = default;
};

struct JsonValue;
using JsonArray = std::vector<JsonValue>;
/// Sorted by the UTF-8 bytes of the keys. Of a key that is given twice, the last value counts.
using JsonObject = std::map<std::string, JsonValue, std::less<>>;

/// One JSON value (RFC 8259); null is the default.
struct JsonValue {
    std::variant<std::nullptr_t, bool, JsonNumber, std::string, JsonArray, JsonObject> content =
        nullptr;
};

inline constexpr int maximumJsonDepth = 512;
/// Ours, so that a hostile document cannot ask for many times its own size: a value takes some 100
/// bytes.
inline constexpr std::size_t maximumJsonValues = 1'048'576;

/// Parses one whole document of UTF-8 JSON; a leading byte order mark is accepted (RFC 8259, 8.1).
///
/// Throws DecodeError for everything that is not exactly one JSON value: malformed text or UTF-8,
/// NUL bytes, trailing text, a number beyond the range of a double, and anything past the two
/// maxima.
JsonValue parseJson(std::string_view bytes);

} // namespace vorla
