// SPDX-License-Identifier: MIT
// What parseJson() accepts can be printed, and the print says the same.
#include "JsonTree.h"
#include "Require.h"
#include "Utf8.h"

#include "model/JsonText.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

namespace {

using namespace vorla;
using fuzz::require;

/// Enough for the print of every input that is not mostly brackets.
constexpr std::size_t maximumBytes = 1'048'576;

/// Up to here every whole number is a double.
constexpr double exactDoubles = 0x1p53;

/// Visits a whole tree.
struct TreeCheck {
    /// The containers around the value.
    int depth = 0;

    void operator()(std::nullptr_t) const {}

    void operator()(bool) const {}

    void operator()(const JsonNumber& number) const {
        const double decimal = number.decimal();
        require(std::isfinite(decimal), "a number is finite");
        const auto integer = number.integer();
        if (integer) {
            require(std::to_string(*integer) == number.text, "an integer has one spelling");
            require(
                std::abs(decimal) > exactDoubles || decimal == static_cast<double>(*integer),
                "both values of an integer agree");
        }
    }

    void operator()(const std::string& string) const {
        require(fuzz::isWellFormed(string), "a string is well-formed");
    }

    void operator()(const JsonArray& array) const {
        checkDepth();
        for (const JsonValue& item : array) {
            checkInside(item);
        }
    }

    void operator()(const JsonObject& object) const {
        checkDepth();
        for (const auto& [key, member] : object) {
            (*this)(key);
            checkInside(member);
        }
    }

    void checkInside(const JsonValue& value) const {
        std::visit(TreeCheck{depth + 1}, value.content);
    }

    void checkDepth() const { require(depth < maximumJsonDepth, "the depth is limited"); }
};

/// A document that is nothing but a number is printed as it stands.
void checkBareNumber(const JsonValue& value, std::string_view document) {
    const auto* number = std::get_if<JsonNumber>(&value.content);
    if (number == nullptr) {
        return;
    }
    const std::size_t begin = document.find_first_of("-0123456789");
    const std::size_t end = document.find_last_of("0123456789");
    require(end != std::string_view::npos, "a number is not made of nothing");
    const std::string_view token = document.substr(begin, end - begin + 1);
    require(number->text == (token == "-0" ? "0" : token), "a number keeps its digits");
}

void checkPrint(const JsonValue& value) {
    const auto text = prettyJson(value, maximumBytes);
    if (!text) {
        return;
    }
    const auto again = fuzz::parsed(*text);
    require(again.has_value(), "a printed text is a document");
    require(fuzz::areEqual(value, *again), "a printed text holds the same tree");
    require(prettyJson(*again, text->size()) == text, "a limit may be reached");
    require(!prettyJson(*again, text->size() - 1), "a limit is not passed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    const auto value = fuzz::parsed(document);
    if (value) {
        require(document.find('\0') == std::string_view::npos, "NUL is refused");
        require(fuzz::isWellFormed(document), "ill-formed text is refused");
        std::visit(TreeCheck{}, value->content);
        checkBareNumber(*value, document);
        checkPrint(*value);
    }
    return 0;
}
