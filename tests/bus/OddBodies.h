// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Codec.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

namespace vorla {

/// Writes the body of a message.
using Body = std::function<void(bus::Message&)>;

template <typename... Values>
Body bodyOf(const Values&... values) {
    return [=](bus::Message& message) { message.write(values...); };
}

/// A single value of a type that the program itself never uses.
inline Body bodyOfBasic(char type, std::uint64_t bits) {
    return [=](bus::Message& message) { message.appendBasic(type, &bits); };
}

inline void writeSignature(bus::Message& message) {
    message.appendBasic('g', "a{sv}");
}

/// A descriptor, which the receiver has to close.
inline void writeDescriptor(bus::Message& message) {
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    message.appendBasic('h', &null);
    close(null);
}

inline void writeNestedVariants(bus::Message& message) {
    constexpr int depth = 60;
    for (int level = 1; level < depth; ++level) {
        message.openContainer('v', "v");
    }
    message.openContainer('v', "i");
    message.write(std::int32_t{1});
    for (int level = 0; level < depth; ++level) {
        message.closeContainer();
    }
}

/// Bodies of every type that the bus knows, and of sizes from nothing to half a megabyte.
inline std::vector<Body> oddBodies() {
    using Ids = std::vector<std::int32_t>;
    using Names = std::vector<std::string>;
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    const std::string longText(400'000, 'x');
    return {
        [](bus::Message&) {},
        bodyOf(true),
        bodyOf(std::uint8_t{255}),
        bodyOf(lowest),
        bodyOf(highest),
        bodyOf(std::uint32_t{4'294'967'295}),
        bodyOf(std::numeric_limits<double>::quiet_NaN()),
        bodyOfBasic('n', 1),
        bodyOfBasic('q', 1),
        bodyOfBasic('x', 1),
        bodyOfBasic('t', 1),
        bodyOf(std::string()),
        bodyOf(std::string("\n\t%s%n_<b>&\xF0\x9F\x98\x80")),
        bodyOf(longText),
        bodyOf(longText, longText),
        bodyOf(bus::ObjectPath{"/"}),
        &writeSignature,
        &writeDescriptor,
        &writeNestedVariants,
        bodyOf(bus::Variant(longText)),
        bodyOf(std::vector<std::uint8_t>(400'000)),
        bodyOf(Ids()),
        bodyOf(Ids(100'000, highest)),
        bodyOf(Names(20'000, "name")),
        bodyOf(std::vector<Names>(1000, Names(100, ""))),
        bodyOf(bus::Dictionary{{"", longText}, {"key", true}}),
        bodyOf(std::tuple(lowest, std::string(), bus::Variant(true), std::uint32_t{0})),
        bodyOf(lowest, lowest, Names()),
        bodyOf(highest, highest, Names(20'000, "label")),
        bodyOf(Ids(100'000), Names(1000, "label")),
        bodyOf(lowest, longText),
        bodyOf(std::int32_t{0}, longText, bus::Variant(longText), std::uint32_t{0}),
        bodyOf(std::string("org.kde.StatusNotifierItem"), longText),
        bodyOf(std::string("com.canonical.dbusmenu"), std::string("Version"), bus::Variant(true)),
        bodyOf(std::string("org.kde.StatusNotifierWatcher"), true, longText),
        bodyOf(std::string("org.freedesktop.Notifications"), std::string(), std::uint8_t{0}),
    };
}

} // namespace vorla
