// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

struct sd_bus_message;

namespace vorla::bus {

template <typename Value>
struct Codec;

/// An error as it stands on the bus.
struct BusError {
    /// Such as "org.freedesktop.DBus.Error.UnknownMethod".
    std::string name;
    std::string text;
};

/// Passes `result` on; throws std::system_error if it is a negated errno.
int checked(int result, const char* what);

/// A message: written value by value before it is sent, or read value by value once it has come in.
/// What does not fit the signature, a text that the bus does not take included, throws
/// std::system_error.
class Message final {
public:
    /// Takes over the caller's reference.
    static Message owning(sd_bus_message* message);
    static Message sharing(sd_bus_message* message);

    template <typename... Values>
    void write(const Values&... values) {
        (Codec<Values>::write(*this, values), ...);
    }

    template <typename Value>
    Value read() {
        return Codec<Value>::read(*this);
    }

    /// Present in the answer to a call that failed.
    std::optional<BusError> error() const;

    sd_bus_message* native() { return message_.get(); }

    /// The steps that codecs are made of; types are D-Bus type characters.
    void appendBasic(char type, const void* value);
    void appendArray(char type, const void* items, std::size_t bytes);
    void openContainer(char type, const std::string& contents);
    void closeContainer();
    void readBasic(char type, void* value);
    void enterContainer(char type, const std::string& contents);
    void exitContainer();
    /// Whether the container entered last has been read to its end.
    bool atEnd();
    /// Signature of the contents of the variant that comes next.
    std::string nextVariantContents();
    void skip(const std::string& signature);

private:
    struct Release {
        void operator()(sd_bus_message* message) const;
    };

    explicit Message(sd_bus_message* message) : message_(message) {}

    std::unique_ptr<sd_bus_message, Release> message_;
};

} // namespace vorla::bus
