// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorla {

/// Writes one JSON object, compact and on one line: no control character of a text gets through
/// unescaped. Nothing is ever written as null; an absent member is simply not added.
class JsonObjectWriter final {
public:
    void add(std::string_view key, std::string_view text);
    void add(std::string_view key, std::int64_t number);
    /// In the shortest form that reads back as the same number.
    void add(std::string_view key, double number);
    void add(std::string_view key, const JsonObjectWriter& object);

    template <typename Value>
    void add(std::string_view key, const std::optional<Value>& value) {
        if (value) {
            add(key, *value);
        }
    }

    /// The object, or nothing if it holds a number that JSON cannot express.
    std::optional<std::string> text() const;

private:
    void addKey(std::string_view key);

    std::string members_;
    bool isExpressible_ = true;
};

/// Reads the members of one JSON object strictly: a member of another type than the one asked for
/// throws DecodeError. A null counts as absent. Members that nobody asks for are of no interest.
class JsonObjectReader final {
public:
    /// Throws DecodeError for anything but an object. Keeps a reference to it.
    explicit JsonObjectReader(const JsonValue& value);

    std::string string(std::string_view key) const;
    double decimal(std::string_view key) const;
    const JsonValue& value(std::string_view key) const;

    std::optional<std::string> optionalString(std::string_view key) const;
    std::optional<std::int64_t> optionalInteger(std::string_view key) const;
    std::optional<double> optionalDecimal(std::string_view key) const;

private:
    const JsonValue* find(std::string_view key) const;

    const JsonObject& members_;
};

} // namespace vorla
