// SPDX-License-Identifier: MIT
#include "model/JsonObjectReader.h"

namespace vorla {

namespace {

template <typename Content>
const Content& expected(const JsonValue& value, std::string_view path, std::string_view problem) {
    const auto* content = std::get_if<Content>(&value.content);
    if (content == nullptr) {
        throw DecodeError(path, problem);
    }
    return *content;
}

} // namespace

namespace json {

bool boolean(const JsonValue& value, std::string_view path) {
    return expected<bool>(value, path, "not a boolean");
}

std::int64_t integer(const JsonValue& value, std::string_view path) {
    const auto integer = expected<JsonNumber>(value, path, "not a number").integer();
    if (!integer) {
        throw DecodeError(path, "not an integer of 64 bits");
    }
    return *integer;
}

double decimal(const JsonValue& value, std::string_view path) {
    return expected<JsonNumber>(value, path, "not a number").decimal();
}

std::string string(const JsonValue& value, std::string_view path) {
    return expected<std::string>(value, path, "not a string");
}

const JsonArray& array(const JsonValue& value, std::string_view path) {
    return expected<JsonArray>(value, path, "not an array");
}

const JsonObject& object(const JsonValue& value, std::string_view path) {
    return expected<JsonObject>(value, path, "not an object");
}

} // namespace json

std::string JsonObjectReader::pathOf(std::string_view key) const {
    std::string path(path_);
    if (!path.empty()) {
        path += '.';
    }
    return path.append(key);
}

} // namespace vorla
