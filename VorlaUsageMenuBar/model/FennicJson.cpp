// SPDX-License-Identifier: MIT
#include "model/FennicJson.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace vorla {

namespace {

constexpr std::string_view hexadecimalDigits = "0123456789abcdef";

void appendEscaped(std::string& json, char byte) {
    const auto code = static_cast<unsigned char>(byte);
    if (byte == '"' || byte == '\\') {
        json += '\\';
        json += byte;
    } else if (byte == '\n') {
        json += "\\n";
    } else if (code < 0x20) {
        json += "\\u00";
        json += hexadecimalDigits[code / 16];
        json += hexadecimalDigits[code % 16];
    } else {
        json += byte;
    }
}

void appendString(std::string& json, std::string_view text) {
    json += '"';
    for (const char byte : text) {
        appendEscaped(json, byte);
    }
    json += '"';
}

template <typename Number>
void appendNumber(std::string& json, Number number) {
    // The longest shortest form of a double has 24 characters.
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    json.append(digits.data(), end);
}

template <typename Content>
const Content& expected(const JsonValue& value, std::string_view path, std::string_view problem) {
    const auto* content = std::get_if<Content>(&value.content);
    if (content == nullptr) {
        throw DecodeError(path, problem);
    }
    return *content;
}

} // namespace

void JsonObjectWriter::add(std::string_view key, std::string_view text) {
    addKey(key);
    appendString(members_, text);
}

void JsonObjectWriter::add(std::string_view key, std::int64_t number) {
    addKey(key);
    appendNumber(members_, number);
}

void JsonObjectWriter::add(std::string_view key, double number) {
    isExpressible_ = isExpressible_ && std::isfinite(number);
    addKey(key);
    appendNumber(members_, number);
}

void JsonObjectWriter::add(std::string_view key, const JsonObjectWriter& object) {
    isExpressible_ = isExpressible_ && object.isExpressible_;
    addKey(key);
    members_ += '{';
    members_ += object.members_;
    members_ += '}';
}

std::optional<std::string> JsonObjectWriter::text() const {
    if (!isExpressible_) {
        return std::nullopt;
    }
    return "{" + members_ + "}";
}

void JsonObjectWriter::addKey(std::string_view key) {
    if (!members_.empty()) {
        members_ += ',';
    }
    appendString(members_, key);
    members_ += ':';
}

JsonObjectReader::JsonObjectReader(const JsonValue& value)
    : members_(expected<JsonObject>(value, "", "not an object")) {}

std::string JsonObjectReader::string(std::string_view key) const {
    return expected<std::string>(value(key), key, "not a string");
}

double JsonObjectReader::decimal(std::string_view key) const {
    return expected<JsonNumber>(value(key), key, "not a number").decimal();
}

const JsonValue& JsonObjectReader::value(std::string_view key) const {
    const JsonValue* member = find(key);
    if (member == nullptr) {
        throw DecodeError(key, "missing");
    }
    return *member;
}

std::optional<std::string> JsonObjectReader::optionalString(std::string_view key) const {
    if (find(key) == nullptr) {
        return std::nullopt;
    }
    return string(key);
}

std::optional<std::int64_t> JsonObjectReader::optionalInteger(std::string_view key) const {
    const JsonValue* member = find(key);
    if (member == nullptr) {
        return std::nullopt;
    }
    const auto integer = expected<JsonNumber>(*member, key, "not a number").integer();
    if (!integer) {
        throw DecodeError(key, "not an integer of 64 bits");
    }
    return integer;
}

std::optional<double> JsonObjectReader::optionalDecimal(std::string_view key) const {
    if (find(key) == nullptr) {
        return std::nullopt;
    }
    return decimal(key);
}

const JsonValue* JsonObjectReader::find(std::string_view key) const {
    const auto member = members_.find(key);
    if (member == members_.end() ||
        std::holds_alternative<std::nullptr_t>(member->second.content)) {
        return nullptr;
    }
    return &member->second;
}

} // namespace vorla
