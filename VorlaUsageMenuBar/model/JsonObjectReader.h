// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace vorla {

/// Strict decoders of one value: a value of another type throws DecodeError, which bears `path`,
/// the value's place in the document (empty for the document itself).
namespace json {

bool boolean(const JsonValue& value, std::string_view path);
/// A whole number of 64 bits.
std::int64_t integer(const JsonValue& value, std::string_view path);
double decimal(const JsonValue& value, std::string_view path);
std::string string(const JsonValue& value, std::string_view path);
const JsonArray& array(const JsonValue& value, std::string_view path);
const JsonObject& object(const JsonValue& value, std::string_view path);

/// The decoder of an array whose every element is decoded by `decodeElement`.
template <typename Decoder>
auto arrayOf(Decoder decodeElement) {
    return [decodeElement](const JsonValue& value, std::string_view path) {
        std::vector<std::invoke_result_t<Decoder, const JsonValue&, std::string_view>> decoded;
        for (const JsonValue& element : array(value, path)) {
            std::string place(path);
            place.append("[").append(std::to_string(decoded.size())).append("]");
            decoded.push_back(decodeElement(element, place));
        }
        return decoded;
    };
}

} // namespace json

/// The members of one JSON object. Keys that nobody asks for are of no interest.
class JsonObjectReader final {
public:
    /// Throws DecodeError for anything but an object. Keeps references to both.
    explicit JsonObjectReader(const JsonValue& value, std::string_view path = {})
        : members_(json::object(value, path)), path_(path) {}

    template <typename Decoder>
    auto required(std::string_view key, Decoder decode) const {
        const auto member = members_.find(key);
        if (member == members_.end()) {
            throw DecodeError(pathOf(key), "missing");
        }
        return decode(member->second, pathOf(key));
    }

    /// A null counts as missing.
    template <typename Decoder>
    auto optional(std::string_view key, Decoder decode) const {
        const auto member = members_.find(key);
        using Field = decltype(decode(member->second, path_));
        if (member == members_.end() ||
            std::holds_alternative<std::nullptr_t>(member->second.content)) {
            return std::optional<Field>();
        }
        return std::optional<Field>(decode(member->second, pathOf(key)));
    }

private:
    std::string pathOf(std::string_view key) const;

    const JsonObject& members_;
    std::string_view path_;
};

} // namespace vorla
