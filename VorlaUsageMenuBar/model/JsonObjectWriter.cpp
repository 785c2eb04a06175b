// SPDX-License-Identifier: MIT
#include "model/JsonObjectWriter.h"

#include "model/JsonString.h"

#include <array>
#include <charconv>
#include <cmath>

namespace vorla {

namespace {

template <typename Number>
void appendNumber(std::string& json, Number number) {
    // The longest shortest form of a double has 24 characters.
    std::array<char, 32> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    json.append(digits.data(), end);
}

} // namespace

void JsonObjectWriter::add(std::string_view key, std::string_view text) {
    addKey(key);
    appendJsonString(members_, text);
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
    appendJsonString(members_, key);
    members_ += ':';
}

} // namespace vorla
