// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

/// D-Bus for the rest of the program: C++ types on our side, signatures on the other.
namespace vorla::bus {

struct ObjectPath {
    std::string path;

    bool operator==(const ObjectPath&) const = default;
};

/// A value that carries its type. Received values of a type that is not listed here are skipped and
/// read as std::monostate, which cannot be sent.
using Variant = std::variant<
    std::monostate, bool, std::uint8_t, std::int32_t, std::uint32_t, double, std::string,
    std::vector<std::string>, std::vector<std::vector<std::string>>>;

/// The type `a{sv}`.
using Dictionary = std::map<std::string, Variant>;

/// Sent and received as a variant that holds exactly a `Value`.
template <typename Value>
struct InVariant {
    Value value;
};

} // namespace vorla::bus
