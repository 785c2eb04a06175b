// SPDX-License-Identifier: MIT
#include "JsonTree.h"

#include <algorithm>
#include <type_traits>

namespace vorla::fuzz {

namespace {

bool areEqualContents(const JsonArray& left, const JsonArray& right) {
    return std::ranges::equal(left, right, areEqual);
}

bool areEqualContents(const JsonObject& left, const JsonObject& right) {
    return std::ranges::equal(left, right, [](const auto& one, const auto& other) {
        return one.first == other.first && areEqual(one.second, other.second);
    });
}

template <typename Content>
bool areEqualContents(const Content& left, const Content& right) {
    return left == right;
}

} // namespace

std::optional<JsonValue> parsed(std::string_view bytes) {
    try {
        return parseJson(bytes);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
}

bool areEqual(const JsonValue& left, const JsonValue& right) {
    return std::visit(
        [](const auto& one, const auto& other) {
            if constexpr (std::is_same_v<decltype(one), decltype(other)>) {
                return areEqualContents(one, other);
            } else {
                return false;
            }
        },
        left.content, right.content);
}

} // namespace vorla::fuzz
