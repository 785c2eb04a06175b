// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Message.h"
#include "linux/bus/Values.h"

#include <cerrno>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vorla::bus {

/// The D-Bus type of a number of fixed size.
template <typename Number>
inline constexpr char numberType = '\0';
template <>
inline constexpr char numberType<std::uint8_t> = 'y';
template <>
inline constexpr char numberType<std::int32_t> = 'i';
template <>
inline constexpr char numberType<std::uint32_t> = 'u';
template <>
inline constexpr char numberType<double> = 'd';

/// Maps a C++ type to its signature, and writes and reads its values. Types of our own join by a
/// specialisation with the same three functions.
template <typename Number>
    requires(numberType<Number> != '\0')
struct Codec<Number> {
    static std::string signature() { return {numberType<Number>}; }

    static void write(Message& message, Number value) {
        message.appendBasic(numberType<Number>, &value);
    }

    static Number read(Message& message) {
        Number value = 0;
        message.readBasic(numberType<Number>, &value);
        return value;
    }
};

template <>
struct Codec<bool> {
    static std::string signature() { return "b"; }

    // The library keeps a truth value in an int.
    static void write(Message& message, bool value) {
        const int number = value ? 1 : 0;
        message.appendBasic('b', &number);
    }

    static bool read(Message& message) {
        int number = 0;
        message.readBasic('b', &number);
        return number != 0;
    }
};

template <>
struct Codec<std::string> {
    static std::string signature() { return "s"; }

    static void write(Message& message, const std::string& value) {
        message.appendBasic('s', value.c_str());
    }

    static std::string read(Message& message) {
        const char* text = nullptr;
        message.readBasic('s', &text);
        return text;
    }
};

template <>
struct Codec<ObjectPath> {
    static std::string signature() { return "o"; }

    static void write(Message& message, const ObjectPath& value) {
        message.appendBasic('o', value.path.c_str());
    }

    static ObjectPath read(Message& message) {
        const char* path = nullptr;
        message.readBasic('o', &path);
        return {path};
    }
};

template <typename Item>
struct Codec<std::vector<Item>> {
    static std::string signature() { return "a" + Codec<Item>::signature(); }

    static void write(Message& message, const std::vector<Item>& items) {
        if constexpr (numberType<Item> != '\0') {
            message.appendArray(numberType<Item>, items.data(), items.size() * sizeof(Item));
        } else {
            message.openContainer('a', Codec<Item>::signature());
            for (const auto& item : items) {
                Codec<Item>::write(message, item);
            }
            message.closeContainer();
        }
    }

    static std::vector<Item> read(Message& message) {
        std::vector<Item> items;
        message.enterContainer('a', Codec<Item>::signature());
        while (!message.atEnd()) {
            items.push_back(Codec<Item>::read(message));
        }
        message.exitContainer();
        return items;
    }
};

template <typename... Fields>
struct Codec<std::tuple<Fields...>> {
    static std::string contents() { return (std::string{} + ... + Codec<Fields>::signature()); }

    static std::string signature() { return "(" + contents() + ")"; }

    static void write(Message& message, const std::tuple<Fields...>& fields) {
        message.openContainer('r', contents());
        std::apply([&](const Fields&... field) { message.write(field...); }, fields);
        message.closeContainer();
    }

    static std::tuple<Fields...> read(Message& message) {
        message.enterContainer('r', contents());
        // Braces, unlike parentheses, read the fields in their order.
        std::tuple<Fields...> fields{message.read<Fields>()...};
        message.exitContainer();
        return fields;
    }
};

template <typename Key, typename Value>
struct Codec<std::map<Key, Value>> {
    static std::string entry() { return Codec<Key>::signature() + Codec<Value>::signature(); }

    static std::string signature() { return "a{" + entry() + "}"; }

    static void write(Message& message, const std::map<Key, Value>& entries) {
        message.openContainer('a', "{" + entry() + "}");
        for (const auto& [key, value] : entries) {
            message.openContainer('e', entry());
            message.write(key, value);
            message.closeContainer();
        }
        message.closeContainer();
    }

    static std::map<Key, Value> read(Message& message) {
        std::map<Key, Value> entries;
        message.enterContainer('a', "{" + entry() + "}");
        while (!message.atEnd()) {
            message.enterContainer('e', entry());
            Key key = message.read<Key>();
            entries.insert_or_assign(std::move(key), message.read<Value>());
            message.exitContainer();
        }
        message.exitContainer();
        return entries;
    }
};

template <typename Value>
struct Codec<InVariant<Value>> {
    static std::string signature() { return "v"; }

    static void write(Message& message, const InVariant<Value>& held) {
        message.openContainer('v', Codec<Value>::signature());
        message.write(held.value);
        message.closeContainer();
    }

    static InVariant<Value> read(Message& message) {
        message.enterContainer('v', Codec<Value>::signature());
        InVariant<Value> held{message.read<Value>()};
        message.exitContainer();
        return held;
    }
};

template <typename... Held>
struct Codec<std::variant<std::monostate, Held...>> {
    using Value = std::variant<std::monostate, Held...>;

    static std::string signature() { return "v"; }

    static void write(Message& message, const Value& value) {
        std::visit(
            [&]<typename Type>(const Type& held) {
                if constexpr (std::is_same_v<Type, std::monostate>) {
                    checked(-EINVAL, "a variant without a value");
                } else {
                    message.openContainer('v', Codec<Type>::signature());
                    message.write(held);
                    message.closeContainer();
                }
            },
            value);
    }

    static Value read(Message& message) {
        const std::string contents = message.nextVariantContents();
        Value value;
        if (!(readAs<Held>(message, contents, value) || ...)) {
            message.skip("v");
        }
        return value;
    }

private:
    template <typename Type>
    static bool readAs(Message& message, const std::string& contents, Value& value) {
        if (contents != Codec<Type>::signature()) {
            return false;
        }
        value = message.read<InVariant<Type>>().value;
        return true;
    }
};

} // namespace vorla::bus
