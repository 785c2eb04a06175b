// SPDX-License-Identifier: MIT
#pragma once

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

} // namespace vorla
